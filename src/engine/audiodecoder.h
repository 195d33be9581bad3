#pragma once

#include "avhandles.h"
#include "sampleconverter.h"

class MediaSource;

/// Turns the packets of the source's audio stream into blocks of its sound buffer. Audio thread.
class AudioDecoder {
public:
    explicit AudioDecoder(MediaSource& source);

    /// One step: a block of sound, or a packet, or a marker. The sample frames stored; 0 after a
    /// marker or where a frame held no sound; negative when nothing came (no packet within 1 ms, a
    /// packet without a frame or a damaged one). Where the clock alone paces the sound it waits
    /// while it is far ahead.
    int decodeNext();

    [[nodiscard]] double decodedTime() const { return m_decodedTime; } // seconds, of the next block

private:
    void waitForClock() const;
    int decode(const AVPacket& packet);
    int drain();
    int flush(const AVPacket& marker);
    int receive();
    int store();

    MediaSource& m_source;
    const AvPtr<AVFrame> m_frame;
    SampleConverter m_converter;
    double m_decodedTime = 0.0; // seconds
    bool m_receiving = false; // the codec may hold frames of what it was sent
    bool m_drained =
        false; // the end was announced to the codec: it takes packets again after a flush
};
