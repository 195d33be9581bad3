#include "transport.h"

#include "bookmarks.h"
#include "playbackmanager.h"
#include "settings.h"
#include "speedladder.h"

#include <QGuiApplication>
#include <QThread>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr double untilTheEnd = -1.0;
constexpr int notGiven = -1;
constexpr int noFrame = -1;
// Frames; further back is a jump, after which what lies behind may never be asked for.
constexpr int longestBackwardStep = 24;
// The last frame before a jump back stays on the screen for two fifths of its time.
constexpr double lastFrameShareUs = 400000.0; // of a frame's duration in seconds
constexpr double longestLastFrameUs = 200000.0;

int framePublished = 1; // GUI thread

} // namespace

Transport::Transport(PlaybackManager& manager, Bookmarks& bookmarks, QObject* parent)
    : QObject(parent)
    , m_manager(manager)
    , m_bookmarks(bookmarks)
{
    m_timer.start();
}

int Transport::currentFrame() const
{
    return m_clock.frameAt(m_manager.playbackTime());
}

int Transport::lastFrame() const
{
    return m_clock.frameAt(m_manager.duration());
}

int Transport::publishedFrame()
{
    return framePublished;
}

void Transport::goTo(int frame, FrameRequest request)
{
    const bool keepPlaying = settings().continuePlayingAfterSeek && m_range.contains(frame)
        && !request.skipPlayWhenReady;
    m_playWhenReady = m_playWhenReady && keepPlaying;
    const double scrubSeconds =
        settings().audioScrub && request.audioScrub ? m_manager.frameDuration() : 0.0;
    int target = std::max(1, std::min(frame, lastFrame()));
    if (target == currentFrame() && !request.clearCache && !m_playWhenReady) {
        return;
    }
    Q_EMIT frameRequested(target);
    m_lastShownFrame = noFrame; // where the request fails, the frame that stays is told again
    if (m_manager.state() == PlaybackManager::Playing && keepPlaying) {
        if (QGuiApplication::mouseButtons() == Qt::LeftButton) {
            m_resumeAfterScrub = true;
        } else if (target < lastFrame()) {
            m_playWhenReady = true;
        } else if (settings().loop) {
            m_playWhenReady = true;
            target = 1; // of the media, not of the range
        }
    }
    const int back = currentFrame() - target;
    const bool stepsBack = request.audioScrub && back > 0 && back <= longestBackwardStep;
    m_manager.seek(request.clearCache, m_clock.timeOf(target), scrubSeconds,
        stepsBack ? PlaybackManager::Reach::Backward : PlaybackManager::Reach::Target);
    startIfReady();
}

void Transport::goToInRange(int frame)
{
    constexpr qint64 last = std::numeric_limits<int>::max();
    goTo(static_cast<int>(std::clamp(qint64{ frame } + m_range.start - 1, -last, last)));
}

// Cleared before playing starts, as that may have to wait for a seek of its own.
void Transport::startIfReady()
{
    if (m_playWhenReady && m_manager.status() == PlaybackManager::Ready) {
        m_playWhenReady = false;
        if (m_manager.state() != PlaybackManager::Playing) {
            togglePlaying();
        }
    }
}

void Transport::togglePlaying()
{
    if (m_manager.state() == PlaybackManager::Playing) {
        m_resumeAfterScrub = false;
        m_manager.pause();
        return;
    }
    if (m_manager.state() != PlaybackManager::Paused) {
        return;
    }
    if (m_manager.status() == PlaybackManager::Seeking) {
        m_playWhenReady = !m_playWhenReady;
        m_resumeAfterScrub = m_resumeAfterScrub && m_playWhenReady;
        return;
    }
    if (currentFrame() >= m_range.end) {
        goTo(m_range.start);
        m_playWhenReady = m_manager.status() != PlaybackManager::Ready;
    }
    m_manager.play(untilTheEnd);
}

void Transport::play()
{
    const bool willPlay = m_manager.status() == PlaybackManager::Seeking && m_playWhenReady;
    if (m_manager.state() == PlaybackManager::Paused && !willPlay) {
        togglePlaying();
    }
}

