#pragma once

#include "bookmarks.h"
#include "mousescrubber.h"
#include "playbackmanager.h"
#include "playerlayout.h"

#include <QTimer>
#include <QWidget>

#include <memory>

class BookmarkCommands;
class CommandMenus;
class ConsoleWindow;
class MediaCopy;
class MediaInfoDialog;
class PlaybackControlWidget;
class RangeTimelineWidget;
class SoftwareViewer;
class TcpServer;
class TimelineWidget;
class Transport;
class VolumeWidget;

/// The player's window. It creates what playing needs, connects it, and offers every command as a
/// slot. Frames count from 1; a frame or range that was not given is -1.
class Player : public QWidget {
    Q_OBJECT

public:
    /// Loads the settings and opens `filename` unless it is empty.
    explicit Player(
        const QString& filename, int rangeStart = -1, int rangeEnd = -1, QWidget* parent = nullptr);
    ~Player() override;

public Q_SLOTS:
    // Files.
    void open();
    void open(const QString& filename, int rangeStart, int rangeEnd);
    void open(const QString& filename, int rangeStart) { open(filename, rangeStart, -1); }
    void open(const QString& filename) { open(filename, -1, -1); }
    /// The file that the sending menu entry names.
    void openRecent();
    void copyCurrentMedia();
    void openBookmarksFile();
    /// A bookmarks file and the media it names.
    void openBookmarksFile(const QString& filename, int rangeStart, int rangeEnd);
    void openBookmarksFile(const QString& filename, int rangeStart)
    {
        openBookmarksFile(filename, rangeStart, -1);
    }
    void openBookmarksFile(const QString& filename) { openBookmarksFile(filename, -1, -1); }
    /// The bookmarks file that the sending menu entry names.
    void openRecentBookmarksFile();
    void saveBookmarksFile();
    void saveBookmarksFileAs();
    /// What a later launch was started with; it brings the window to the front.
    void receiveMessageFromOtherInstance(const QStringList& args);

    // Playing.
    /// Toggles between playing and paused.
    void playForward();
    void play();
    void pause();
    /// Lets go of the file and puts the window away.
    void stop();
    void stepForward();
    void stepBackward();
    void seekStart();
    void seekEnd();
    void seekRangeStart();
    void seekRangeEnd();
    void setCurrentFrame(int frame, bool audioScrub, bool clearCache, bool skipPlayWhenReady);
    void setCurrentFrame(int frame, bool audioScrub, bool clearCache)
    {
        setCurrentFrame(frame, audioScrub, clearCache, false);
    }
    void setCurrentFrame(int frame, bool audioScrub)
    {
        setCurrentFrame(frame, audioScrub, false, false);
    }
    void setCurrentFrame(int frame) { setCurrentFrame(frame, false, false, false); }
    /// 1 is the first frame of the range.
    void setCurrentFrameRelative(int frame);
    /// Decodes everything anew from the current frame on.
    void cacheFromCurrent();
    void setLoopEnabled(bool enable);
    void setLoopOnStepEnabled(bool enable);
    void setLoopOnScrubEnabled(bool enable);
    void setAutoplayEnabled(bool enable);

    // The range that is played, both ends included.
    void setFrameRange(int startFrame, int endFrame);
    void setRangeStart(int startFrame);
    void setRangeEnd(int endFrame);
    void setStartRangeToCurrent();
    void setEndRangeToCurrent();
    void resetFrameRange();

    // Bookmarks. "Current" is the frame under the play head and the range that is played.
    void addFrameBookmark();
    void addFrameBookmark(int frame);
    void addRangeBookmark();
    void addRangeBookmark(int startFrame, int endFrame);
    void clearCurrentFrameBookmark();
    void clearFrameBookmarksInRange();
    void clearAllFrameBookmarks();
    void clearCurrentRangeBookmark();
    void clearAllRangeBookmarks();
    void clearAllBookmarks();
    void cycleFrameBookmarks(bool backward);
    void cycleFrameBookmarks() { cycleFrameBookmarks(false); }
    void previousFrameBookmark() { cycleFrameBookmarks(true); }
    void nextFrameBookmark() { cycleFrameBookmarks(false); }
    void cycleRangeBookmarks(bool backward);
    void cycleRangeBookmarks() { cycleRangeBookmarks(false); }
    void previousRangeBookmark() { cycleRangeBookmarks(true); }
    void nextRangeBookmark() { cycleRangeBookmarks(false); }
    /// Plays a range bookmark; nothing happens unless there is one with these ends.
    void setRangeBookmark(int startFrame, int endFrame);
    /// The range bookmark that the sending menu entry stands for.
    void setRangeBookmark();

