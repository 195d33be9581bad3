#include "frameclock.h"

namespace {
constexpr double firstFrame = 1.0;
constexpr double insideFrameSeconds = 0.0001;
}

FrameClock::FrameClock(double frameRate, double frameDuration)
    : m_frameRate(frameRate)
    , m_frameDuration(frameDuration)
{
}

int FrameClock::frameAt(double seconds) const
{
    return static_cast<int>(seconds * m_frameRate + firstFrame);
}

double FrameClock::timeOf(int frame) const
{
    return (frame - 1) * m_frameDuration + insideFrameSeconds;
}
