#include "bookmarks.h"

#include <algorithm>
#include <utility>

namespace {

bool startsBefore(const RangeBookmark& range, const std::pair<int, int>& ends)
{
    return std::pair(range.start, range.end) < ends;
}

} // namespace

void Bookmarks::clear()
{
    clearFrames();
    clearRanges();
    clearCurrentRange();
}

void Bookmarks::addFrame(int frame)
{
    if (frame >= 0) {
        m_frames.insert(frame, frame);
    }
}

void Bookmarks::removeFrame(int frame)
{
    m_frames.remove(frame);
}

void Bookmarks::removeFrames(int start, int end)
{
    auto frame = m_frames.lowerBound(start);
    while (frame != m_frames.end() && frame.key() <= end) {
        frame = m_frames.erase(frame);
    }
}

void Bookmarks::clearFrames()
{
    m_frames.clear();
}

void Bookmarks::addRange(int start, int end, const QString& name)
{
    if (start < 0 || end < 0 || containsRange(start, end)) {
        return;
    }
    const auto place =
        std::lower_bound(m_ranges.begin(), m_ranges.end(), std::pair(start, end), startsBefore);
    m_ranges.insert(place, { start, end, name });
}

void Bookmarks::removeRange(int start, int end)
{
    const auto place =
        std::lower_bound(m_ranges.begin(), m_ranges.end(), std::pair(start, end), startsBefore);
    if (place != m_ranges.end() && place->start == start && place->end == end) {
        m_ranges.erase(place);
    }
}

void Bookmarks::clearRanges()
{
    m_ranges.clear();
}

bool Bookmarks::containsRange(int start, int end) const
{
    const auto place =
        std::lower_bound(m_ranges.begin(), m_ranges.end(), std::pair(start, end), startsBefore);
    return place != m_ranges.end() && place->start == start && place->end == end;
}

void Bookmarks::setCurrentRange(int start, int end)
{
    m_currentRangeStart = start;
    m_currentRangeEnd = end;
}

void Bookmarks::clearCurrentRange()
{
    setCurrentRange(noFrame, noFrame);
}
