#pragma once

#include "enginethreads.h"
#include "framepresenter.h"
#include "loadsequence.h"
#include "mediasource.h"

#include <QObject>
#include <QSize>
#include <QString>
#include <QTimer>

#include <cstdint>
#include <memory>

class SoftwareViewer;

/// Playback of one file: owns the engine and the open file, runs the play head, shows the frame
/// under it, and turns the engine's statuses and errors into its own. GUI thread; the engine
/// answers by queued signals.
class PlaybackManager : public QObject {
    Q_OBJECT

public:
    enum Error { NoError = 0, ResourceError = 1, FormatError = 2, UnknownError = 6 };
    Q_ENUM(Error)

    enum State { Stopped = 0, Playing = 1, Paused = 2 };
    Q_ENUM(State)

    enum Status {
        UnknownStatus = 0, // the manager is going away
        NoMedia = 1,
        Loading = 2,
        Loaded = 3, // passes at once to Ready
        Unloading = 4,
        Ready = 5, // the play head is inside the media
        Seeking = 6,
        EndOfMedia = 7,
        InvalidMedia = 8
    };
    Q_ENUM(Status)

    /// What a seek decodes: its target, or also much of what lies behind it.
    enum class Reach { Target, Backward };

    explicit PlaybackManager(QObject* parent = nullptr);
    ~PlaybackManager() override;

    /// Moves the play head to `time` seconds; a negative time counts as 0. Playing pauses. Inside
    /// the cache the frame is shown at once, unless `clearCache`; else the demuxer seeks, and while
    /// it does only the newest target is kept. `audioScrubDuration` seconds of sound are played at
    /// the new position. With `Reach::Backward` a seek keeps as much behind its target as the cache
    /// has place for, as more of that is about to be asked for. Nothing happens while stopped.
    void seek(bool clearCache, double time, double audioScrubDuration, Reach reach = Reach::Target);

    [[nodiscard]] State state() const { return m_state; }
    [[nodiscard]] Status status() const { return m_status; }
    /// A file is on its way to its first Ready.
    [[nodiscard]] bool isLoading() const
    {
        return m_status == Loading || m_status == Loaded || !m_pendingFilename.isEmpty();
    }
    [[nodiscard]] QString mediaFilename() const
    {
        return m_mediaSource ? m_mediaSource->filename : QString();
    }
    /// Seconds; while a seek runs its newest target, so that steps add up. 0.0 without media.
    [[nodiscard]] double playbackTime();
    /// Seconds, 0.0 without media.
    [[nodiscard]] double duration() const
    {
        return m_mediaSource ? m_mediaSource->duration() : 0.0;
    }
    [[nodiscard]] int64_t durationMs() const;
    /// Frames per second, and seconds per frame; 0.0 without media.
    [[nodiscard]] double frameRate() const { return m_mediaSource ? m_mediaSource->rate() : 0.0; }
    [[nodiscard]] double frameDuration() const
    {
        return m_mediaSource ? 1.0 / m_mediaSource->rate() : 0.0;
    }
    /// Pixels, -1 without media.
    [[nodiscard]] int videoWidth() const
    {
        return m_mediaSource ? m_mediaSource->videoWidth() : -1;
    }
    [[nodiscard]] int videoHeight() const
    {
        return m_mediaSource ? m_mediaSource->videoHeight() : -1;
    }
    /// Pixels at 100 % as the picture is shown: turned as the file and the user ask, with square
    /// pixels, of which the side that is too short is stretched and rounded to the nearest. Without
    /// a picture, also while the file is being opened, an invalid size.
    [[nodiscard]] QSize shownVideoSize() const;
    [[nodiscard]] bool hasAudio() const { return m_engineStatus.audio > AudioManager::NoAudio; }
    [[nodiscard]] double speedMultiplier() const; // 1.0 without media
    void setSpeedMultiplier(double multiplier);
    [[nodiscard]] int volume() const { return m_volume; } // percent
    void setVolume(int volume); // negative counts as 0; no upper limit
    void setCacheSize(int64_t bytes, float trailingPct);
    void setFlip(bool horizontal, bool vertical);
    void setRotation(int degrees);
    [[nodiscard]] int rotation() const { return m_presenter.rotation(); }
    void setViewer(SoftwareViewer* viewer);

