#include "rangemenu.h"

#include "player.h"

RangeMenu::RangeMenu(Player* window)
    : QMenu(window)
    , m_window(window)
{
    connect(this, &QMenu::aboutToShow, this, &RangeMenu::fill);
}

void RangeMenu::offer(const QList<RangeBookmark>& ranges)
{
    m_ranges = ranges;
    m_filled = false;
}

void RangeMenu::fill()
{
    if (m_filled) {
        return;
    }
    m_filled = true;
    clear();
    if (m_ranges.isEmpty()) {
        addAction(tr("<No Bookmarks>"));
    }
    for (const RangeBookmark& range : qAsConst(m_ranges)) {
        QString text = range.name;
        text.replace(QLatin1Char('&'), QLatin1String("&&")); // it would underline the next letter
        QAction* entry = addAction(text);
        entry->setData(QStringList{ QString::number(range.start), QString::number(range.end) });
        connect(entry, &QAction::triggered, m_window, qOverload<>(&Player::setRangeBookmark));
    }
}
