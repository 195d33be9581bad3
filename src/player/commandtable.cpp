#include "commandtable.h"

#include "player.h"
#include "settings.h"

#include <QCoreApplication>

namespace {

Command separator(Menu menu)
{
    return { .menu = menu, .kind = Command::Kind::Separator };
}

Command submenu(Menu menu, Menu inside)
{
    return { .menu = menu, .kind = Command::Kind::Submenu, .submenu = inside };
}

Command plain(Menu menu, const char* id, const char* text, const char* statusTip,
    const QKeySequence& key, void (Player::*slot)())
{
    return {
        .menu = menu, .id = id, .text = text, .statusTip = statusTip, .key = key, .slot = slot
    };
}

// Checked at first as the setting says.
Command checkable(Menu menu, const char* id, const char* text, const char* statusTip,
    const QKeySequence& key, void (Player::*toggle)(bool), bool Settings::*setting)
{
    return { .menu = menu,
        .kind = Command::Kind::Checkable,
        .id = id,
        .text = text,
        .statusTip = statusTip,
        .key = key,
        .toggle = toggle,
        .setting = setting };
}

// Its slot is called only when a person chooses it, not when its check is set otherwise.
Command checkableByHand(Menu menu, const char* id, const char* text, const char* statusTip,
    const QKeySequence& key, void (Player::*slot)())
{
    Command command = plain(menu, id, text, statusTip, key, slot);
    command.kind = Command::Kind::CheckableByHand;
    return command;
}

Command checkableByHand(Menu menu, const char* id, const char* text, const char* statusTip,
    const QKeySequence& key, void (Player::*toggle)(bool), bool Settings::*setting)
{
    Command command = checkable(menu, id, text, statusTip, key, toggle, setting);
    command.kind = Command::Kind::CheckableByHand;
    return command;
}

// The setting is not only shown, it is put in force.
Command applied(Command command)
{
    command.applied = true;
    return command;
}

// In the names of the English keyboard, whatever language the program speaks.
QKeySequence keys(const char* text)
{
    return QKeySequence(QString::fromLatin1(text), QKeySequence::PortableText);
}

// Gives the texts of the table the context in which the window translates them.
struct CommandTexts {
    Q_DECLARE_TR_FUNCTIONS(Player)

public:
    static std::vector<Command> table();
};

} // namespace

