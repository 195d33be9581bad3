#pragma once

#include "framerange.h"

#include <QRect>
#include <QSize>

/// What tells one kind of timeline from the other in pixels and points.
struct TimelineMetrics {
    int height;
    int sideMargin; // left and right of the track
    int labelGap; // between margin and text
    int topBandHeight; // holds the frame labels; the lower band is the rest
    int trackHeight;
    int markerHeight;
    int tickHeight; // of the ends of the range and of the handles
    int labelPointSize;
};

inline constexpr TimelineMetrics timelineMetrics{ 40, 100, 10, 20, 6, 10, 10, 15 };
inline constexpr TimelineMetrics rangeTimelineMetrics{ 46, 50, 6, 14, 1, 24, 23, 12 };

/// Two places on the x axis.
struct PixelSpan {
    int from = 0;
    int to = 0;
};

/// Where everything of a timeline lies for one size of the widget, and which frame belongs to which
/// x. `x` arguments are the places of frames. Any size, frame and span will do: products are taken
/// in 64 bits and places stay within 2^29.
class TimelineGeometry {
public:
    /// The place of a frame that has none.
    static constexpr int noPosition = -999999;

    explicit TimelineGeometry(const TimelineMetrics& metrics, QSize size);

    [[nodiscard]] QRect track() const;
    [[nodiscard]] QRect leftText() const;
    [[nodiscard]] QRect rightText() const;
    /// The track with the label gap on both sides, over the whole height.
    [[nodiscard]] QRect scrubArea() const;

    [[nodiscard]] QRect marker(int x) const;
    [[nodiscard]] QRect label(int x) const;
    [[nodiscard]] QRect tick(int x) const;
    [[nodiscard]] QRect startHandle(int x) const;
    [[nodiscard]] QRect endHandle(int x) const;

    /// Without their `to`; not valid when that does not come after `from`.
    [[nodiscard]] QRect rangeBar(PixelSpan span) const;
    [[nodiscard]] QRect rangeHighlight(PixelSpan span) const;
    [[nodiscard]] QRect cacheBand(PixelSpan span) const;
    [[nodiscard]] QRect rangeBookmark(PixelSpan span) const;

    /// Where the pointer catches the handles, or the range together with them.
    [[nodiscard]] QRect startHit(int x) const;
    [[nodiscard]] QRect endHit(int x) const;
    [[nodiscard]] QRect rangeHit(PixelSpan span) const;

    /// Place of `frame` on a track that stands for the frames of `span`; outside the track when it
    /// is outside the span. A span of one frame lies at the track's left end.
    [[nodiscard]] int positionOf(int frame, FrameRange span) const;
    /// The frame of `span` nearest to `x`.
    [[nodiscard]] int frameAt(int x, FrameRange span) const;
    /// The ends of `range` on a track that stands for the frames from 1 to `frameCount`.
    [[nodiscard]] PixelSpan rangeEnds(FrameRange range, int frameCount) const;

private:
    [[nodiscard]] int centred(int height) const;
    [[nodiscard]] int trackWidth() const;

    TimelineMetrics m_metrics;
    QSize m_size;
};
