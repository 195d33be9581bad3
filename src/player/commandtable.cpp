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

QKeySequence keys(const char* text)
{
    return QKeySequence(QString::fromLatin1(text));
}

} // namespace

#define TEXT(text) QT_TRANSLATE_NOOP("Player", text)

// clang-format off
const std::vector<Command>& commandTable()
{
    static const std::vector<Command> table{
        plain(Menu::File, "open", TEXT("Open..."), TEXT("Open Media"), QKeySequence::Open, &Player::open),
        plain(Menu::File, "openBookmarks", TEXT("Open Bookmarks..."), TEXT("Open Bookmarks"), keys("Ctrl+Shift+O"), &Player::openBookmarksFile),
        separator(Menu::File),
        plain(Menu::File, "saveBookmarks", TEXT("Save Bookmarks"), TEXT("Save Bookmarks"), QKeySequence::Save, &Player::saveBookmarksFile),
        plain(Menu::File, "saveBookmarksAs", TEXT("Save Bookmarks As..."), TEXT("Open Bookmarks"), keys("Ctrl+Shift+S"), &Player::saveBookmarksFileAs),
        separator(Menu::File),
        plain(Menu::File, "copyCurrentMedia", TEXT("Copy Current Media..."), TEXT("Copy Current Media"), keys("Ctrl+D"), &Player::copyCurrentMedia),
        separator(Menu::File),
        submenu(Menu::File, Menu::RecentMedia),
        submenu(Menu::File, Menu::RecentBookmarks),
        separator(Menu::File),
        plain(Menu::File, "close", TEXT("Close"), TEXT("Close"), keys("Ctrl+W"), &Player::stop),
        separator(Menu::File),
        plain(Menu::File, "exit", TEXT("Exit"), TEXT("Exit"), QKeySequence::Quit, &Player::exit),

        plain(Menu::Edit, "rangeStartToCurrent", TEXT("Range Start to Current"), TEXT("Range Start to Current"), keys(","), &Player::setStartRangeToCurrent),
        plain(Menu::Edit, "rangeEndToCurrent", TEXT("Range End to Current"), TEXT("Range End to Current"), keys("."), &Player::setEndRangeToCurrent),
        plain(Menu::Edit, "resetRange", TEXT("Reset Range"), TEXT("Reset Playback Range"), keys("Ctrl+P"), &Player::resetFrameRange),
        separator(Menu::Edit),
        plain(Menu::Edit, "cacheFromCurrent", TEXT("Cache From Current"), TEXT("Cache From Current"), keys("C"), &Player::cacheFromCurrent),
        separator(Menu::Edit),
        applied(checkable(Menu::Edit, "alwaysOnTop", TEXT("Always on Top"), TEXT("Always on Top"), keys("Ctrl+K"), &Player::setAlwaysOnTopEnabled, &Settings::alwaysOnTop)),
        separator(Menu::Edit),
        plain(Menu::Edit, "preferences", TEXT("Preferences..."), TEXT("Preferences"), keys("Ctrl+Shift+P"), &Player::preferences),

        submenu(Menu::Playback, Menu::Speed),
        plain(Menu::Speed, "speedNormal", TEXT("Normal"), TEXT("Normal"), keys("0"), &Player::setSpeedNormal),
        plain(Menu::Speed, "speedHalf", TEXT("Half"), TEXT("Half"), keys("9"), &Player::setSpeedHalf),
        plain(Menu::Speed, "speedQuarter", TEXT("Quarter"), TEXT("Quarter"), keys("8"), &Player::setSpeedQuarter),
        separator(Menu::Speed),
        plain(Menu::Speed, "speedIncrease", TEXT("Increase"), TEXT("Increse Speed"), keys("+"), &Player::increaseSpeed),
        plain(Menu::Speed, "speedDecrease", TEXT("Decrease"), TEXT("Decrease Speed"), keys("-"), &Player::decreaseSpeed),
        separator(Menu::Speed),
        plain(Menu::Speed, "speedCustom", TEXT("Custom..."), TEXT("Custom Speed"), keys("Ctrl+0"), &Player::setCustomSpeed),
        separator(Menu::Playback),
        plain(Menu::Playback, "playPause", TEXT("Play/Pause"), TEXT("Toggle Play/Pause"), Qt::Key_Space, &Player::playForward),
        plain(Menu::Playback, "stepForward", TEXT("Step Forward"), TEXT("Step Forward"), {}, &Player::stepForward),
        plain(Menu::Playback, "stepBackward", TEXT("Step Backward"), TEXT("Step Backward"), {}, &Player::stepBackward),
        separator(Menu::Playback),
        plain(Menu::Playback, "start", TEXT("Start"), TEXT("Start"), Qt::Key_Home, &Player::seekStart),
        plain(Menu::Playback, "end", TEXT("End"), TEXT("End"), Qt::Key_End, &Player::seekEnd),
        plain(Menu::Playback, "rangeStart", TEXT("Range Start"), TEXT("Range Start"), keys("Ctrl+Left"), &Player::seekRangeStart),
        plain(Menu::Playback, "rangeEnd", TEXT("Range End"), TEXT("Range End"), keys("Ctrl+Right"), &Player::seekRangeEnd),
        separator(Menu::Playback),
        checkable(Menu::Playback, "loop", TEXT("Loop"), TEXT("Loop"), keys("Ctrl+L"), &Player::setLoopEnabled, &Settings::loop),
        checkable(Menu::Playback, "loopOnStep", TEXT("Loop on Step"), TEXT("Loop on Step"), keys("Ctrl+Shift+L"), &Player::setLoopOnStepEnabled, &Settings::loopOnStep),
        checkable(Menu::Playback, "loopOnScrub", TEXT("Loop on Scrub"), TEXT("Loop on Scrub"), keys("Ctrl+Alt+L"), &Player::setLoopOnScrubEnabled, &Settings::loopOnScrub),
        separator(Menu::Playback),
        checkable(Menu::Playback, "autoplay", TEXT("Autoplay"), TEXT("Autoplay"), keys("Ctrl+A"), &Player::setAutoplayEnabled, &Settings::autoplay),

        checkableByHand(Menu::Audio, "audioScrub", TEXT("Audio Scrub"), TEXT("Audio Scrub"), keys("Ctrl+Shift+A"), &Player::setAudioScrubEnabled, &Settings::audioScrub),
        separator(Menu::Audio),
        plain(Menu::Audio, "increaseVolume", TEXT("Increase Volume"), TEXT("Increase Volume"), keys("Shift+Up"), &Player::increaseVolume),
        plain(Menu::Audio, "decreaseVolume", TEXT("Decrease Volume"), TEXT("Decrease Volume"), keys("Shift+Down"), &Player::decreaseVolume),
        plain(Menu::Audio, "mute", TEXT("Mute"), TEXT("Mute"), keys("M"), &Player::toggleMute),

        plain(Menu::Video, "originalSize", TEXT("Original Size"), TEXT("Original Size"), keys("1"), &Player::resizeToOriginal),
        separator(Menu::Video),
        plain(Menu::Video, "halfSize", TEXT("Half Size"), TEXT("Half Size"), keys("2"), &Player::resizeToHalf),
        plain(Menu::Video, "quarterSize", TEXT("Quarter Size"), TEXT("Quarter Size"), keys("3"), &Player::resizeToQuarter),
        separator(Menu::Video),
        plain(Menu::Video, "doubleSize", TEXT("Double Size"), TEXT("Double Size"), keys("Ctrl+2"), &Player::resizeToDouble),
        separator(Menu::Video),
        checkableByHand(Menu::Video, "flipHorizontal", TEXT("Flip Horizontal"), TEXT("Flip Horizontal"), keys("X"), &Player::flip),
        checkableByHand(Menu::Video, "flipVertical", TEXT("Flip Vertical"), TEXT("Flip Vertical"), keys("Y"), &Player::flip),
        separator(Menu::Video),
        checkableByHand(Menu::Video, "rotateCW", TEXT("Rotate CW"), TEXT("Rotate CW"), keys("Ctrl+Shift+M"), &Player::rotateImageCW),
        checkableByHand(Menu::Video, "rotateCCW", TEXT("Rotate CCW"), TEXT("Rotate CCW"), keys("Ctrl+Shift+N"), &Player::rotateImageCCW),
        separator(Menu::Video),
        plain(Menu::Video, "takeSnapshot", TEXT("Take Snapshot"), TEXT("Take Snapshot"), keys("Ctrl+C"), &Player::takeSnapshot),

        plain(Menu::Bookmarks, "bookmarkFrame", TEXT("Bookmark Frame"), TEXT("Bookmark Frame"), keys("F"), &Player::addFrameBookmark),
        plain(Menu::Bookmarks, "bookmarkRange", TEXT("Bookmark Range"), TEXT("Bookmark Range"), keys("R"), &Player::addRangeBookmark),
        separator(Menu::Bookmarks),
        submenu(Menu::Bookmarks, Menu::Clear),
        plain(Menu::Clear, "clearCurrentFrame", TEXT("Current Frame"), TEXT("Clear Current Frame"), keys("Ctrl+F"), &Player::clearCurrentFrameBookmark),
        plain(Menu::Clear, "clearFramesInRange", TEXT("Frames in Range"), TEXT("Clear Frames in Range"), keys("Shift+F"), &Player::clearFrameBookmarksInRange),
        plain(Menu::Clear, "clearAllFrames", TEXT("All Frames"), TEXT("Clear All Frames"), keys("Ctrl+Shift+F"), &Player::clearAllFrameBookmarks),
        separator(Menu::Clear),
        plain(Menu::Clear, "clearCurrentRange", TEXT("Current Range"), TEXT("Clear Current Range"), keys("Ctrl+R"), &Player::clearCurrentRangeBookmark),
        plain(Menu::Clear, "clearAllRanges", TEXT("All Ranges"), TEXT("Clear All Ranges"), keys("Ctrl+Shift+R"), &Player::clearAllRangeBookmarks),
        separator(Menu::Clear),
        plain(Menu::Clear, "clearAll", TEXT("Clear All"), TEXT("Clear All"), {}, &Player::clearAllBookmarks),
        separator(Menu::Bookmarks),
        plain(Menu::Bookmarks, "previousFrameBookmark", TEXT("Previous Frame"), TEXT("Previous Frame"), keys("["), &Player::previousFrameBookmark),
        plain(Menu::Bookmarks, "nextFrameBookmark", TEXT("Next Frame"), TEXT("Next Frame"), keys("]"), &Player::nextFrameBookmark),
        plain(Menu::Bookmarks, "previousRangeBookmark", TEXT("Previous Range"), TEXT("Previous Range"), keys("Ctrl+["), &Player::previousRangeBookmark),
        plain(Menu::Bookmarks, "nextRangeBookmark", TEXT("Next Range"), TEXT("Next Range"), keys("Ctrl+]"), &Player::nextRangeBookmark),
        separator(Menu::Bookmarks),
        submenu(Menu::Bookmarks, Menu::SetRange),

        plain(Menu::Tools, "swapTimelines", TEXT("Swap Timelines"), TEXT("Swap Timelines"), keys("T"), &Player::swapTimelines),
        separator(Menu::Tools),
        checkable(Menu::Tools, "timeline", TEXT("Timeline"), TEXT("Timeline"), Qt::Key_F2, &Player::setTimelineVisible, &Settings::showTimeline),
        checkable(Menu::Tools, "rangeTimeline", TEXT("Range Timeline"), TEXT("Range Timeline"), Qt::Key_F3, &Player::setRangeTimelineVisible, &Settings::showRangeTimeline),
        separator(Menu::Tools),
        checkable(Menu::Tools, "playbackControls", TEXT("Playback Controls"), TEXT("Playback Controls"), Qt::Key_F6, &Player::setBottomToolbarVisible, &Settings::showBottomToolbar),
        separator(Menu::Tools),
        plain(Menu::Tools, "mediaInfo", TEXT("Media Info..."), TEXT("Media Info"), Qt::Key_F9, &Player::mediaInfo),
        plain(Menu::Tools, "console", TEXT("Console..."), TEXT("Console"), Qt::Key_F10, &Player::console),

        plain(Menu::Help, "about", TEXT("About..."), TEXT("About"), {}, &Player::about),

        // In no menu, so that its key is never active: the menu bar is hidden by a setting alone.
        checkable(Menu::Nowhere, "menuBar", TEXT("Menu Bar"), TEXT("Menu Bar"), Qt::Key_F5, &Player::setMenuBarVisible, &Settings::showMenuBar),
    };
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