// clang-format off
std::vector<Command> CommandTexts::table()
{
    return {
        plain(Menu::File, "open", QT_TR_NOOP("Open..."), QT_TR_NOOP("Open Media"), QKeySequence::Open, &Player::open),
        plain(Menu::File, "openBookmarks", QT_TR_NOOP("Open Bookmarks..."), QT_TR_NOOP("Open Bookmarks"), keys("Ctrl+Shift+O"), &Player::openBookmarksFile),
        separator(Menu::File),
        plain(Menu::File, "saveBookmarks", QT_TR_NOOP("Save Bookmarks"), QT_TR_NOOP("Save Bookmarks"), QKeySequence::Save, &Player::saveBookmarksFile),
        plain(Menu::File, "saveBookmarksAs", QT_TR_NOOP("Save Bookmarks As..."), QT_TR_NOOP("Open Bookmarks"), keys("Ctrl+Shift+S"), &Player::saveBookmarksFileAs),
        separator(Menu::File),
        plain(Menu::File, "copyCurrentMedia", QT_TR_NOOP("Copy Current Media..."), QT_TR_NOOP("Copy Current Media"), keys("Ctrl+D"), &Player::copyCurrentMedia),
        separator(Menu::File),
        submenu(Menu::File, Menu::RecentMedia),
        submenu(Menu::File, Menu::RecentBookmarks),
        separator(Menu::File),
        plain(Menu::File, "close", QT_TR_NOOP("Close"), QT_TR_NOOP("Close"), keys("Ctrl+W"), &Player::stop),
        separator(Menu::File),
        plain(Menu::File, "exit", QT_TR_NOOP("Exit"), QT_TR_NOOP("Exit"), QKeySequence::Quit, &Player::exit),

        plain(Menu::Edit, "rangeStartToCurrent", QT_TR_NOOP("Range Start to Current"), QT_TR_NOOP("Range Start to Current"), keys(","), &Player::setStartRangeToCurrent),
        plain(Menu::Edit, "rangeEndToCurrent", QT_TR_NOOP("Range End to Current"), QT_TR_NOOP("Range End to Current"), keys("."), &Player::setEndRangeToCurrent),
        plain(Menu::Edit, "resetRange", QT_TR_NOOP("Reset Range"), QT_TR_NOOP("Reset Playback Range"), keys("Ctrl+P"), &Player::resetFrameRange),
        separator(Menu::Edit),
        plain(Menu::Edit, "cacheFromCurrent", QT_TR_NOOP("Cache From Current"), QT_TR_NOOP("Cache From Current"), keys("C"), &Player::cacheFromCurrent),
        separator(Menu::Edit),
        applied(checkable(Menu::Edit, "alwaysOnTop", QT_TR_NOOP("Always on Top"), QT_TR_NOOP("Always on Top"), keys("Ctrl+K"), &Player::setAlwaysOnTopEnabled, &Settings::alwaysOnTop)),
        separator(Menu::Edit),
        plain(Menu::Edit, "preferences", QT_TR_NOOP("Preferences..."), QT_TR_NOOP("Preferences"), keys("Ctrl+Shift+P"), &Player::preferences),

        submenu(Menu::Playback, Menu::Speed),
        plain(Menu::Speed, "speedNormal", QT_TR_NOOP("Normal"), QT_TR_NOOP("Normal"), keys("0"), &Player::setSpeedNormal),
        plain(Menu::Speed, "speedHalf", QT_TR_NOOP("Half"), QT_TR_NOOP("Half"), keys("9"), &Player::setSpeedHalf),
        plain(Menu::Speed, "speedQuarter", QT_TR_NOOP("Quarter"), QT_TR_NOOP("Quarter"), keys("8"), &Player::setSpeedQuarter),
        separator(Menu::Speed),
        plain(Menu::Speed, "speedIncrease", QT_TR_NOOP("Increase"), QT_TR_NOOP("Increse Speed"), keys("+"), &Player::increaseSpeed),
        plain(Menu::Speed, "speedDecrease", QT_TR_NOOP("Decrease"), QT_TR_NOOP("Decrease Speed"), keys("-"), &Player::decreaseSpeed),
        separator(Menu::Speed),
        plain(Menu::Speed, "speedCustom", QT_TR_NOOP("Custom..."), QT_TR_NOOP("Custom Speed"), keys("Ctrl+0"), &Player::setCustomSpeed),
        separator(Menu::Playback),
        plain(Menu::Playback, "playPause", QT_TR_NOOP("Play/Pause"), QT_TR_NOOP("Toggle Play/Pause"), Qt::Key_Space, &Player::playForward),
        plain(Menu::Playback, "stepForward", QT_TR_NOOP("Step Forward"), QT_TR_NOOP("Step Forward"), {}, &Player::stepForward),
        plain(Menu::Playback, "stepBackward", QT_TR_NOOP("Step Backward"), QT_TR_NOOP("Step Backward"), {}, &Player::stepBackward),
        separator(Menu::Playback),
        plain(Menu::Playback, "start", QT_TR_NOOP("Start"), QT_TR_NOOP("Start"), Qt::Key_Home, &Player::seekStart),
        plain(Menu::Playback, "end", QT_TR_NOOP("End"), QT_TR_NOOP("End"), Qt::Key_End, &Player::seekEnd),
        plain(Menu::Playback, "rangeStart", QT_TR_NOOP("Range Start"), QT_TR_NOOP("Range Start"), keys("Ctrl+Left"), &Player::seekRangeStart),
        plain(Menu::Playback, "rangeEnd", QT_TR_NOOP("Range End"), QT_TR_NOOP("Range End"), keys("Ctrl+Right"), &Player::seekRangeEnd),
        separator(Menu::Playback),
        checkable(Menu::Playback, "loop", QT_TR_NOOP("Loop"), QT_TR_NOOP("Loop"), keys("Ctrl+L"), &Player::setLoopEnabled, &Settings::loop),
        checkable(Menu::Playback, "loopOnStep", QT_TR_NOOP("Loop on Step"), QT_TR_NOOP("Loop on Step"), keys("Ctrl+Shift+L"), &Player::setLoopOnStepEnabled, &Settings::loopOnStep),
        checkable(Menu::Playback, "loopOnScrub", QT_TR_NOOP("Loop on Scrub"), QT_TR_NOOP("Loop on Scrub"), keys("Ctrl+Alt+L"), &Player::setLoopOnScrubEnabled, &Settings::loopOnScrub),
        separator(Menu::Playback),
        checkable(Menu::Playback, "autoplay", QT_TR_NOOP("Autoplay"), QT_TR_NOOP("Autoplay"), keys("Ctrl+A"), &Player::setAutoplayEnabled, &Settings::autoplay),

        checkableByHand(Menu::Audio, "audioScrub", QT_TR_NOOP("Audio Scrub"), QT_TR_NOOP("Audio Scrub"), keys("Ctrl+Shift+A"), &Player::setAudioScrubEnabled, &Settings::audioScrub),
        separator(Menu::Audio),
        plain(Menu::Audio, "increaseVolume", QT_TR_NOOP("Increase Volume"), QT_TR_NOOP("Increase Volume"), keys("Shift+Up"), &Player::increaseVolume),
        plain(Menu::Audio, "decreaseVolume", QT_TR_NOOP("Decrease Volume"), QT_TR_NOOP("Decrease Volume"), keys("Shift+Down"), &Player::decreaseVolume),
        plain(Menu::Audio, "mute", QT_TR_NOOP("Mute"), QT_TR_NOOP("Mute"), keys("M"), &Player::toggleMute),

        plain(Menu::Video, "originalSize", QT_TR_NOOP("Original Size"), QT_TR_NOOP("Original Size"), keys("1"), &Player::resizeToOriginal),
        separator(Menu::Video),
        plain(Menu::Video, "halfSize", QT_TR_NOOP("Half Size"), QT_TR_NOOP("Half Size"), keys("2"), &Player::resizeToHalf),
        plain(Menu::Video, "quarterSize", QT_TR_NOOP("Quarter Size"), QT_TR_NOOP("Quarter Size"), keys("3"), &Player::resizeToQuarter),
        separator(Menu::Video),
        plain(Menu::Video, "doubleSize", QT_TR_NOOP("Double Size"), QT_TR_NOOP("Double Size"), keys("Ctrl+2"), &Player::resizeToDouble),
        separator(Menu::Video),
        checkableByHand(Menu::Video, "flipHorizontal", QT_TR_NOOP("Flip Horizontal"), QT_TR_NOOP("Flip Horizontal"), keys("X"), &Player::flip),
        checkableByHand(Menu::Video, "flipVertical", QT_TR_NOOP("Flip Vertical"), QT_TR_NOOP("Flip Vertical"), keys("Y"), &Player::flip),
        separator(Menu::Video),
        checkableByHand(Menu::Video, "rotateCW", QT_TR_NOOP("Rotate CW"), QT_TR_NOOP("Rotate CW"), keys("Ctrl+Shift+M"), &Player::rotateImageCW),
        checkableByHand(Menu::Video, "rotateCCW", QT_TR_NOOP("Rotate CCW"), QT_TR_NOOP("Rotate CCW"), keys("Ctrl+Shift+N"), &Player::rotateImageCCW),
        separator(Menu::Video),
        plain(Menu::Video, "takeSnapshot", QT_TR_NOOP("Take Snapshot"), QT_TR_NOOP("Take Snapshot"), keys("Ctrl+C"), &Player::takeSnapshot),

        plain(Menu::Bookmarks, "bookmarkFrame", QT_TR_NOOP("Bookmark Frame"), QT_TR_NOOP("Bookmark Frame"), keys("F"), &Player::addFrameBookmark),
        plain(Menu::Bookmarks, "bookmarkRange", QT_TR_NOOP("Bookmark Range"), QT_TR_NOOP("Bookmark Range"), keys("R"), &Player::addRangeBookmark),
        separator(Menu::Bookmarks),
        submenu(Menu::Bookmarks, Menu::Clear),
        plain(Menu::Clear, "clearCurrentFrame", QT_TR_NOOP("Current Frame"), QT_TR_NOOP("Clear Current Frame"), keys("Ctrl+F"), &Player::clearCurrentFrameBookmark),
        plain(Menu::Clear, "clearFramesInRange", QT_TR_NOOP("Frames in Range"), QT_TR_NOOP("Clear Frames in Range"), keys("Shift+F"), &Player::clearFrameBookmarksInRange),
        plain(Menu::Clear, "clearAllFrames", QT_TR_NOOP("All Frames"), QT_TR_NOOP("Clear All Frames"), keys("Ctrl+Shift+F"), &Player::clearAllFrameBookmarks),
        separator(Menu::Clear),
        plain(Menu::Clear, "clearCurrentRange", QT_TR_NOOP("Current Range"), QT_TR_NOOP("Clear Current Range"), keys("Ctrl+R"), &Player::clearCurrentRangeBookmark),
        plain(Menu::Clear, "clearAllRanges", QT_TR_NOOP("All Ranges"), QT_TR_NOOP("Clear All Ranges"), keys("Ctrl+Shift+R"), &Player::clearAllRangeBookmarks),
        separator(Menu::Clear),
        plain(Menu::Clear, "clearAll", QT_TR_NOOP("Clear All"), QT_TR_NOOP("Clear All"), {}, &Player::clearAllBookmarks),
        separator(Menu::Bookmarks),
        plain(Menu::Bookmarks, "previousFrameBookmark", QT_TR_NOOP("Previous Frame"), QT_TR_NOOP("Previous Frame"), keys("["), &Player::previousFrameBookmark),
        plain(Menu::Bookmarks, "nextFrameBookmark", QT_TR_NOOP("Next Frame"), QT_TR_NOOP("Next Frame"), keys("]"), &Player::nextFrameBookmark),
        plain(Menu::Bookmarks, "previousRangeBookmark", QT_TR_NOOP("Previous Range"), QT_TR_NOOP("Previous Range"), keys("Ctrl+["), &Player::previousRangeBookmark),
        plain(Menu::Bookmarks, "nextRangeBookmark", QT_TR_NOOP("Next Range"), QT_TR_NOOP("Next Range"), keys("Ctrl+]"), &Player::nextRangeBookmark),
        separator(Menu::Bookmarks),
        submenu(Menu::Bookmarks, Menu::SetRange),

        plain(Menu::Tools, "swapTimelines", QT_TR_NOOP("Swap Timelines"), QT_TR_NOOP("Swap Timelines"), keys("T"), &Player::swapTimelines),
        separator(Menu::Tools),
        checkable(Menu::Tools, "timeline", QT_TR_NOOP("Timeline"), QT_TR_NOOP("Timeline"), Qt::Key_F2, &Player::setTimelineVisible, &Settings::showTimeline),
        checkable(Menu::Tools, "rangeTimeline", QT_TR_NOOP("Range Timeline"), QT_TR_NOOP("Range Timeline"), Qt::Key_F3, &Player::setRangeTimelineVisible, &Settings::showRangeTimeline),
        separator(Menu::Tools),
        checkable(Menu::Tools, "playbackControls", QT_TR_NOOP("Playback Controls"), QT_TR_NOOP("Playback Controls"), Qt::Key_F6, &Player::setBottomToolbarVisible, &Settings::showBottomToolbar),
        separator(Menu::Tools),
        plain(Menu::Tools, "mediaInfo", QT_TR_NOOP("Media Info..."), QT_TR_NOOP("Media Info"), Qt::Key_F9, &Player::mediaInfo),
        plain(Menu::Tools, "console", QT_TR_NOOP("Console..."), QT_TR_NOOP("Console"), Qt::Key_F10, &Player::console),

        plain(Menu::Help, "about", QT_TR_NOOP("About..."), QT_TR_NOOP("About"), {}, &Player::about),

        // In no menu, so that its key is never active: the menu bar is hidden by a setting alone.
        checkable(Menu::Nowhere, "menuBar", QT_TR_NOOP("Menu Bar"), QT_TR_NOOP("Menu Bar"), Qt::Key_F5, &Player::setMenuBarVisible, &Settings::showMenuBar),
    };
}

