#pragma once

/// The one conversion between a time in seconds and a frame number; frames count from 1.
class FrameClock {
public:
    FrameClock() = default;
    /// Frames per second and seconds per frame, as the playback manager gives them.
    FrameClock(double frameRate, double frameDuration);

    /// Frame on show at `seconds`.
    [[nodiscard]] int frameAt(double seconds) const;

    /// Time to ask for to see `frame`: a little inside it, safe from rounding.
    [[nodiscard]] double timeOf(int frame) const;

private:
    double m_frameRate = -1.0;
    double m_frameDuration = -1.0;
};
