#pragma once

#include <QList>
#include <QMap>
#include <QString>

#include <optional>

/// A named range of frames, both ends included.
struct RangeBookmark {
    int start = 0;
    int end = 0;
    QString name;

    bool operator==(const RangeBookmark&) const = default;
};

/// The marked frames and ranges of one media file. Frames count from 1.
class Bookmarks {
public:
    static constexpr int noFrame = -1;

    QString mediaPath; // absolute; the media the bookmarks belong to

    /// An ordered set: key and value are both the frame.
    [[nodiscard]] const QMap<int, int>& frames() const { return m_frames; }
    /// Ordered by start, then by end; no two with the same start and end.
    [[nodiscard]] const QList<RangeBookmark>& ranges() const { return m_ranges; }
    /// The range bookmark that is the range played now; noFrame for none.
    [[nodiscard]] int currentRangeStart() const { return m_currentRangeStart; }
    [[nodiscard]] int currentRangeEnd() const { return m_currentRangeEnd; }

    /// Everything but the media's path.
    void clear();
    /// A negative frame is ignored.
    void addFrame(int frame);
    void removeFrame(int frame);
    /// Both ends included; nothing when `start` comes after `end`.
    void removeFrames(int start, int end);
    void clearFrames();
    /// The bookmark to go to from `frame`: the next one, or after the last one the first; backward
    /// the other way. Nothing where there is none.
    [[nodiscard]] std::optional<int> cycledFrame(int frame, bool backward) const;
    /// Ignored if there is one with this start and end, or if one of them is negative.
    void addRange(int start, int end, const QString& name);
    void removeRange(int start, int end);
    void clearRanges();
    /// All ranges anew, as if added one by one.
    void setRanges(QList<RangeBookmark> ranges);
    /// As cycledFrame(), from the bookmark with these ends; where there is none the first one, or
    /// backward the last.
    [[nodiscard]] std::optional<RangeBookmark> cycledRange(int start, int end, bool backward) const;
    [[nodiscard]] bool containsRange(int start, int end) const;
    void setCurrentRange(int start, int end);
    void clearCurrentRange();

private:
    QMap<int, int> m_frames;
    QList<RangeBookmark> m_ranges;
    int m_currentRangeStart = noFrame;
    int m_currentRangeEnd = noFrame;
};