const std::vector<Command>& commandTable()
{
    static const std::vector<Command> table = CommandTexts::table();
    return table;
}

const std::vector<WindowKey>& windowKeys()
{
    constexpr bool once = false;
    static const std::vector<WindowKey> table{
        { keys("L"), &Player::play },
        { keys("K"), &Player::pause },
        { keys("I"), &Player::setStartRangeToCurrent },
        { keys("O"), &Player::setEndRangeToCurrent },
        { keys("Down"), &Player::previousFrameBookmark },
        { keys("Up"), &Player::nextFrameBookmark },
        { keys("Ctrl+Down"), &Player::previousRangeBookmark },
        { keys("Ctrl+Up"), &Player::nextRangeBookmark },
        { keys("="), &Player::increaseSpeed },
        { keys("Right"), &Player::stepForward },
        { keys("Left"), &Player::stepBackward },
        { Qt::Key_Space, &Player::playForward, once },
        { keys("0"), &Player::setSpeedNormal },
        { keys("9"), &Player::setSpeedHalf },
        { keys("8"), &Player::setSpeedQuarter },
        { keys("+"), &Player::increaseSpeed },
        { keys("-"), &Player::decreaseSpeed },
        { keys(","), &Player::setStartRangeToCurrent },
        { keys("."), &Player::setEndRangeToCurrent },
        { keys("C"), &Player::cacheFromCurrent },
        { keys("M"), &Player::toggleMute, once },
        { keys("1"), &Player::resizeToOriginal },
        { keys("2"), &Player::resizeToHalf },
        { keys("3"), &Player::resizeToQuarter },
        { keys("X"), &Player::flipHorizontal, once },
        { keys("Y"), &Player::flipVertical, once },
        { keys("F"), &Player::addFrameBookmark, once },
        { keys("R"), &Player::addRangeBookmark, once },
        { keys("Shift+F"), &Player::clearFrameBookmarksInRange },
        { keys("["), &Player::previousFrameBookmark },
        { keys("]"), &Player::nextFrameBookmark },
        { keys("T"), &Player::swapTimelines, once },
    };
    return table;
}
// clang-format on
