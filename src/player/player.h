#pragma once

#include "frameclock.h"
#include "framerange.h"
#include "playbackmanager.h"

#include <QWidget>

class PlaybackControlWidget;
class SoftwareViewer;
class VolumeWidget;

/// The player's window: the video view, and below it the transport buttons and the volume.
class Player : public QWidget {
    Q_OBJECT

public:
    /// Opens `filename` unless it is empty. A range of frames from 1 on, both ends included; -1:
    /// not given.
    explicit Player(
        const QString& filename, int rangeStart = -1, int rangeEnd = -1, QWidget* parent = nullptr);

    ~Player() override;

public Q_SLOTS:
    void open(const QString& filename, int rangeStart, int rangeEnd);
    /// Toggles between playing and paused.
    void playForward();
    void stepForward();
    void stepBackward();
    void seekRangeStart();
    void seekRangeEnd();
    /// A frame outside the media becomes its first or last one.
    void setCurrentFrame(int frame, bool audioScrub = false);
    void setVolume(int volume);

private Q_SLOTS:
    void setPlaybackTime(double playbackTime);
    void onStateChange(PlaybackManager::State state);
    void onStatusChange(PlaybackManager::Status status);
    void onError(PlaybackManager::Error error, const QString& errorStr);

private:
    void createLayout();
    void connectManager();
    void connectControls();
    void onLoaded();
    void onReady();
    void showTitle(int frame);
    void fitToVideo();
    [[nodiscard]] int currentFrame() const;
    [[nodiscard]] int lastFrame() const;

    PlaybackManager* m_manager; // child
    SoftwareViewer* m_viewer; // child
    PlaybackControlWidget* m_controls; // child
    VolumeWidget* m_volume; // child
    FrameClock m_clock;
    FrameRange m_range;
    int m_lastShownFrame = -1;
    int m_pendingRangeStart = -1; // asked for with the file, applied once it is ready
    int m_pendingRangeEnd = -1;
    bool m_playWhenReady = false;
    bool m_freshLoad = false; // loaded, and its first "ready" not handled yet
};
