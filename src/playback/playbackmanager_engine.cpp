// What the engine's answers lead to: the way of a file from Loading to Ready and through Unloading.
// The play head and everything a person asks for stand in playbackmanager.cpp, but for positioning.
#include "backgroundrelease.h"
#include "mediasource.h"
#include "playbackerrors.h"
#include "playbackmanager.h"

#include <algorithm>
#include <memory>
#include <utility>

void PlaybackManager::wireMedia()
{
    MediaManager* media = &m_engine.media();
    connect(this, &PlaybackManager::mediaSourceChanged, media, &MediaManager::load);
    connect(this, &PlaybackManager::seekRequested, media, &MediaManager::seek);
    connect(this, &PlaybackManager::unloadMedia, media, &MediaManager::unload);
    connect(media, &MediaManager::error, this, &PlaybackManager::onMediaError);
    connect(media, &MediaManager::statusChanged, this, &PlaybackManager::onMediaStatusUpdate);
    connect(media, &MediaManager::released, this, [this] {
        m_unload.mediaReleased = true;
        handleEngineStatus();
    });
}

void PlaybackManager::wireAudio()
{
    AudioManager* audio = &m_engine.audio();
    connect(&m_engine.media(), &MediaManager::soundFound, audio, &AudioManager::prepareOutput);
    connect(this, &PlaybackManager::mediaSourceLoaded, audio, &AudioManager::changeMediaSource);
    connect(this, &PlaybackManager::unloadAudioVideo, audio, &AudioManager::stopDecoding);
    connect(audio, &AudioManager::error, this, &PlaybackManager::onAudioError);
    connect(audio, &AudioManager::statusChanged, this, &PlaybackManager::onAudioStatusUpdate);
    connect(audio, &AudioManager::released, this, [this] {
        m_unload.audioReleased = true;
        handleEngineStatus();
    });
}

void PlaybackManager::wireVideo()
{
    VideoManager* video = &m_engine.video();
    connect(this, &PlaybackManager::mediaSourceLoaded, video, &VideoManager::changeMediaSource);
    connect(this, &PlaybackManager::unloadAudioVideo, video, &VideoManager::stopDecoding);
    connect(video, &VideoManager::error, this, &PlaybackManager::onVideoError);
    connect(video, &VideoManager::statusChanged, this, &PlaybackManager::onVideoStatusUpdate);
    connect(video, &VideoManager::neededPictureSkipped, this, [this] {
        m_neededSkipped = true;
        decodeSkippedNeeded();
    });
    connect(video, &VideoManager::released, this, [this] {
        m_unload.videoReleased = true;
        handleEngineStatus();
    });
}

void PlaybackManager::onMediaStatusUpdate(MediaManager::Status status)
{
    m_engineStatus.media = status;
    handleEngineStatus();
}

void PlaybackManager::onAudioStatusUpdate(AudioManager::Status status)
{
    m_engineStatus.audio = status;
    handleEngineStatus();
}

void PlaybackManager::onVideoStatusUpdate(VideoManager::Status status)
{
    m_engineStatus.video = status;
    handleEngineStatus();
}

void PlaybackManager::handleEngineStatus()
{
    if (!m_mediaSource) {
        return;
    }
    switch (m_status) {
    case Loading:
        return handleLoading();
    case Unloading:
        return handleUnloading();
    case Ready:
        return handleReady();
    case Seeking:
        return handleSeeked();
    default:
        return;
    }
}

void PlaybackManager::handleLoading()
{
    switch (nextLoadStep(m_engineStatus)) {
    case LoadStep::StartDecoders:
        resizeCache();
        applyVolume();
        m_pictureTimer.start();
        Q_EMIT mediaSourceLoaded(m_mediaSource.get());
        return;
    case LoadStep::Complete:
        return completeLoad();
    case LoadStep::NoStreams:
        raise(FormatError, tr("No audio/video streams found."));
        if (m_status == Loading) {
            setStatus(InvalidMedia);
        }
        return;
    case LoadStep::Wait:
        return;
    }
}

