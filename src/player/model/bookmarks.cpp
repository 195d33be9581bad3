#include "bookmarks.h"

#include <algorithm>
#include <iterator>
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

std::optional<int> Bookmarks::cycledFrame(int frame, bool backward) const
{
    if (m_frames.isEmpty()) {
        return std::nullopt;
    }
    if (backward) {
        const auto next = m_frames.lowerBound(frame); // the one before it is smaller
        return next != m_frames.begin() ? std::prev(next).key() : m_frames.lastKey();
    }
    const auto next = m_frames.upperBound(frame);
    return next != m_frames.end() ? next.key() : m_frames.firstKey();
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

void Bookmarks::setRanges(QList<RangeBookmark> ranges)
{
    const auto ends = [](const RangeBookmark& range) { return std::pair(range.start, range.end); };
    const auto isNegative = [](const RangeBookmark& range) {
        return range.start < 0 || range.end < 0;
    };
    ranges.erase(std::remove_if(ranges.begin(), ranges.end(), isNegative), ranges.end());
    std::stable_sort(ranges.begin(), ranges.end(),
        [&](const RangeBookmark& a, const RangeBookmark& b) { return ends(a) < ends(b); });
    const auto last = std::unique(ranges.begin(), ranges.end(),
        [&](const RangeBookmark& a, const RangeBookmark& b) { return ends(a) == ends(b); });
    ranges.erase(last, ranges.end());
    m_ranges = std::move(ranges);
}

std::optional<RangeBookmark> Bookmarks::cycledRange(int start, int end, bool backward) const
{
    if (m_ranges.isEmpty()) {
        return std::nullopt;
    }
    if (!containsRange(start, end)) {
        return backward ? m_ranges.last() : m_ranges.first();
    }
    const auto place =
        std::lower_bound(m_ranges.begin(), m_ranges.end(), std::pair(start, end), startsBefore);
    if (backward) {
        return place != m_ranges.begin() ? *std::prev(place) : m_ranges.last();
    }
    return std::next(place) != m_ranges.end() ? *std::next(place) : m_ranges.first();
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
