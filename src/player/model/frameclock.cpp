#include "frameclock.h"

#include <algorithm>
#include <limits>

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
    constexpr double last = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(seconds * m_frameRate + firstFrame, -last, last));
}

double FrameClock::timeOf(int frame) const
{
    return (frame - 1) * m_frameDuration + insideFrameSeconds;
}