void PlaybackManager::completeLoad()
{
    const unsigned revision = m_revision;
    m_mediaSource->openingPicture.giveUp();
    setStatus(Loaded);
    if (m_revision != revision || m_status != Loaded) {
        return;
    }
    haltPlayback();
    if (m_revision != revision || m_status != Loaded) {
        return;
    }
    m_mediaSource->resetClock(0.0);
    updatePlaybackTime();
    if (m_revision == revision && m_status == Ready) {
        handleReady(); // the decoders may have come further while this loaded
    }
    if (m_cacheResized && canBePositioned()) {
        resizeCache(); // asked for while the file was loading
        seek(true, playbackTime(), m_audioScrubDuration); // wherever the play head is by now
    }
}

void PlaybackManager::handleReady()
{
    if (!m_engineStatus.readyAtPlayHead()) {
        updateVideoFrame(false); // starts to wait for the picture
        return;
    }
    const unsigned revision = m_revision;
    rebaseClock();
    updatePlaybackTime();
    if (m_revision == revision && m_status == Ready && m_state != Playing) {
        requestAudioSlice();
    }
}

void PlaybackManager::handleUnloading()
{
    if (!m_engineStatus.decodersIdle() || !m_unload.audioReleased || !m_unload.videoReleased) {
        return;
    }
    if (!m_unload.mediaAsked) {
        m_unload.mediaAsked = true;
        Q_EMIT unloadMedia();
    } else if (m_unload.mediaReleased) {
        finishUnload();
    }
}

void PlaybackManager::finishUnload()
{
    ++m_revision;
    m_closedSource = std::move(m_mediaSource);
    m_engineStatus.media = MediaManager::Status{};
    m_engineStatus.audio = AudioManager::Idle;
    m_engineStatus.soundFailed = false;
    setStatus(NoMedia);
    if (m_status == NoMedia) {
        setState(Stopped);
    }
    if (m_status == NoMedia && !m_pendingFilename.isEmpty()) {
        createSource(QString(m_pendingFilename));
    }
    if (m_status != Loading) {
        giveBackClosedSource();
    }
}

// Not while another file is being opened, which it would slow down.
void PlaybackManager::giveBackClosedSource()
{
    if (m_closedSource) {
        releaseInBackground(std::move(m_closedSource));
    }
}

// A picture is scaled by way of a copy as large as itself, and the cache keeps memory for those to
// come. While pictures follow each other it is good to have all that at hand.
void PlaybackManager::giveBackSpareMemory()
{
    if (m_state == Playing || m_status == Seeking) {
        return;
    }
    if (m_mediaSource) {
        m_mediaSource->videoFrames.dropSpareMemory();
    }
    returnFreeMemory();
}

void PlaybackManager::onMediaError(MediaManager::Error mediaError)
{
    const bool openFailed = mediaError == MediaManager::OpenError;
    if (!m_mediaSource || (openFailed && m_status != Loading)) {
        return; // of a file given up meanwhile
    }
    const unsigned revision = m_revision;
    const PlaybackError described = describe(mediaError);
    raise(described.code, described.text);
    if (openFailed && m_revision == revision) {
        unload();
    } else if (mediaError == MediaManager::SeekError && m_seekRunning && m_status == Seeking) {
        m_comingTo = nothingComing;
        endSeek();
        if (m_status == Ready && !m_seekRunning) {
            updatePlaybackTime(); // the old time stands again
        }
    }
}

void PlaybackManager::onAudioError(AudioManager::Error audioError)
{
    const QString detail =
        m_mediaSource ? audioErrorDetail(m_mediaSource->audioErrorCode.exchange(0)) : QString();
    const PlaybackError described = describe(audioError, detail);
    raise(described.code, described.text);
    if (audioError == AudioManager::StartStreamError) {
        m_engineStatus.soundFailed = true;
        handleEngineStatus();
    }
}

void PlaybackManager::onVideoError(VideoManager::Error videoError)
{
    const unsigned revision = m_revision;
    const PlaybackError described = describe(videoError);
    raise(described.code, described.text);
    if (m_status == Loading && m_revision == revision) {
        unload(); // the decoder will not be heard of again, so loading would have no end
    }
}