void Transport::pause()
{
    m_resumeAfterScrub = false; // which would play on when the button is let go
    const bool willPlay = m_manager.status() == PlaybackManager::Seeking && m_playWhenReady;
    if (m_manager.state() == PlaybackManager::Playing || willPlay) {
        togglePlaying();
    }
}

void Transport::stepForward()
{
    const int current = currentFrame();
    int next = current + 1;
    if (settings().loopOnStep && (next < m_range.start || current >= m_range.end)) {
        next = m_range.start;
    }
    goTo(next, { .audioScrub = true, .skipPlayWhenReady = true });
}

void Transport::stepBackward()
{
    const int current = currentFrame();
    int previous = current - 1;
    if (settings().loopOnStep && (current <= m_range.start || previous > m_range.end)) {
        previous = m_range.end;
    }
    goTo(previous, { .audioScrub = true, .skipPlayWhenReady = true });
}

void Transport::scrubBy(int frames)
{
    int target = currentFrame() + frames;
    if (settings().loopOnScrub && !m_range.contains(target)) {
        target = frames < 0 ? m_range.end : m_range.start;
    }
    goTo(target, { .audioScrub = m_manager.frameDuration() != 0.0 });
}

void Transport::setSpeed(double multiplier)
{
    m_manager.setSpeedMultiplier(speedladder::clamped(multiplier));
    Q_EMIT speedChanged(m_manager.speedMultiplier());
}

void Transport::applyRange(FrameRange range)
{
    m_range = range;
    m_bookmarks.clearCurrentRange();
    Q_EMIT rangeChanged(range.start, range.end);
}

void Transport::setRange(int start, int end)
{
    applyRange(FrameRange::clamped(start, end, lastFrame()));
}

void Transport::setRangeBookmark(int start, int end)
{
    if (!m_bookmarks.containsRange(start, end)) {
        return;
    }
    setRange(start, end);
    m_bookmarks.setCurrentRange(start, end); // as marked, also where the media is shorter
    goTo(m_range.start);
}

void Transport::expectMedia(int rangeStart, int rangeEnd)
{
    m_pendingRangeStart = rangeStart;
    m_pendingRangeEnd = rangeEnd;
    m_resumeAfterScrub = false;
    m_waiting = {};
}

void Transport::goToWhenLoaded(int frame)
{
    if (m_manager.isLoading()) {
        m_waiting.frame = frame;
        m_waiting.frameIsOfRange = false;
    } else {
        goTo(frame);
    }
}

void Transport::goToInRangeWhenLoaded(int frame)
{
    if (m_manager.isLoading()) {
        m_waiting.frame = frame;
        m_waiting.frameIsOfRange = true;
    } else {
        goToInRange(frame);
    }
}

void Transport::setRangeStartWhenLoaded(int frame)
{
    if (m_manager.isLoading()) {
        m_waiting.rangeStart = frame;
    } else {
        setRange(frame, m_range.end);
    }
}

void Transport::setRangeEndWhenLoaded(int frame)
{
    if (m_manager.isLoading()) {
        m_waiting.rangeEnd = frame;
    } else {
        setRange(m_range.start, frame);
    }
}

void Transport::carryOutWaiting()
{
    const Waiting waiting = std::exchange(m_waiting, {});
    if (waiting.rangeStart || waiting.rangeEnd) {
        setRange(
            waiting.rangeStart.value_or(m_range.start), waiting.rangeEnd.value_or(m_range.end));
    }
    if (waiting.frame && waiting.frameIsOfRange) {
        goToInRange(*waiting.frame);
    } else if (waiting.frame) {
        goTo(*waiting.frame);
    }
}

void Transport::endScrub()
{
    if (!std::exchange(m_resumeAfterScrub, false)) {
        return;
    }
    const int frame = currentFrame();
    const bool atEnd = frame == lastFrame();
    if (!atEnd || settings().loop) {
        m_playWhenReady = true;
        goTo(atEnd ? 1 : frame);
    }
}