    // Speed, as a multiple of normal speed.
    void setSpeedMultiplier(double multiplier);
    void setSpeedNormal();
    void setSpeedHalf();
    void setSpeedQuarter();
    void increaseSpeed();
    void decreaseSpeed();
    void setCustomSpeed();

    // Sound. Volumes in percent.
    void setAudioScrubEnabled(bool enable);
    void setVolume(int volume);
    void toggleMute();
    void increaseVolume();
    void decreaseVolume();
    void incrementVolume(int increment);

    // The picture.
    void flip();
    void flipHorizontal();
    void flipVertical();
    void rotateImageCW();
    void rotateImageCCW();
    /// Puts the picture on show on the clipboard.
    void takeSnapshot();

    // The window. A scale of 1 shows the video pixel by pixel.
    void resizeToFit(float scale);
    void resizeToFit() { resizeToFit(1.0F); }
    void resizeToOriginal();
    void resizeToHalf();
    void resizeToQuarter();
    void resizeToDouble();
    void setAlwaysOnTopEnabled(bool enable);
    void setTimelineVisible(bool vis);
    void setRangeTimelineVisible(bool vis);
    void setMenuBarVisible(bool vis);
    void setBottomToolbarVisible(bool vis);
    void swapTimelines();
    void setTimelineAtTop(bool top);
    void setRangeTimelineAtTop(bool top);
    void contextMenu(QPoint pos);
    void mediaInfo();
    void console();
    void preferences();
    void about();
    void exit() { close(); }
    void updateStats();

Q_SIGNALS:
    /// The window has closed for good; the program may end.
    void closed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private Q_SLOTS:
    void setPlaybackTime(double playbackTime);
    void onStateChange(PlaybackManager::State state);
    void onStatusChange(PlaybackManager::Status status);
    void onError(PlaybackManager::Error error, const QString& errorStr);

private:
    void createWidgets();
    void connectManager();
    void connectTransport();
    void connectControls();
    void connectRemote();
    void applySettings();
    void onLoaded();
    void keepRoomForTimelines(bool keep);
    bool loadMedia(const QString& path, int rangeStart, int rangeEnd);
    bool setMedia(const QString& path);
    bool isRefusedWhileLoading(const QString& path);
    void openAny(const QString& path, int rangeStart, int rangeEnd);
    void rebuildRecentMenus();
    void rememberBookmarksFile();
    void reportError(const QString& text);
    void storeSettings();
    void showTitle(int frame);
    void showCachedRange();
    void rememberGeometry();
    void finishCopy(MediaCopy& copy);
    void resizeVideo(float scale);
    void setCommandChecked(const char* id, bool checked);
    [[nodiscard]] bool isCommandChecked(const char* id) const;
    [[nodiscard]] bool isOverVideo(const QMouseEvent& event) const;
    [[nodiscard]] bool isStopped() const;

    PlaybackManager* m_manager; // child
    Bookmarks m_bookmarks; // of the current media
    QString m_bookmarksFile; // read from or saved to last
    Transport* m_transport; // child
    BookmarkCommands* m_bookmarkCommands; // child
    TcpServer* m_remote; // child
    TimelineWidget* m_timeline; // child
    RangeTimelineWidget* m_rangeTimeline; // child
    SoftwareViewer* m_viewer; // child
    PlaybackControlWidget* m_controls; // child
    VolumeWidget* m_volume; // child
    MediaInfoDialog* m_mediaInfo = nullptr; // child, once it was wanted
    std::unique_ptr<PlayerLayout> m_layout;
    std::unique_ptr<CommandMenus> m_menus;
    std::unique_ptr<ConsoleWindow> m_console; // null once the window has closed
    QTimer m_statsTimer;
    MouseScrubber m_scrubber; // drags over the video
    bool m_created = false; // the constructor is done with the settings
    bool m_closePending = false; // the window closes as soon as the file is let go of
};
