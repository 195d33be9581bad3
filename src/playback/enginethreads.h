#pragma once

#include <memory>

class AudioManager;
class MediaManager;
class MediaSource;
class VideoManager;

/// The three engine objects, each in a thread of its own. GUI thread.
class EngineThreads {
public:
    EngineThreads();

    /// Ends the threads in the order media, audio, video and waits at most about 0.1 s for them.
    /// Where one is still in a long call, all three are left as they are, reachable, for the rest
    /// of the process.
    ~EngineThreads();
    EngineThreads(const EngineThreads&) = delete;
    EngineThreads& operator=(const EngineThreads&) = delete;

    void startMedia();
    void startAudio();
    void startVideo();

    MediaManager& media();
    AudioManager& audio();
    VideoManager& video();

    /// Tells the engine to let go of `source` at once and keeps the source for the rest of the
    /// process: a thread may still be using it.
    static void leaveBehind(std::unique_ptr<MediaSource> source);

private:
    struct Objects;
    std::unique_ptr<Objects> m_objects;
};
