#pragma once

#include <QCoreApplication>
#include <QKeySequence>

#include <array>
#include <vector>

class Player;
struct Settings;

/// The menus of the menu bar from left to right, then those inside them.
enum class Menu {
    File,
    Edit,
    Playback,
    Audio,
    Video,
    Bookmarks,
    Tools,
    Help,
    RecentMedia,
    RecentBookmarks,
    Speed,
    Clear,
    SetRange,
    Nowhere // a command without an entry
};

/// Title of each menu, by its value.
inline constexpr std::array menuTitles{ QT_TRANSLATE_NOOP("Player", "File"),
    QT_TRANSLATE_NOOP("Player", "Edit"), QT_TRANSLATE_NOOP("Player", "Playback"),
    QT_TRANSLATE_NOOP("Player", "Audio"), QT_TRANSLATE_NOOP("Player", "Video"),
    QT_TRANSLATE_NOOP("Player", "Bookmarks"), QT_TRANSLATE_NOOP("Player", "Tools"),
    QT_TRANSLATE_NOOP("Player", "Help"), QT_TRANSLATE_NOOP("Player", "Recent Media"),
    QT_TRANSLATE_NOOP("Player", "Recent Bookmarks"), QT_TRANSLATE_NOOP("Player", "Speed"),
    QT_TRANSLATE_NOOP("Player", "Clear"), QT_TRANSLATE_NOOP("Player", "Set Range") };
inline constexpr int barMenuCount = 8;

/// One entry of a menu: a command, a menu inside it, or a separator.
struct Command {
    enum class Kind { Plain, Checkable, CheckableByHand, Submenu, Separator };

    Menu menu = Menu::Nowhere;
    Kind kind = Kind::Plain;
    const char* id = nullptr; // the action's objectName
    const char* text = nullptr;
    const char* statusTip = nullptr;
    QKeySequence key{};
    void (Player::*slot)() = nullptr; // when triggered
    void (Player::*toggle)(bool) = nullptr; // when the check changes, by hand or otherwise
    bool Settings::*setting = nullptr; // holds the first check
    bool applied = false; // toggle is called for the first check, too
    Menu submenu = Menu::Nowhere;
};

/// A key of the whole window. Those that a command has too stand in its menu entry, but act here.
struct WindowKey {
    QKeySequence key;
    void (Player::*slot)();
    bool repeats = true; // while held down
};

const std::vector<Command>& commandTable();
const std::vector<WindowKey>& windowKeys();