void Transport::followPlayHead(double seconds)
{
    const int frame = m_clock.frameAt(seconds);
    framePublished = frame;
    const int frameBefore = std::exchange(m_lastShownFrame, frame);
    if (frame != frameBefore) {
        Q_EMIT frameShown(frame);
    }
    if (m_manager.state() != PlaybackManager::Playing) {
        return;
    }
    if (frame < m_range.start) {
        goToRangeStart();
    } else if (frame >= m_range.end && settings().loop) {
        loopToRangeStart();
    } else if (frame >= m_range.end) {
        stopAtRangeEnd(frameBefore);
    }
    if (m_manager.state() != PlaybackManager::Playing) {
        return;
    }
    const double speed = m_manager.speedMultiplier();
    Q_EMIT speedChanged(speed);
    if (const auto rate =
            m_rateMeter.tick(frame, m_timer.elapsed(), speed, m_manager.frameRate())) {
        Q_EMIT rateChanged(*rate);
    }
    Q_EMIT playHeadMoved();
}

void Transport::goToRangeStart()
{
    goTo(m_range.start);
    m_playWhenReady = m_manager.status() != PlaybackManager::Ready;
    m_manager.play(untilTheEnd);
}

void Transport::loopToRangeStart()
{
    Q_EMIT repaintNeeded();
    const double pauseUs = m_manager.frameDuration() * lastFrameShareUs;
    if (m_range.start == m_range.end) {
        m_manager.seek(false, m_clock.timeOf(m_range.start), 0.0); // before its time is over
    } else {
        goTo(m_range.start);
    }
    const bool ready = m_manager.status() == PlaybackManager::Ready;
    m_playWhenReady = m_playWhenReady || !ready;
    QThread::usleep(static_cast<unsigned long>(std::clamp(pauseUs, 0.0, longestLastFrameUs)));
    m_playWhenReady = m_playWhenReady && !ready;
    m_manager.play(untilTheEnd);
}

// Where the window was kept busy the tick that should have met the range's end comes too late, and
// the sound can carry the clock on until it stands.
void Transport::stopAtRangeEnd(int frameBefore)
{
    m_manager.pause();
    if (currentFrame() > m_range.end && m_range.contains(frameBefore)
        && m_manager.status() == PlaybackManager::Ready) {
        goTo(m_range.end, { .skipPlayWhenReady = true });
    }
}

void Transport::onPlaying()
{
    m_rateMeter.start(currentFrame(), m_timer.elapsed());
    Q_EMIT rateChanged(m_manager.frameRate());
}

void Transport::onLoaded()
{
    m_clock = FrameClock(m_manager.frameRate(), m_manager.frameDuration());
    m_lastShownFrame = noFrame;
    m_range = { 1, lastFrame() };
    Q_EMIT rangeChanged(m_range.start, m_range.end);
    Q_EMIT speedChanged(m_manager.speedMultiplier());
    m_playWhenReady = settings().autoplay;
    m_resumeAfterScrub = false;
    m_loopPending = false; // of the file before
    m_freshLoad = true;
}

void Transport::onReady()
{
    if (applyPendingRange() || applySavedRange()) {
        carryOutWaiting();
        m_playWhenReady = settings().autoplay;
        if (m_manager.status() != PlaybackManager::Ready) {
            return;
        }
    }
    startIfReady();
    if (std::exchange(m_loopPending, false)) {
        m_playWhenReady = true;
        m_manager.seek(false, 0.0, 0.0);
        startIfReady(); // found in the cache, it tells of no new "ready"
    }
}

bool Transport::applyPendingRange()
{
    if (m_pendingRangeStart < 0 && m_pendingRangeEnd < 0) {
        return false;
    }
    m_freshLoad = false;
    const int start = std::exchange(m_pendingRangeStart, notGiven);
    const int end = std::exchange(m_pendingRangeEnd, notGiven);
    setRange(start, end);
    goTo(m_range.start);
    return true;
}

bool Transport::applySavedRange()
{
    if (!std::exchange(m_freshLoad, false)) {
        return false;
    }
    const int start = m_bookmarks.currentRangeStart();
    const int end = m_bookmarks.currentRangeEnd();
    if (start >= 0 && end >= 0) {
        setRangeBookmark(start, end);
    }
    return true;
}

void Transport::onEndOfMedia()
{
    if (m_manager.state() == PlaybackManager::Playing) {
        m_loopPending = settings().loop;
    }
}
