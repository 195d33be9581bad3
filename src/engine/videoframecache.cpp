#include "videoframecache.h"

#include "scopedlock.h"

#include <QThread>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr int initialCapacity = 176; // frames, until the picture size is known
constexpr int initialTrailing = 123;
constexpr int64_t smallestCacheBytes = 256000000;
constexpr int64_t smallestBudgetBytes = 253440000; // 99 % of it
constexpr double usedShareOfCache = 0.99;
constexpr int leastFramesAhead = 2;
constexpr int retiredFramesPerPut = 2;
constexpr int freeSlotWaitMs = 1;
constexpr unsigned long refusedPauseMicroseconds = 1;

} // namespace

DecodedVideoFrame::DecodedVideoFrame(
    std::shared_ptr<uint8_t[]> memory, int bytes, int widthPixels, int heightPixels)
    : data(std::move(memory))
    , size(bytes)
    , width(widthPixels)
    , height(heightPixels)
{
}

DecodedVideoFrame::DecodedVideoFrame(int bytes, int widthPixels, int heightPixels)
    : DecodedVideoFrame(PictureMemory().obtain(bytes), bytes, widthPixels, heightPixels)
{
}

VideoFrameCache::VideoFrameCache()
    : m_freeSlots(initialCapacity)
    , m_capacity(initialCapacity)
    , m_trailing(initialTrailing)
{
}

void VideoFrameCache::setCacheSize(int64_t cacheBytes, int64_t frameBytes, float trailingShare)
{
    const int64_t budget = cacheBytes < smallestCacheBytes
        ? smallestBudgetBytes
        : static_cast<int64_t>(static_cast<double>(cacheBytes) * usedShareOfCache);
    const int64_t fitting = std::min<int64_t>(
        budget / std::max<int64_t>(frameBytes, 1), std::numeric_limits<int>::max());
    {
        const ScopedLock lock(m_mutex);
        // A picture larger than the whole budget still gets a place beside the one on show.
        m_capacity = std::max(static_cast<int>(fitting), leastFramesAhead);
        // Settings can name any share; what is meant lies between none and all.
        const float kept = std::clamp(trailingShare, 0.0F, 1.0F);
        const int share = static_cast<int>(static_cast<float>(m_capacity) * kept);
        m_trailing = m_capacity - share < leastFramesAhead ? m_capacity - leastFramesAhead : share;
    }
    reset();
}

std::unique_ptr<DecodedVideoFrame> VideoFrameCache::obtain(int size, int width, int height)
{
    auto memory = m_memory.obtain(size);
    return memory ? std::make_unique<DecodedVideoFrame>(std::move(memory), size, width, height)
                  : nullptr;
}

bool VideoFrameCache::hasRoom(double clock)
{
    if (discarding.load(std::memory_order_acquire)) {
        return true;
    }
    const ScopedLock lock(m_mutex);
    if (m_freeSlots.available() > 0) {
        return true;
    }
    const bool nothingShown = m_currentIndex < 0;
    if (nothingShown && m_frames.size() > 1 && m_frames[1]->time > clock) {
        return false;
    }
    return mayEvict();
}

bool VideoFrameCache::mayEvict() const
{
    const int used = m_usedSlots.available();
    return used > 0 && ((m_currentIndex < 0 && used >= m_capacity) || m_currentIndex > m_trailing);
}

bool VideoFrameCache::put(std::unique_ptr<DecodedVideoFrame>& frame, double frameDuration)
{
    const ScopedLock lock(m_mutex);
    if (discarding.load(std::memory_order_acquire)) {
        frame.reset();
        return true;
    }
    reclaimRetired();
    if (mayEvict()) {
        evictFirst();
    }
    if (!m_freeSlots.tryAcquire(1, freeSlotWaitMs)) {
        QThread::usleep(
            refusedPauseMicroseconds); // under the lock: paces a caller that tries again at once
        return false;
    }
    insert(std::move(frame), frameDuration);
    return true;
}

