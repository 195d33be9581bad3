#include "playbackclock.h"

extern "C" {
#include <libavutil/time.h>
}

#include <algorithm>

namespace {
constexpr double microsecondsPerSecond = 1000000.0;
constexpr double latestSeconds = 1e9; // far beyond any file, and safe in microseconds
}

class PlaybackClock::Spin {
public:
    explicit Spin(std::atomic_flag& busy)
        : m_busy(busy)
    {
        while (m_busy.test_and_set(std::memory_order_acquire)) { }
    }
    ~Spin() { m_busy.clear(std::memory_order_release); }
    Spin(const Spin&) = delete;
    Spin& operator=(const Spin&) = delete;

private:
    std::atomic_flag& m_busy;
};

PlaybackClock::PlaybackClock()
    : PlaybackClock(av_gettime_relative)
{
}

PlaybackClock::PlaybackClock(Now now)
    : m_now(now)
{
}

void PlaybackClock::reset(double seconds)
{
    const double start = std::clamp(seconds >= 0.0 ? seconds : 0.0, 0.0, latestSeconds);
    const double rate = speed.load(std::memory_order_relaxed);
    const Spin spin(m_busy);
    m_previousStamp =
        static_cast<int64_t>(static_cast<double>(m_now()) - start * microsecondsPerSecond / rate);
    m_stamp = m_now();
    m_time = static_cast<double>(m_stamp - m_previousStamp) / microsecondsPerSecond * rate;
}

int64_t PlaybackClock::advance()
{
    m_previousStamp = m_stamp;
    m_stamp = m_now();
    const int64_t elapsed = m_stamp - m_previousStamp;
    m_time += static_cast<double>(elapsed) / microsecondsPerSecond
        * speed.load(std::memory_order_relaxed);
    return elapsed;
}

int64_t PlaybackClock::update()
{
    const Spin spin(m_busy);
    return advance();
}

double PlaybackClock::updatedTimeIf(const std::atomic<bool>& running)
{
    const Spin spin(m_busy);
    if (running.load(std::memory_order_relaxed)) {
        advance();
    }
    return m_time;
}

double PlaybackClock::time() const
{
    const Spin spin(m_busy);
    return m_time;
}
