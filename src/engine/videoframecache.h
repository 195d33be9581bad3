#pragma once

#include "picturememory.h"

#include <QMutex>
#include <QSemaphore>

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>

/// One converted picture: packed RGB24, rows padded to 4 bytes.
struct DecodedVideoFrame {
    /// `memory` has `size` bytes, not cleared: whoever makes a picture writes every byte that is
    /// shown.
    DecodedVideoFrame(std::shared_ptr<uint8_t[]> memory, int size, int width, int height);

    /// With memory of its own; null when out of memory.
    DecodedVideoFrame(int size, int width, int height);

    /// Never written again once the picture is in the cache, so that the window can show it in
    /// place.
    std::shared_ptr<uint8_t[]> data;
    int size; // bytes, row padding included
    int width; // pixels
    int height; // pixels
    double time = 0.0; // presentation time, seconds on the playback clock's scale
};

/// The converted pictures around the play head: filled by the video decoder, read by whoever shows
/// them. It locks itself, but for what says that its caller holds mutex(), which then does so for
/// as long as it looks at the frame; the picture's bytes last for as long as they are shared.
class VideoFrameCache {
public:
    VideoFrameCache();

    /// Any thread. Sizes the cache for pictures of `frameBytes` and empties it. A budget below 256
    /// MB counts as 256 MB; one percent of it stays unused. `trailingShare` (0 to 1) is the share
    /// kept behind the play head.
    void setCacheSize(int64_t cacheBytes, int64_t frameBytes, float trailingShare);

    /// Video thread. Memory for a picture, recycled where the size fits from one that neither the
    /// cache nor the window has any more; null when out of memory.
    [[nodiscard]] std::unique_ptr<DecodedVideoFrame> obtain(int size, int width, int height);

    /// Video thread. True when the next put would be taken: a short look, no wait. Before anything
    /// was shown since the last reset, a full cache whose second picture starts after `clock` takes
    /// nothing more: rolling on would push out the very picture that is about to be shown.
    [[nodiscard]] bool hasRoom(double clock);

    /// Video thread. Appends a picture, evicting at most one that is further behind the play head
    /// than the trailing share; takes it also while `discarding`, to throw it away. False after
    /// about 1 ms when full: the caller still owns the picture.
    [[nodiscard]] bool put(std::unique_ptr<DecodedVideoFrame>& frame, double frameDuration);

    /// Frame to show at `seconds`: the last one that starts by then, else the first one cached;
    /// null when nothing is cached. The caller holds mutex(); the frame stays valid until the lock
    /// is released.
    const DecodedVideoFrame* frameAt(double seconds);

    /// True when frameAt(seconds) is on show at that time, going by the pictures' nominal length.
    /// Caller holds mutex().
    [[nodiscard]] bool isDecodedUpTo(double seconds) const;

    /// True when frameAt(seconds) is sure to stay what it is: a later picture is there, or none
    /// will come. Caller holds mutex().
    [[nodiscard]] bool isFinalAt(double seconds) const;

    /// Any thread. True when the stream's last picture is in.
    [[nodiscard]] bool isComplete() const { return m_complete.load(std::memory_order_relaxed); }

    /// Any thread. True when the cached pictures go at least to `seconds`, or to the end of the
    /// stream.
    [[nodiscard]] bool reaches(double seconds) const;

    /// Video thread, at the end of the stream; never before the end of the newest picture.
    void setEndTime(double seconds);

    /// Any thread. Empties the cache; the pictures' memory is given back little by little by later
    /// puts.
    void reset();

    /// Any thread. What reset() has left to later puts, for the caller to free where it may take
    /// its time.
    using FrameLists = std::deque<std::deque<std::unique_ptr<DecodedVideoFrame>>>;
    [[nodiscard]] FrameLists takeRetired();

    /// Empties the cache and gives all its memory back at once, but for that of pictures that
    /// others own, too.
    void clear();

    /// Any thread. Gives back the memory that is kept for pictures to come.
    void dropSpareMemory() { m_memory.clear(); }

    /// Any thread. True when `seconds` lies inside the cached span; an empty cache contains no
    /// time.
    [[nodiscard]] bool contains(double seconds);

    /// Any thread, for display: the span's limits in seconds, the pictures held, their bytes.
    [[nodiscard]] double startTime() const { return m_startTime.load(std::memory_order_relaxed); }
    [[nodiscard]] double endTime() const { return m_endTime.load(std::memory_order_relaxed); }
    [[nodiscard]] int frameCount() const { return m_usedSlots.available(); }
    [[nodiscard]] int64_t byteCount() const { return m_byteCount.load(std::memory_order_relaxed); }
    [[nodiscard]] int capacity();
    [[nodiscard]] int trailing();

    QMutex& mutex() { return m_mutex; }

    /// While true, put throws away what it is given. Set by the demuxer on a seek, cleared by the
    /// video decoder at the flush marker.
    std::atomic<bool> discarding{ false };

private:
    using FramePtr = std::unique_ptr<DecodedVideoFrame>;

    [[nodiscard]] bool mayEvict() const;
    void insert(FramePtr frame, double frameDuration);
    std::deque<FramePtr>::iterator firstAfter(double seconds);
    void evictFirst();
    void reclaimRetired();

    PictureMemory m_memory;
    QMutex m_mutex; // guards everything below
    std::deque<FramePtr> m_frames; // in decoding order, ascending time
    FrameLists m_retired; // whole lists set aside by reset
    QSemaphore m_freeSlots; // changes only under the lock
    QSemaphore m_usedSlots; // changes only under the lock
    int m_currentIndex = -1; // of the frame last shown; below 0: none since the last reset
    int m_capacity;
    int m_trailing; // frames allowed behind the current one
    std::atomic<bool> m_complete{
        false
    }; // the stream's last picture is in; written under the lock
    std::atomic<int64_t> m_byteCount{ 0 }; // written under the lock
    std::atomic<double> m_startTime{ 0.0 }; // written under the lock, read for display
    std::atomic<double> m_endTime{ 0.0 }; // written under the lock, read for display
};
