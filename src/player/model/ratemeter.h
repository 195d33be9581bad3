#pragma once

#include <QtGlobal>

#include <optional>

/// The frame rate that playing reaches, measured over intervals of at least a second.
class RateMeter {
public:
    /// A new interval begins at `frame`.
    void start(int frame, qint64 nowMs);

    /// The rate to show from now on, in frames per second, if it changes: at the return to normal
    /// speed the nominal rate of the media, at the end of an interval the one measured in it.
    std::optional<double> tick(int frame, qint64 nowMs, double speedMultiplier, double nominalRate);

private:
    int m_firstFrame = 1;
    qint64 m_startedMs = 0;
    double m_lastSpeed = 1.0;
};
