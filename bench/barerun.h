#pragma once

#include "avhandles.h"

/// What the media libraries reach on a file by themselves: read, decode and convert every picture
/// into one buffer, with as many threads for each as the engine gives them.
class BareRun {
public:
    /// A file that does not open ends the program with a message.
    explicit BareRun(const char* path);

    /// From where the file stands to its end; the number of pictures.
    int decodeAll();

    void rewind();

private:
    void openConverter();
    int receive();

    AvPtr<AVFormatContext> m_format;
    AvPtr<AVCodecContext> m_codec;
    AvPtr<SwsContext> m_converter;
    AvPtr<AVPacket> m_packet;
    AvPtr<AVFrame> m_frame;
    AvPtr<AVFrame> m_rgb;
    int m_stream = -1;
};