void VideoFrameCache::insert(FramePtr frame, double frameDuration)
{
    m_byteCount += frame->size;
    // Nearly always the end. A stream whose times jump back is kept in order, as the lookup needs
    // it.
    const auto place = firstAfter(frame->time);
    if (place - m_frames.begin() <= m_currentIndex) {
        ++m_currentIndex;
    }
    m_frames.insert(place, std::move(frame));
    m_startTime = m_frames.front()->time;
    m_endTime = m_frames.back()->time + frameDuration;
    m_complete = false;
    m_usedSlots.release(1);
}

std::deque<VideoFrameCache::FramePtr>::iterator VideoFrameCache::firstAfter(double seconds)
{
    return std::upper_bound(m_frames.begin(), m_frames.end(), seconds,
        [](double time, const FramePtr& frame) { return time < frame->time; });
}

void VideoFrameCache::evictFirst()
{
    m_usedSlots.acquire(1);
    m_byteCount -= m_frames.front()->size;
    m_frames.pop_front();
    m_freeSlots.release(1);
    --m_currentIndex; // it still names the same frame
}

void VideoFrameCache::reclaimRetired()
{
    for (int i = 0; i < retiredFramesPerPut && !m_retired.empty(); ++i) {
        std::deque<FramePtr>& oldest = m_retired.front();
        if (!oldest.empty()) {
            oldest.pop_front();
        }
        if (oldest.empty()) {
            m_retired.pop_front();
            return;
        }
    }
}

const DecodedVideoFrame* VideoFrameCache::frameAt(double seconds)
{
    if (m_frames.empty()) {
        m_currentIndex = -1;
        return nullptr;
    }
    m_currentIndex = std::max(static_cast<int>(firstAfter(seconds) - m_frames.begin()) - 1, 0);
    return m_frames[static_cast<size_t>(m_currentIndex)].get();
}

bool VideoFrameCache::isDecodedUpTo(double seconds) const
{
    return m_complete || (!m_frames.empty() && seconds < m_endTime.load(std::memory_order_relaxed));
}

bool VideoFrameCache::isFinalAt(double seconds) const
{
    return m_complete.load(std::memory_order_relaxed)
        || (!m_frames.empty() && m_frames.back()->time > seconds);
}

bool VideoFrameCache::reaches(double seconds) const
{
    return m_complete.load(std::memory_order_relaxed) || endTime() >= seconds;
}

void VideoFrameCache::setEndTime(double seconds)
{
    const ScopedLock lock(m_mutex);
    if (discarding.load(std::memory_order_acquire)) {
        return; // of what was read before the seek
    }
    if (!m_frames.empty()) {
        m_startTime = m_frames.front()->time;
        m_endTime = std::max(seconds, m_endTime.load(std::memory_order_relaxed));
    }
    m_complete = true;
}

void VideoFrameCache::reset()
{
    const ScopedLock lock(m_mutex);
    if (!m_frames.empty()) {
        m_retired.push_back(std::move(m_frames));
        m_frames.clear();
    }
    m_usedSlots.acquire(m_usedSlots.available());
    const int missing = m_capacity - m_freeSlots.available();
    if (missing >= 0) {
        m_freeSlots.release(missing);
    } else {
        m_freeSlots.acquire(-missing);
    }
    m_currentIndex = -1;
    m_byteCount = 0;
    m_endTime = 0.0;
    m_startTime = 0.0;
    m_complete = false;
}

VideoFrameCache::FrameLists VideoFrameCache::takeRetired()
{
    const ScopedLock lock(m_mutex);
    return std::exchange(m_retired, {});
}

void VideoFrameCache::clear()
{
    reset();
    const ScopedLock lock(m_mutex);
    m_retired.clear();
    m_memory.clear();
}

bool VideoFrameCache::contains(double seconds)
{
    const ScopedLock lock(m_mutex);
    return !m_frames.empty() && m_startTime.load(std::memory_order_relaxed) <= seconds
        && seconds <= m_endTime.load(std::memory_order_relaxed);
}

int VideoFrameCache::capacity()
{
    const ScopedLock lock(m_mutex);
    return m_capacity;
}

int VideoFrameCache::trailing()
{
    const ScopedLock lock(m_mutex);
    return m_trailing;
}
