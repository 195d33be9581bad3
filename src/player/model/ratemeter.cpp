#include "ratemeter.h"

#include <algorithm>
#include <utility>

namespace {
constexpr qint64 intervalMs = 1000;
constexpr double msPerSecond = 1000.0;
constexpr double normalSpeed = 1.0;
}

void RateMeter::start(int frame, qint64 nowMs)
{
    m_firstFrame = frame;
    m_startedMs = nowMs;
}

std::optional<double> RateMeter::tick(
    int frame, qint64 nowMs, double speedMultiplier, double nominalRate)
{
    const double lastSpeed = std::exchange(m_lastSpeed, speedMultiplier);
    if (speedMultiplier == normalSpeed && lastSpeed != normalSpeed) {
        start(frame, nowMs);
        return nominalRate;
    }
    const qint64 elapsedMs = nowMs - m_startedMs;
    if (elapsedMs < intervalMs) {
        return std::nullopt;
    }
    const double frames = double(frame) - m_firstFrame; // below 0 after a jump back
    start(frame, nowMs);
    return std::max(0.0, frames / double(elapsedMs) * msPerSecond);
}
