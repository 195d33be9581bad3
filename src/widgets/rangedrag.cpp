#include "rangedrag.h"

#include <algorithm>
#include <limits>

namespace {

double pixelsPerFrame(Qt::KeyboardModifiers modifiers)
{
    const bool coarse = modifiers.testFlag(Qt::ShiftModifier);
    const bool fine = modifiers.testFlag(Qt::ControlModifier);
    if (coarse == fine) {
        return 2.0;
    }
    return fine ? 20.0 : 0.1;
}

int toFrame(qint64 value)
{
    return static_cast<int>(std::clamp<qint64>(
        value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

} // namespace

RangeDrag::RangeDrag(Part part, FrameRange range)
    : m_part(part)
    , m_length(qint64{ range.end } - range.start)
{
}

FrameRange RangeDrag::moved(FrameRange range, int from, int to, int frameCount)
{
    const qint64 delta = qint64{ to } - from;
    qint64 start = std::max<qint64>(1, range.start + (m_part != Part::End ? delta : 0));
    qint64 end = std::min<qint64>(frameCount, range.end + (m_part != Part::Start ? delta : 0));
    if (m_part == Part::Whole) {
        keepLength(start, end, range, frameCount);
    }
    return { toFrame(start), toFrame(end) };
}

void RangeDrag::keepLength(qint64& start, qint64& end, FrameRange range, int frameCount)
{
    if (start == 1 || m_length <= end - start || end == frameCount) {
        if (end - start < m_length) {
            m_pinnedAtStart = start == 1;
        }
    } else if (!m_pinnedAtStart) {
        end = std::min<qint64>(frameCount, start + m_length);
    } else {
        start = std::max<qint64>(1, range.end - m_length);
        if (end - start > m_length) {
            start = end - m_length;
        }
    }
}

int labelDragFrames(int pixels, Qt::KeyboardModifiers modifiers)
{
    return toFrame(static_cast<qint64>(pixels / pixelsPerFrame(modifiers)));
}

int movedFrame(int frame, qint64 frames)
{
    return toFrame(frame + frames);
}
