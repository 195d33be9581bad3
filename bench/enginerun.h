#pragma once

#include "mediareader.h"
#include "mediasource.h"

#include <memory>

class VideoDecoder;

/// Decodes and converts the pictures of a file into the cache, as the player does: one thread
/// reads, the caller's decodes. Nothing is shown, but the play head follows the newest picture, so
/// that the cache always has room.
class EngineRun {
public:
    /// A file that does not open ends the program with a message.
    explicit EngineRun(const char* path);
    ~EngineRun();

    /// From where the file stands to its end; the number of the newest picture, read from the
    /// picture itself.
    int decodeAll();

    /// Back to the start, by the steps of a seek.
    void rewind();

private:
    [[nodiscard]] int newestNumber();
    void readAll();
    void followNewest();

    MediaSource m_source;
    MediaReader m_reader;
    std::unique_ptr<VideoDecoder> m_decoder;
};
