#include "frametimer.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {
constexpr double gridTolerance =
    0.001; // seconds; twice the error of a stamp rounded to milliseconds
constexpr double gridToleranceShare = 0.25; // of a frame, for rates at which a millisecond is much
}

FrameTimer::FrameTimer(const Stream& stream)
    : m_stream(stream)
    , m_frameDuration(1.0 / stream.frameRate)
    , m_comparing(stream.hasConstantRate)
{
}

void FrameTimer::packetSent(int64_t decodeTime)
{
    m_sent.push_back(m_stream.ignoresDecodeTimes ? noTime : decodeTime);
}

double FrameTimer::timeOf(const Picture& picture)
{
    skipPacketsUpTo(picture.releasedBy);
    if (isRegular() && picture.ownTime != noTime) {
        const double shown = timeOfOwn(picture.ownTime);
        m_guessed = false;
        m_predictedTime = shown + m_startOffset + m_stream.delay + m_frameDuration;
        return shown;
    }
    double raw = rawTime(picture);
    m_guessed = false;
    if (raw == 0.0) {
        const bool nothingKnown = m_predictedTime == 0.0 && !m_decodeTimeMet;
        if (nothingKnown && picture.ownTime != noTime) {
            // The last group of pictures can be shorter than the reorder delay: no decode time is
            // ever met.
            raw = static_cast<double>(picture.ownTime) * m_stream.timeBase;
        } else {
            raw = m_predictedTime;
            m_guessed = picture.releasedBy == noTime || m_stream.ignoresDecodeTimes;
        }
    }
    const double time = raw - m_stream.delay;
    if (!m_firstTimeSeen) {
        m_startOffset = std::max(time, 0.0);
        m_firstTimeSeen = true;
    }
    m_predictedTime = raw + m_frameDuration + 0.5 * m_frameDuration * picture.repeatedFields;
    const double shown = onGrid(time - m_startOffset, m_frameDuration);
    compare(picture, shown);
    return shown;
}

double FrameTimer::timeOfOwn(int64_t ticks) const
{
    return onGrid(static_cast<double>(ticks) * m_stream.timeBase - m_ownStart, m_frameDuration);
}

void FrameTimer::compare(const Picture& picture, double time)
{
    if (!m_comparing || std::exchange(m_firstOfRun, false)) {
        return; // the first one can be released early
    }
    if (picture.ownTime == noTime || m_guessed) {
        m_comparing = false;
        return;
    }
    if (m_agreeing == 0) {
        m_ownStart = static_cast<double>(picture.ownTime) * m_stream.timeBase - time;
    }
    constexpr double sameTime = 1e-6; // seconds; far less than a tick
    m_comparing = std::abs(timeOfOwn(picture.ownTime) - time) < sameTime;
    m_agreeing += m_comparing ? 1 : 0;
}

double FrameTimer::rawTime(const Picture& picture) const
{
    int64_t ticks = 0;
    if (picture.releasedBy == noTime) {
        ticks = picture.tag != noTime ? picture.tag : 0;
    } else if (!m_stream.ignoresDecodeTimes) {
        ticks = picture.releasedBy;
    }
    return static_cast<double>(ticks) * m_stream.timeBase;
}

// Packets before the one that released a picture have released none; each of them says when the
// next picture was expected. A picture of the final drain, released by no packet, comes after all
// of them.
void FrameTimer::skipPacketsUpTo(int64_t decodeTime)
{
    const int64_t key = m_stream.ignoresDecodeTimes ? noTime : decodeTime;
    const auto own = std::find(m_sent.begin(), m_sent.end(), key);
    if (own == m_sent.end() && key != noTime) {
        return; // a second picture of the same packet
    }
    for (auto packet = m_sent.begin(); packet != own; ++packet) {
        if (*packet != noTime) {
            m_predictedTime = static_cast<double>(*packet) * m_stream.timeBase;
            m_decodeTimeMet = true;
        }
    }
    m_decodeTimeMet = m_decodeTimeMet || key != noTime;
    m_sent.erase(m_sent.begin(), own == m_sent.end() ? own : own + 1);
}

void FrameTimer::flush()
{
    m_sent.clear();
    m_predictedTime = 0.0;
    m_decodeTimeMet = false;
    m_firstOfRun = true;
    // A picture met only after a seek says nothing of where the file starts.
    m_firstTimeSeen = true;
}

double FrameTimer::onGrid(double seconds, double frameDuration)
{
    const double nearest = std::round(seconds / frameDuration) * frameDuration;
    const double tolerance = std::min(gridTolerance, frameDuration * gridToleranceShare);
    return std::abs(seconds - nearest) <= tolerance ? nearest : seconds;
}
