// Positioning: the way to another frame, through the cache or by a seek, and the sound heard there.
#include "mediasource.h"
#include "playbackmanager.h"

#include <algorithm>
#include <utility>

namespace {
constexpr double framesWaitedFor = 12.0; // beyond what is decoded; a seek decodes about as many
constexpr double framesAtWork = 1.5; // the newest that is out may not be in the cache yet
constexpr double shareInReserve = 0.25; // of what is kept behind
constexpr double shareOfFrame = 0.99; // less than one frame, also where times are rounded
}

// Before, the decoders may not have begun; after, they have been told to let go.
bool PlaybackManager::canBePositioned() const
{
    const bool isOpen =
        m_status == Loaded || m_status == Ready || m_status == Seeking || m_status == EndOfMedia;
    return m_mediaSource && m_state != Stopped && isOpen;
}

void PlaybackManager::seek(bool clearCache, double time, double audioScrubDuration, Reach reach)
{
    if (!canBePositioned()) {
        return;
    }
    const unsigned revision = ++m_revision;
    haltPlayback();
    if (m_revision != revision || !canBePositioned()) {
        return;
    }
    MediaSource& source = *m_mediaSource;
    const double target = time > 0.0 ? time : 0.0;
    const bool decodeAnew = clearCache || m_neededSkipped;
    m_audioScrubDuration = audioScrubDuration;
    m_positionedAt = target;
    source.scrubForward = target >= source.clockTime(true);
    source.audioResyncRequested = true;
    if (m_seekRunning) {
        m_pendingSeekTime = target;
        m_pendingReach = reach;
        m_pendingClearsCache = clearCache;
    } else if (!decodeAnew && isCached(target)) {
        source.resetClock(target);
        updatePlaybackTime();
        if (m_revision != revision) {
            return;
        }
        if (source.cachedStartTime() > target) {
            issueSeek(target, reach); // the decoder has just evicted it
        } else {
            requestAudioSlice();
        }
    } else if (!decodeAnew && comes(target, reach)) {
        m_sliceOwed = true;
        source.resetClock(target);
        updatePlaybackTime();
    } else {
        issueSeek(target, reach);
    }
}

bool PlaybackManager::isCached(double time) const
{
    return m_mediaSource->picturesPaceSound() && m_mediaSource->videoFrames.contains(time);
}

int PlaybackManager::framesKeptBehind() const
{
    return std::max(m_mediaSource->videoFrames.trailing() - 1, 0);
}

bool PlaybackManager::comes(double time, Reach reach)
{
    // In good time, but not at every step: all that is kept behind the target comes before it.
    const double soonNeeded = framesKeptBehind() * shareInReserve * frameDuration();
    if (reach == Reach::Backward && time < m_comingFrom + soonNeeded) {
        askForMoreBehind(time);
    }
    return isComing(time);
}

// Stepping back faster than the decoder comes from its key picture: it keeps what lies behind the
// new target instead of beginning anew.
void PlaybackManager::askForMoreBehind(double time)
{
    MediaSource& source = *m_mediaSource;
    const bool isAhead =
        time <= m_comingTo && time >= source.decodedFrom && time >= source.decodedTo;
    // Where pictures rest longer than one frame, the one on show may start far before.
    if (isAhead && time >= source.cachedEndTime() && source.hasConstantRate) {
        const double frame = frameDuration();
        const double from =
            source.kept.extend(time - framesKeptBehind() * frame, framesWaitedFor * frame) + frame;
        if (from <= time) {
            m_comingFrom = from;
        }
    }
}

// Outside the cache, but the decoder is on its way there: a seek would begin anew. What the last
// seek keeps may be asked for in any order; further on, only forward, as pictures far behind the
// clock are not kept.
bool PlaybackManager::isComing(double time) const
{
    const MediaSource& source = *m_mediaSource;
    if (!source.picturesPaceSound() || source.readFailed) {
        return false;
    }
    const double reached = source.decodedTo;
    if (time >= m_comingFrom && time <= m_comingTo) {
        // It can begin at a key picture further on than what it was to keep, and what has come out
        // is in the cache, or was.
        const bool isOut = time < reached - framesAtWork * frameDuration();
        // At a rate that varies what lies behind the newest picture may rest until now.
        const bool isLost = source.hasConstantRate
            ? !isCached(time)
            : source.videoFrames.frameCount() > 0 && time < source.cachedStartTime();
        const bool isGone = isOut && isLost;
        return time >= source.decodedFrom && reached < m_comingTo && !isGone;
    }
    const double furthest = std::max(reached, m_comingTo) + framesWaitedFor * frameDuration();
    const double next = source.kept.passedTo() + shareOfFrame * frameDuration();
    return time >= source.clock.time() && time >= std::max(reached, next) && time <= furthest;
}

void PlaybackManager::issueSeek(double time, Reach reach)
{
    const int framesKept = reach == Reach::Backward ? framesKeptBehind() : 0;
    const double seconds = framesKept * frameDuration();
    m_neededSkipped = false;
    m_sliceOwed = false;
    // The first frame of the reach starts a hair before it.
    m_comingFrom = time - std::max(framesKept - 1, 0) * frameDuration();
    m_comingTo = time;
    m_pendingSeekTime = -1.0;
    m_pictureTimer.stop();
    m_seekRunning = true;
    m_engineStatus.media = MediaManager::Reading; // an earlier seek's answer is not this one's
    m_mediaSource->seekTime = time;
    m_mediaSource->seekReach = seconds;
    m_mediaSource->seekRequested.store(true, std::memory_order_release);
    setStatus(Seeking);
    if (m_seekRunning) { // unless whoever heard the status has stopped meanwhile
        Q_EMIT seekRequested();
    }
}

void PlaybackManager::handleSeeked()
{
    if (m_seekRunning && m_engineStatus.media == MediaManager::Seeked) {
        endSeek();
    }
}

// The seek that ran has ended, one way or the other.
void PlaybackManager::endSeek()
{
    m_seekRunning = false;
    if (m_pendingSeekTime >= 0.0
        && (m_pendingClearsCache || !comes(m_pendingSeekTime, m_pendingReach))) {
        issueSeek(m_pendingSeekTime, m_pendingReach);
        return;
    }
    if (const double pending = std::exchange(m_pendingSeekTime, -1.0); pending >= 0.0) {
        m_mediaSource->resetClock(pending);
    }
    const unsigned revision = m_revision;
    setStatus(Ready);
    if (m_revision == revision && m_status == Ready) {
        handleReady(); // the picture may have come before the demuxer's answer
    }
    decodeSkippedNeeded();
}

// The picture to show was skipped on the way to another one, and that one or an earlier one stands
// in its place. While playing or seeking that has to wait; the next seek mends it, too.
void PlaybackManager::decodeSkippedNeeded()
{
    if (m_neededSkipped && m_mediaSource && !m_mediaSource->videoFrames.isComplete()
        && isCached(playbackTime())) {
        m_neededSkipped = false; // the play head has moved on meanwhile
    }
    if (m_neededSkipped && m_mediaSource && m_status == Ready && m_state != Playing
        && !m_seekRunning) {
        issueSeek(playbackTime(), Reach::Target);
    }
}

void PlaybackManager::requestAudioSlice()
{
    MediaSource& source = *m_mediaSource;
    m_sliceOwed = false;
    source.scrubSampleCount = static_cast<int32_t>(std::clamp(
        source.sampleRate * m_audioScrubDuration, 0.0, double{ MediaSource::scratchSamples }));
    source.audioResyncRequested = true;
    source.scrubRequested.store(true, std::memory_order_release);
}
