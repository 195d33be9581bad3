#pragma once

#include "videoframecache.h"

#include <QString>

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>

/// The picture that a file begins with, decoded by a thread of its own while the media library
/// looks at the file's streams. That look decodes the picture, too, but keeps it, and the decoder
/// comes to it only afterwards; so this one can be on show until then. It opens the file for
/// itself.
///
/// There is none where the header alone does not describe the streams, where another picture may
/// come before that of the first packet, where the packet may hold one field of it, and where
/// anything fails.
class OpeningPicture {
public:
    OpeningPicture() = default;
    ~OpeningPicture();
    OpeningPicture(const OpeningPicture&) = delete;
    OpeningPicture& operator=(const OpeningPicture&) = delete;

    /// Demuxer's thread: begins. Once `isAborted` is true it ends after the step at hand.
    void start(const QString& filename, std::atomic<bool>& isAborted);

    /// Waits for the end of the work, as its destruction does: for the decoding of one picture,
    /// perhaps.
    void wait();

    /// Any thread. The picture, where it has come by now, the first time it is asked for; null
    /// where it is of another stream or size.
    [[nodiscard]] std::unique_ptr<DecodedVideoFrame> take(int streamIndex, int width, int height);

    /// Any thread: the decoder's own has come.
    void giveUp();

private:
    void work(const QString& filename, std::atomic<bool>& isAborted);

    std::thread m_thread;
    std::mutex m_mutex; // guards everything below
    std::unique_ptr<DecodedVideoFrame> m_picture;
    int m_streamIndex = -1;
    bool m_isGivenUp = false;
};
