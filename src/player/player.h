#pragma once

#include "bookmarks.h"
#include "playbackmanager.h"
#include "playerlayout.h"

#include <QTimer>
#include <QWidget>

#include <memory>

class ConsoleWindow;
class MediaCopy;
class PlaybackControlWidget;
class QMenu;
class RangeTimelineWidget;
class SoftwareViewer;
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
    void setRangeBookmark(int startFrame, int endFrame);

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

    // The window.
    void setTimelineVisible(bool vis);
    void setRangeTimelineVisible(bool vis);
    void setBottomToolbarVisible(bool vis);
    void setTimelineAtTop(bool top);
    void setRangeTimelineAtTop(bool top);
    void console();
    void updateStats();

Q_SIGNALS:
    /// The window has closed for good; the program may end.
    void closed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private Q_SLOTS:
    void setPlaybackTime(double playbackTime);
    void onStateChange(PlaybackManager::State state);
    void onStatusChange(PlaybackManager::Status status);
    void onError(PlaybackManager::Error error, const QString& errorStr);

private:
    void createWidgets();
    void createShortcuts();
    void connectManager();
    void connectTransport();
    void connectControls();
    void applySettings();
    void onLoaded();
    void rebuildRecentMedia();
    void reportError(const QString& text);
    void showTitle(int frame);
    void showCachedRange();
    void finishCopy(MediaCopy& copy);
    [[nodiscard]] bool isStopped() const;

    PlaybackManager* m_manager; // child
    Bookmarks m_bookmarks; // of the current media
    QString m_bookmarksFile; // read from or saved to last
    Transport* m_transport; // child
    TimelineWidget* m_timeline; // child
    RangeTimelineWidget* m_rangeTimeline; // child
    SoftwareViewer* m_viewer; // child
    PlaybackControlWidget* m_controls; // child
    VolumeWidget* m_volume; // child
    QMenu* m_recentMedia; // child
    std::unique_ptr<PlayerLayout> m_layout;
    std::unique_ptr<ConsoleWindow> m_console; // null once the window has closed
    QTimer m_statsTimer;
    bool m_closePending = false; // the window closes as soon as the file is let go of
};
