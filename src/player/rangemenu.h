#pragma once

#include "bookmarks.h"

#include <QMenu>

class Player;

/// Offers range bookmarks by name and has the window play the one that is chosen. Its entries are
/// made when it is about to show, as there may be thousands.
class RangeMenu : public QMenu {
    Q_OBJECT

public:
    explicit RangeMenu(Player* window);

    /// What it offers from now on.
    void offer(const QList<RangeBookmark>& ranges);

private:
    void fill();

    Player* m_window;
    QList<RangeBookmark> m_ranges;
    bool m_filled = false;
};
