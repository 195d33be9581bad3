#include "timelinegeometry.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int textOffset = 2; // of the side texts below the top band
constexpr int rangeBarHeight = 8;
constexpr int handleWidth = 8;
constexpr int markerWidth = 2;
constexpr int tickWidth = 2;
constexpr int labelWidth = 200;
constexpr int cacheOffset = 3; // below the top of the track
constexpr int cacheHeight = 3;
constexpr int rangeBookmarkOffset = 5; // below the top of the track
constexpr int rangeBookmarkHeight = 2;
constexpr int hitMargin = 1; // around a handle
constexpr qint64 farthest = qint64{ 1 } << 29; // leaves room for sums and widths in an int

QRect between(PixelSpan span, int y, int height)
{
    return { QPoint(span.from, y), QPoint(span.to - 1, y + height - 1) };
}

} // namespace

TimelineGeometry::TimelineGeometry(const TimelineMetrics& metrics, QSize size)
    : m_metrics(metrics)
    , m_size(size)
{
}

QRect TimelineGeometry::track() const
{
    return { m_metrics.sideMargin, centred(m_metrics.trackHeight), trackWidth(),
        m_metrics.trackHeight };
}

QRect TimelineGeometry::leftText() const
{
    return { m_metrics.labelGap, m_metrics.topBandHeight + textOffset,
        m_metrics.sideMargin - m_metrics.labelGap, m_size.height() - m_metrics.topBandHeight };
}

QRect TimelineGeometry::rightText() const
{
    return { m_size.width() - m_metrics.sideMargin + m_metrics.labelGap,
        m_metrics.topBandHeight + textOffset, m_metrics.sideMargin,
        m_size.height() - m_metrics.topBandHeight };
}

QRect TimelineGeometry::scrubArea() const
{
    return { m_metrics.sideMargin - m_metrics.labelGap, 0, trackWidth() + 2 * m_metrics.labelGap,
        m_size.height() };
}

QRect TimelineGeometry::marker(int x) const
{
    return { x, centred(m_metrics.markerHeight), markerWidth, m_metrics.markerHeight };
}

QRect TimelineGeometry::label(int x) const
{
    return { x - labelWidth / 2, 0, labelWidth, m_metrics.topBandHeight };
}

QRect TimelineGeometry::tick(int x) const
{
    return { x, centred(m_metrics.tickHeight), tickWidth, m_metrics.tickHeight };
}

QRect TimelineGeometry::startHandle(int x) const
{
    return { x + 1 - handleWidth, centred(m_metrics.tickHeight), handleWidth,
        m_metrics.tickHeight };
}

QRect TimelineGeometry::endHandle(int x) const
{
    return startHandle(x).translated(handleWidth, 0);
}

QRect TimelineGeometry::rangeBar(PixelSpan span) const
{
    return between(span, centred(rangeBarHeight), rangeBarHeight);
}

QRect TimelineGeometry::rangeHighlight(PixelSpan span) const
{
    return rangeBar(span).adjusted(0, -1, 0, 1);
}

QRect TimelineGeometry::cacheBand(PixelSpan span) const
{
    return between(span, track().y() + cacheOffset, cacheHeight);
}

QRect TimelineGeometry::rangeBookmark(PixelSpan span) const
{
    return between(span, track().y() + rangeBookmarkOffset, rangeBookmarkHeight);
}

QRect TimelineGeometry::startHit(int x) const
{
    const int y = centred(m_metrics.tickHeight);
    return { QPoint(x - handleWidth, y - hitMargin),
        QPoint(x + hitMargin, y + m_metrics.tickHeight) };
}

QRect TimelineGeometry::endHit(int x) const
{
    return startHit(x).translated(handleWidth, 0);
}

QRect TimelineGeometry::rangeHit(PixelSpan span) const
{
    return { startHit(span.from).topLeft(), endHit(span.to).bottomRight() };
}

int TimelineGeometry::positionOf(int frame, FrameRange span) const
{
    const int left = m_metrics.sideMargin;
    const qint64 frames = qint64{ span.end } - span.start;
    if (frames == 0) {
        return left;
    }
    const qint64 offset = (qint64{ frame } - span.start) * trackWidth() / frames;
    return static_cast<int>(std::clamp(left + offset, -farthest, farthest));
}

int TimelineGeometry::frameAt(int x, FrameRange span) const
{
    const qint64 offset = qint64{ x } - m_metrics.sideMargin;
    const qint64 width = trackWidth();
    if (offset < 1) {
        return span.start;
    }
    if (offset >= width) {
        return span.end;
    }
    const qint64 frames = qint64{ span.end } - span.start;
    const double share = static_cast<double>(frames * offset) / static_cast<double>(width);
    return static_cast<int>(span.start + std::llround(share));
}

PixelSpan TimelineGeometry::rangeEnds(FrameRange range, int frameCount) const
{
    if (frameCount == 1) {
        return { m_metrics.sideMargin, m_metrics.sideMargin + trackWidth() };
    }
    const FrameRange media{ 1, frameCount };
    return { positionOf(std::max(range.start, 1), media),
        positionOf(std::min(range.end, frameCount), media) };
}

/// Top of what is centred in the lower band.
int TimelineGeometry::centred(int height) const
{
    const double top = m_metrics.topBandHeight;
    return static_cast<int>((m_size.height() - top - height) * 0.5 + top);
}

int TimelineGeometry::trackWidth() const
{
    return m_size.width() - 2 * m_metrics.sideMargin;
}
