#pragma once

#include "framerange.h"

#include <Qt>

/// Arithmetic of moving a range, or one of its ends, along with the pointer.
class RangeDrag {
public:
    enum class Part { Start, End, Whole };

    /// The pointer went down on `part` of `range`.
    RangeDrag(Part part, FrameRange range);

    [[nodiscard]] Part part() const { return m_part; }

    /// The range to ask for when the pointer has moved from frame `from` to frame `to`, in a media
    /// of `frameCount` frames. A whole range pushed against an end of the media gets shorter there
    /// and takes its old length again on the way back. The end may come before the start.
    [[nodiscard]] FrameRange moved(FrameRange range, int from, int to, int frameCount);

private:
    void keepLength(qint64& start, qint64& end, FrameRange range, int frameCount);

    Part m_part;
    qint64 m_length; // last frame minus first one, as it was at the start
    bool m_pinnedAtStart = false; // pushed against frame 1
};

/// How far a range label dragged by `pixels` moves its end of the range at once: 2 pixels a frame,
/// 20 with Ctrl, ten frames a pixel with Shift, towards zero.
[[nodiscard]] int labelDragFrames(int pixels, Qt::KeyboardModifiers modifiers);

/// `frame` moved by `frames`, at the limit of an int where it would go beyond.
[[nodiscard]] int movedFrame(int frame, qint64 frames);
