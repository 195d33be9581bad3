#include "timelinemenu.h"

#include "timelinewidget.h"

#include <QAction>
#include <QMenu>

namespace {

struct Row {
    const char* id; // object name
    const char* text;
    void (TimelineWidget::*triggered)(); // of an entry without a check mark of its own
    void (TimelineWidget::*toggled)(bool); // of one with
    bool checkable;
};

constexpr auto chooseDisplay =
    static_cast<void (TimelineWidget::*)()>(&TimelineWidget::setDisplayType);

// In the order of TimelineMenu::Entry.
// clang-format off
constexpr std::array<Row, TimelineMenu::EntryCount> rows{{
    {"rangeStart", QT_TRANSLATE_NOOP("TimelineWidget", "Range Start to Current"), &TimelineWidget::setRangeStartFromAction, nullptr, false},
    {"rangeEnd", QT_TRANSLATE_NOOP("TimelineWidget", "Range End to Current"), &TimelineWidget::setRangeEndFromAction, nullptr, false},
    {"resetRange", QT_TRANSLATE_NOOP("TimelineWidget", "Reset Playback Range"), &TimelineWidget::resetRange, nullptr, false},
    {"frameNumbers", QT_TRANSLATE_NOOP("TimelineWidget", "Frame Numbers"), chooseDisplay, nullptr, true},
    {"timeCode", QT_TRANSLATE_NOOP("TimelineWidget", "Time Code"), chooseDisplay, nullptr, true},
    {"seconds", QT_TRANSLATE_NOOP("TimelineWidget", "Seconds"), chooseDisplay, nullptr, true},
    {"positionAtTop", QT_TRANSLATE_NOOP("TimelineWidget", "Position Timeline at Top"), nullptr, &TimelineWidget::setPositionAtTop, true},
    {"frameBookmarks", QT_TRANSLATE_NOOP("TimelineWidget", "Frame Bookmarks"), nullptr, &TimelineWidget::displayFrameBookmarks, true},
    {"rangeBookmarks", QT_TRANSLATE_NOOP("TimelineWidget", "Range Bookmarks"), nullptr, &TimelineWidget::displayRangeBookmarks, true},
    {"cache", QT_TRANSLATE_NOOP("TimelineWidget", "Cache"), nullptr, &TimelineWidget::displayCache, true},
}};
// clang-format on

QAction* makeAction(const Row& row, TimelineWidget* timeline)
{
    auto* action = new QAction(TimelineWidget::tr(row.text), timeline);
    action->setObjectName(QLatin1String(row.id));
    action->setCheckable(row.checkable);
    if (row.triggered != nullptr) {
        QObject::connect(action, &QAction::triggered, timeline, row.triggered);
    } else {
        QObject::connect(action, &QAction::triggered, timeline, row.toggled);
    }
    return action;
}

} // namespace

TimelineMenu::TimelineMenu(TimelineWidget* timeline)
{
    for (std::size_t entry = 0; entry < rows.size(); ++entry) {
        m_actions.at(entry) = makeAction(rows.at(entry), timeline);
    }
}

void TimelineMenu::offerFrame(int frame, const QString& name) const
{
    action(RangeStart)->setText(TimelineWidget::tr("Range Start to %1").arg(name));
    action(RangeEnd)->setText(TimelineWidget::tr("Range End to %1").arg(name));
    action(RangeStart)->setData(frame);
    action(RangeEnd)->setData(frame);
}

void TimelineMenu::show(
    TimelineWidget* timeline, QPoint globalPosition, bool withRangeBookmarks) const
{
    QMenu menu(timeline);
    menu.addActions({ action(RangeStart), action(RangeEnd), action(ResetRange) });
    menu.addSeparator();
    menu.addActions({ action(FrameNumbers), action(TimeCode), action(Seconds) });
    menu.addSeparator();
    QMenu* display = menu.addMenu(TimelineWidget::tr("Display"));
    display->addAction(action(PositionAtTop));
    display->addSeparator();
    display->addAction(action(FrameBookmarks));
    if (withRangeBookmarks) {
        display->addAction(action(RangeBookmarks));
    }
    display->addAction(action(Cache));
    menu.exec(globalPosition);
}
