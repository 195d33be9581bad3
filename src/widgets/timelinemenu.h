#pragma once

#include <QObject>

#include <array>

class QAction;
class QPoint;
class TimelineWidget;

/// The actions of a timeline's context menu, and the menu itself.
class TimelineMenu {
public:
    enum Entry {
        RangeStart,
        RangeEnd,
        ResetRange,
        FrameNumbers,
        TimeCode,
        Seconds,
        PositionAtTop,
        FrameBookmarks,
        RangeBookmarks,
        Cache,
        EntryCount
    };

    /// The actions become children of `timeline`, connected to its slots.
    explicit TimelineMenu(TimelineWidget* timeline);

    [[nodiscard]] QAction* action(Entry entry) const { return m_actions.at(entry); }

    /// What the two range actions offer: "Range Start to `name`", carrying `frame`.
    void offerFrame(int frame, const QString& name) const;

    /// Shows the menu and returns when it is closed again.
    void show(TimelineWidget* timeline, QPoint globalPosition, bool withRangeBookmarks) const;

private:
    std::array<QAction*, EntryCount> m_actions{}; // children of the timeline
};
