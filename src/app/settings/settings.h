#pragma once

#include <QByteArray>
#include <QStringList>

/// What one kind of timeline shows, shared by every timeline of that kind in the process. The
/// timelines change these values themselves, and the next save writes what they hold then.
struct TimelineDisplay {
    int displayType = 0; // how frames are written: 0 frame numbers, 1 seconds, 2 time code
    bool positionAtTop = false; // above the video
    bool showFrameBookmarks = false;
    bool showRangeBookmarks = false; // not used by the range timeline, which has no such choice
    bool showCache = false;
};

/// Every persistent option of the program. Before the first load all values are false, 0 or empty;
/// the defaults of a fresh installation come with loadSettings(). GUI thread.
struct Settings {
    QByteArray windowGeometry;
    bool showTimeline = false;
    bool showRangeTimeline = false;
    bool showMenuBar = false;
    bool showBottomToolbar = false;
    int volume = 0; // percent, 0 to 150
    bool muted = false;
    bool alwaysOnTop = false;

    QStringList recentFiles; // newest first
    QStringList recentBookmarkFiles; // newest first

    bool loop = false;
    bool loopOnStep = false;
    bool loopOnScrub = false;
    bool autoplay = false;

    bool audioScrub = false;

    int cacheSize = 0; // megabytes of 1,000,000 bytes
    float cacheTrailingPct = 0.0F; // share of the cache behind the play head, a fraction
    int numRecentFiles = 0;
    int numRecentBookmarkFiles = 0;
    bool openMediaInNewPlayers = false;
    bool resizeToFit = false;
    bool continuePlayingAfterSeek = false;
    bool endlessMouseScrub = false;
    int tcpPort = 0;

    QByteArray consoleGeometry;
    int displayConsoleOnType = 0;

    TimelineDisplay timeline;
    TimelineDisplay rangeTimeline;
};

/// The values of this process, the same ones for all its windows. GUI thread.
Settings& settings();
