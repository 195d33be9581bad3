#pragma once

#include <atomic>
#include <cstdint>

/// The playback clock: media time in seconds that advances with wall time multiplied by `speed`. It
/// moves only when somebody calls update(). Any thread, the sound callback included: the three
/// fields change as one behind a spin of a few instructions, so a reader sees the clock before a
/// change or after it, never between, and an update that meets a reset is measured wholly before or
/// wholly after it.
class PlaybackClock {
public:
    using Now = int64_t (*)(); // microseconds on a clock that never steps back

    PlaybackClock();
    explicit PlaybackClock(Now now);

    /// Makes the clock read `seconds` now, plus the microseconds of the call; a negative time
    /// counts as 0.
    void reset(double seconds);

    /// Adds the wall time since the last reset or update; returns it in microseconds.
    int64_t update();

    /// update(), where `running` is set, and time() as one step. Who clears `running` and then
    /// resets finds the clock as it was reset: an update that was already under way when the flag
    /// fell is not counted.
    double updatedTimeIf(const std::atomic<bool>& running);

    [[nodiscard]] double time() const;

    /// Media seconds per wall second. Written by the GUI thread, read by all.
    std::atomic<double> speed{ 1.0 };

private:
    class Spin;
    int64_t advance();

    const Now m_now;
    mutable std::atomic_flag m_busy;
    double m_time = 0.0; // seconds
    int64_t m_stamp = 0; // m_now() at the last change
    int64_t m_previousStamp = 0;
};