    // What the caches hold, for display; 0 without media.
    [[nodiscard]] int cachedFrameCount() const
    {
        return m_mediaSource ? m_mediaSource->videoFrames.frameCount() : 0;
    }
    [[nodiscard]] int64_t videoCacheBytes() const
    {
        return m_mediaSource ? m_mediaSource->videoFrames.byteCount() : 0;
    }
    [[nodiscard]] int audioFrameCount() const
    {
        return m_mediaSource ? m_mediaSource->audioFrames.frameCount() : 0;
    }
    [[nodiscard]] int audioBufferSamples() const
    {
        return m_mediaSource ? m_mediaSource->audioFrames.totalValues() : 0;
    }
    /// Seconds.
    [[nodiscard]] double cacheStartTime() const
    {
        return m_mediaSource ? m_mediaSource->cachedStartTime() : 0.0;
    }
    [[nodiscard]] double cacheEndTime() const
    {
        return m_mediaSource ? m_mediaSource->cachedEndTime() : 0.0;
    }

Q_SIGNALS:
    void error(PlaybackManager::Error err, QString errorStr);
    void stateChanged(PlaybackManager::State state);
    void statusChanged(PlaybackManager::Status status);
    void mediaSourceChanged(MediaSource* mediaSrc);
    void mediaSourceLoaded(MediaSource* mediaSrc);
    void unloadAudioVideo();
    void unloadMedia();
    void seekRequested();
    void playbackTimeChanged(double playbackTime);

public Q_SLOTS:
    /// Opens a file, after letting go of the one that is open; the last name asked for wins. False,
    /// with an error raised, where the name's extension is not a video's. Cache size in bytes,
    /// trailing share from 0 to 1.
    bool setMedia(const QString& filename, int64_t cacheSize, float trailingCachePct);
    /// Starts from the play head while Ready. It pauses by itself only where `duration` is above 0
    /// and already passed.
    void play(double duration);
    void play() { play(-1.0); }
    void pause();
    /// Lets go of the open file, and of one that was to be opened next.
    void stop();

private Q_SLOTS:
    void setPlaybackTime(double playbackTime);
    void updatePlaybackTime();
    void updateVideoFrame(bool refresh);
    void updateVideoFrame() { updateVideoFrame(false); }
    void clearVideoFrame();
    void onMediaStatusUpdate(MediaManager::Status status);
    void onAudioStatusUpdate(AudioManager::Status status);
    void onVideoStatusUpdate(VideoManager::Status status);
    void onMediaError(MediaManager::Error mediaError);
    void onAudioError(AudioManager::Error audioError);
    void onVideoError(VideoManager::Error audioError);

private:
    // What the engine has still to answer before the open file can be deleted.
    struct Unload {
        bool audioReleased = false;
        bool videoReleased = false;
        bool mediaAsked = false;
        bool mediaReleased = false;
    };

    void wireMedia();
    void wireAudio();
    void wireVideo();
    void createSource(const QString& filename);
    void unload();
    void showFirstPicture();
    void handleEngineStatus();
    void handleLoading();
    void handleUnloading();
    void handleReady();
    void handleSeeked();
    void completeLoad();
    void finishUnload();
    void giveBackClosedSource();
    void giveBackSpareMemory();
    [[nodiscard]] bool canBePositioned() const;
    void issueSeek(double time, Reach reach);
    void endSeek();
    void decodeSkippedNeeded();
    [[nodiscard]] bool isCached(double time) const;
    [[nodiscard]] int framesKeptBehind() const;
    [[nodiscard]] bool comes(double time, Reach reach);
    void askForMoreBehind(double time);
    [[nodiscard]] bool isComing(double time) const;
    void advancePlayHead(bool pastEndHandled);
    bool isHeld();
    bool isPictureAwaited();
    void rebaseClock();
    void requestAudioSlice();
    void applyVolume();
    void resizeCache();
    void haltPlayback();
    void setState(State state);
    void setStatus(Status status);
    void raise(Error code, const QString& text);

    Error m_error = NoError;
    State m_state = Stopped;
    Status m_status = NoMedia;
    std::unique_ptr<MediaSource> m_closedSource; // its memory waits to be given back
    std::unique_ptr<MediaSource> m_mediaSource; // outlives the engine's use of it: see leaveBehind
    EngineThreads m_engine;
    EngineStatus m_engineStatus;
    QTimer m_playbackTimer; // the play head while playing
    QTimer m_pictureTimer; // looks for a picture that was not decoded yet when it was asked for
    FramePresenter m_presenter;
    int64_t m_cacheSize = 0; // bytes
    float m_trailingCachePct = 0.7F;
    bool m_cacheResized = false; // the two before are still to be applied to the open file
    bool m_seekRunning = false; // from its emission until its own answer
    double m_pendingSeekTime = -1.0; // seconds; asked for while a seek ran; negative: none
    Reach m_pendingReach = Reach::Target;
    bool m_pendingClearsCache = false;
    // Seconds; the seek that ran last keeps every picture from the one to the other.
    static constexpr double nothingComing = MediaSource::nothingDecoded;
    double m_comingFrom = 0.0;
    double m_comingTo = nothingComing;
    QString m_pendingFilename; // opened once the current file is unloaded
    bool m_neededSkipped = false; // the picture at the play head is to be decoded again
    double m_audioScrubDuration = 0.0; // seconds
    bool m_sliceOwed = false; // the slice at the play head is heard once its picture is shown
    double m_positionedAt = 0.0; // seconds; newest target of a positioning
    bool m_awaitingPicture = false; // playing begins with the picture at m_positionedAt
    int m_volume = 100; // percent
    Unload m_unload;
    // Grows with every positioning, stop and new file: what goes on after an emission checks that
    // it is unchanged.
    unsigned m_revision = 0;
};
