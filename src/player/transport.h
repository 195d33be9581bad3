#pragma once

#include "frameclock.h"
#include "framerange.h"
#include "ratemeter.h"

#include <QElapsedTimer>
#include <QObject>

#include <optional>

class Bookmarks;
class PlaybackManager;

/// How a frame is asked for.
struct FrameRequest {
    bool audioScrub = false; // with the sound of the frame, where the settings want it
    bool clearCache = false; // decode everything anew from there
    bool skipPlayWhenReady = false; // stay there: do not go on playing
};

/// What a request for a frame, a tick of the clock or a file that is ready leads to. Frames count
/// from 1. Holds the range that is played and what is to happen once the manager is ready again.
/// GUI thread.
class Transport : public QObject {
    Q_OBJECT

public:
    Transport(PlaybackManager& manager, Bookmarks& bookmarks, QObject* parent = nullptr);

    /// Frame under the play head; 1 without media.
    [[nodiscard]] int currentFrame() const;
    [[nodiscard]] int lastFrame() const;
    [[nodiscard]] int frameAt(double seconds) const { return m_clock.frameAt(seconds); }
    [[nodiscard]] FrameRange range() const { return m_range; }
    /// Frame last shown by any window of the process.
    [[nodiscard]] static int publishedFrame();

    /// A frame outside the media becomes its first or last one.
    void goTo(int frame, FrameRequest request = {});
    /// 1 is the first frame of the range.
    void goToInRange(int frame);
    void togglePlaying();
    /// As togglePlaying(), but only in the direction named.
    void play();
    void pause();
    void stepForward();
    void stepBackward();
    /// A drag over the video: `frames` on, back when negative; at the range's ends it loops where
    /// the settings want it.
    void scrubBy(int frames);
    void setSpeed(double multiplier);

    /// Clamps to the media. The range no longer stands for a range bookmark.
    void setRange(int start, int end);
    /// Plays a range bookmark from its start. Nothing happens unless there is one with these ends.
    void setRangeBookmark(int start, int end);

    /// A new file is coming; the range, -1 for an end that was not given, is applied when it is
    /// ready.
    void expectMedia(int rangeStart, int rangeEnd);
    /// As goTo(), goToInRange() and setRange() of one end, but while a file loads they wait for it:
    /// the newest of each is carried out once it is ready.
    void goToWhenLoaded(int frame);
    void goToInRangeWhenLoaded(int frame);
    void setRangeStartWhenLoaded(int frame);
    void setRangeEndWhenLoaded(int frame);
    /// Forgets what was to be resumed.
    void forgetResume() { m_resumeAfterScrub = false; }
    /// The mouse button that scrubbed was let go: goes on playing if that was interrupted.
    void endScrub();

    // Answers to the manager.
    void followPlayHead(double seconds);
    void onPlaying();
    void onLoaded();
    void onReady();
    void onEndOfMedia();

Q_SIGNALS:
    /// A frame was asked for; its picture may still have to be decoded.
    void frameRequested(int frame);
    /// The play head is on another frame than before.
    void frameShown(int frame);
    void rangeChanged(int start, int end);
    void speedChanged(double multiplier);
    /// Frames per second to show while playing.
    void rateChanged(double rate);
    /// The play head moved while playing; the cache with it.
    void playHeadMoved();
    /// The last frame of the range is to be seen before the window stands still for a moment.
    void repaintNeeded();

private:
    // Asked for while a file loads.
    struct Waiting {
        std::optional<int> rangeStart;
        std::optional<int> rangeEnd;
        std::optional<int> frame; // of the media or, if so, of the range
        bool frameIsOfRange = false;
    };

    void startIfReady();
    void goToRangeStart();
    void loopToRangeStart();
    void stopAtRangeEnd(int frameBefore);
    void applyRange(FrameRange range);
    bool applyPendingRange();
    bool applySavedRange();
    void carryOutWaiting();

    PlaybackManager& m_manager;
    Bookmarks& m_bookmarks;
    FrameClock m_clock;
    FrameRange m_range;
    RateMeter m_rateMeter;
    QElapsedTimer m_timer;
    int m_lastShownFrame = -1;
    int m_pendingRangeStart = -1;
    int m_pendingRangeEnd = -1;
    Waiting m_waiting;
    bool m_playWhenReady = false;
    bool m_resumeAfterScrub = false; // a scrub interrupted playing
    bool m_loopPending = false; // the end was reached while playing, with looping on
    bool m_freshLoad = false; // loaded, and its first "ready" not handled yet
};
