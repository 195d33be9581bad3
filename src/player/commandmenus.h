#pragma once

#include "commandtable.h"

#include <array>

class Player;
class QAction;
class QMenu;
class QMenuBar;
class RangeMenu;

/// Makes the window's actions, its menus and its keys from the table of commands. All of them
/// belong to the window.
class CommandMenus {
public:
    explicit CommandMenus(Player* window);

    [[nodiscard]] QMenuBar& bar() const { return *m_bar; }
    [[nodiscard]] QMenu& menu(Menu which) const;
    [[nodiscard]] RangeMenu& rangeMenu() const { return *m_rangeMenu; }
    /// The action of a command of the table.
    [[nodiscard]] QAction& action(const char* id) const;

    /// Collapses the menu bar instead of hiding it, as the keys of its entries act only while it
    /// is there.
    void setBarVisible(bool visible);

private:
    void addCommand(const Command& command);
    void addWindowKeys();

    Player* m_window;
    QMenuBar* m_bar;
    RangeMenu* m_rangeMenu;
    std::array<QMenu*, menuTitles.size()> m_menus{};
};
