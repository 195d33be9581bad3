#include "playbackmanager.h"

#include "acceptedmedia.h"
#include "backgroundrelease.h"
#include "mediasource.h"
#include "softwareviewer.h"

#include <QFileInfo>

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

namespace {

constexpr int playHeadIntervalMs = 1;
constexpr int pictureIntervalMs = 1;
constexpr double endGuardSeconds = 0.0001; // the play head rests this far before the end
constexpr double fullVolumePercent = 100.0;
constexpr int64_t bytesPerPixel = 3;

} // namespace

PlaybackManager::PlaybackManager(QObject* parent)
    : QObject(parent)
    , m_engineStatus{ m_engine.media().status(), m_engine.audio().status(),
        m_engine.video().status() }
{
    qRegisterMetaType<PlaybackManager::Error>("PlaybackManager::Error");
    qRegisterMetaType<PlaybackManager::State>("PlaybackManager::State");
    qRegisterMetaType<PlaybackManager::Status>("PlaybackManager::Status");
    m_playbackTimer.setTimerType(Qt::PreciseTimer);
    m_playbackTimer.setInterval(playHeadIntervalMs);
    m_pictureTimer.setTimerType(Qt::PreciseTimer);
    m_pictureTimer.setInterval(pictureIntervalMs);
    wireMedia();
    m_engine.startMedia();
    wireAudio();
    m_engine.startAudio();
    wireVideo();
    m_engine.startVideo();
    connect(&m_playbackTimer, &QTimer::timeout, this, &PlaybackManager::updatePlaybackTime);
    connect(&m_pictureTimer, &QTimer::timeout, this, [this] {
        if (m_status == Loading) {
            showFirstPicture();
        } else {
            updateVideoFrame(false);
        }
    });
}

PlaybackManager::~PlaybackManager()
{
    setStatus(UnknownStatus);
    if (m_mediaSource) {
        EngineThreads::leaveBehind(std::move(m_mediaSource));
    }
}

void PlaybackManager::setViewer(SoftwareViewer* viewer)
{
    m_presenter.setViewer(viewer);
    connect(viewer, &SoftwareViewer::rested, this, &PlaybackManager::giveBackSpareMemory);
}

bool PlaybackManager::setMedia(const QString& filename, int64_t cacheSize, float trailingCachePct)
{
    const QFileInfo file(filename);
    if (!file.exists() && file.isFile()) {
        if (m_state != Stopped) {
            unload();
        }
        raise(ResourceError, tr("Invalid filename: %1").arg(filename));
        return false;
    }
    if (!isAcceptedMedia(file.suffix())) {
        if (m_state != Stopped) {
            unload();
        }
        raise(ResourceError, tr("Unsupported format: %1").arg(file.suffix()));
        return false;
    }
    m_cacheSize = cacheSize;
    m_trailingCachePct = trailingCachePct;
    if (m_state != Stopped || m_status != NoMedia) {
        m_pendingFilename = filename;
        unload(); // also while loading or invalid, when the state is Stopped already
        if (!m_mediaSource && m_status == NoMedia && !m_pendingFilename.isEmpty()) {
            createSource(QString(m_pendingFilename)); // there was nothing to let go of
        }
        return true;
    }
    createSource(filename);
    return true;
}

void PlaybackManager::createSource(const QString& filename)
{
    ++m_revision;
    m_pendingFilename.clear();
    m_audioScrubDuration = 0.0;
    m_positionedAt = 0.0;
    m_comingTo = nothingComing;
    m_neededSkipped = false;
    m_sliceOwed = false;
    m_unload = {};
    m_mediaSource = std::make_unique<MediaSource>(filename);
    setStatus(Loading);
    if (m_status == Loading) {
        Q_EMIT mediaSourceChanged(m_mediaSource.get());
    }
}

void PlaybackManager::play(double duration)
{
    if (m_state == Playing || m_status != Ready) {
        return;
    }
    const unsigned revision = m_revision;
    rebaseClock();
    updatePlaybackTime();
    if (m_revision != revision || m_state == Playing || m_status != Ready) {
        return;
    }
    const double time = m_mediaSource->clockTime(false);
    // Compared with the play head, not added to it.
    m_mediaSource->playUntil = duration > 0.0 && time >= duration ? time : MediaSource::noPlayLimit;
    m_mediaSource->scrubRequested = false;
    m_mediaSource->scrubSampleCount = 0;
    m_awaitingPicture = isPictureAwaited();
    m_mediaSource->playing = !m_awaitingPicture;
    m_pictureTimer.stop();
    m_playbackTimer.start();
    setState(Playing);
}

void PlaybackManager::pause()
{
    const bool wasPlaying = m_state == Playing;
    const unsigned revision = m_revision;
    haltPlayback();
    if (wasPlaying && m_revision == revision && m_status == Ready) {
        updatePlaybackTime(); // the clock may have crossed into the next frame since the last tick
    }
    decodeSkippedNeeded();
}

void PlaybackManager::haltPlayback()
{
    if (m_state == Paused) {
        return;
    }
    if (m_mediaSource) {
        m_mediaSource->playing = false;
    }
    m_playbackTimer.stop();
    setState(Paused);
}

void PlaybackManager::stop()
{
    m_pendingFilename.clear();
    unload();
}

void PlaybackManager::unload()
{
    ++m_revision;
    m_playbackTimer.stop();
    m_pictureTimer.stop();
    if (m_mediaSource && m_status != Unloading) {
        m_seekRunning = false;
        m_pendingSeekTime = -1.0;
        m_mediaSource->playing = false;
        m_mediaSource->abortRequested =
            true; // first: the engine's loops end while everybody is told
        setStatus(Unloading);
        Q_EMIT unloadAudioVideo();
    }
    m_presenter.clear();
    setState(Stopped);
}

void PlaybackManager::setPlaybackTime(double playbackTime)
{
    if (m_mediaSource) {
        m_mediaSource->resetClock(playbackTime);
        updatePlaybackTime();
    }
}

void PlaybackManager::updatePlaybackTime()
{
    if (m_mediaSource && m_seekRunning) {
        Q_EMIT playbackTimeChanged(playbackTime());
    } else if (m_mediaSource && !isHeld()) {
        advancePlayHead(false);
    }
}

// While playing, until the picture at the target of the last seek is there: the clock, the sound
// and whoever shows the time wait for it at the target.
bool PlaybackManager::isHeld()
{
    if (m_state != Playing || !m_awaitingPicture) {
        return false;
    }
    m_awaitingPicture = isPictureAwaited();
    if (!m_awaitingPicture) {
        rebaseClock();
        m_mediaSource->playing = true;
    }
    return m_awaitingPicture;
}

bool PlaybackManager::isPictureAwaited()
{
    return m_presenter.show(*m_mediaSource, false, m_positionedAt)
        == FramePresenter::Result::Awaited;
}

// After every emission: whoever heard it may have moved the play head or let go of the file.
void PlaybackManager::advancePlayHead(bool pastEndHandled)
{
    const unsigned revision = m_revision;
    const auto changedMeanwhile = [&](Status expected) {
        return m_revision != revision || m_status != expected;
    };
    const double time = m_mediaSource->clockTime(true);
    const double end = duration();
    if (time >= end && !pastEndHandled) {
        // Told while still playing, so that the listener can decide to loop.
        setStatus(EndOfMedia);
        if (changedMeanwhile(EndOfMedia)) {
            return;
        }
        haltPlayback();
        if (changedMeanwhile(EndOfMedia)) {
            return;
        }
        m_mediaSource->resetClock(end - endGuardSeconds);
        advancePlayHead(true);
        decodeSkippedNeeded();
        return;
    }
    setStatus(Ready);
    if (changedMeanwhile(Ready)) {
        return;
    }
    if (time >= m_mediaSource->playUntil) {
        m_mediaSource->playUntil = MediaSource::noPlayLimit;
        haltPlayback();
        if (changedMeanwhile(Ready)) {
            return;
        }
    }
    updateVideoFrame(false);
    Q_EMIT playbackTimeChanged(time);
}

void PlaybackManager::updateVideoFrame(bool refresh)
{
    if (!m_mediaSource || m_status == Unloading) {
        return;
    }
    if (m_seekRunning || m_status == Loading) {
        if (refresh) {
            m_presenter.forget(); // what comes is painted in any case
        }
        return;
    }
    const bool moving = m_state == Playing;
    const auto result = m_presenter.show(
        *m_mediaSource, refresh, moving ? std::optional(m_positionedAt) : std::nullopt);
    if (result == FramePresenter::Result::Missing
        && m_engineStatus.video == VideoManager::EndOfStream) {
        m_presenter.clear();
    }
    if (result == FramePresenter::Result::Awaited && !moving) {
        m_pictureTimer.start();
    } else {
        m_pictureTimer.stop();
    }
    // Without waiting the decoder has no new status to tell, which would ask for the slice.
    if (m_sliceOwed && !moving && result == FramePresenter::Result::Shown
        && m_engineStatus.readyAtPlayHead()) {
        requestAudioSlice();
    }
}

// As soon as it is decoded; the file is ready only some pictures later.
void PlaybackManager::showFirstPicture()
{
    // It can be a hair before 0, and count as over then.
    constexpr double anyPicture = -std::numeric_limits<double>::infinity();
    if (m_presenter.show(*m_mediaSource, false, anyPicture) == FramePresenter::Result::Shown) {
        m_pictureTimer.stop();
        giveBackClosedSource();
    } else {
        m_presenter.showOpening(*m_mediaSource);
    }
}

void PlaybackManager::clearVideoFrame()
{
    m_presenter.clear();
}

void PlaybackManager::rebaseClock()
{
    m_mediaSource->resetClock(m_mediaSource->clockTime(true));
}

void PlaybackManager::setState(State state)
{
    if (m_state != state) {
        m_state = state;
        Q_EMIT stateChanged(state);
    }
}

void PlaybackManager::setStatus(Status status)
{
    if (m_status != status) {
        const bool wasLoading = m_status == Loading;
        m_status = status;
        if (wasLoading) {
            giveBackClosedSource();
        }
        Q_EMIT statusChanged(status);
    }
}

void PlaybackManager::raise(Error code, const QString& text)
{
    if (m_error != code) {
        m_error = code;
        Q_EMIT error(code, text);
    }
    m_error = NoError;
}

double PlaybackManager::playbackTime()
{
    if (!m_mediaSource) {
        return 0.0;
    }
    if (m_seekRunning) {
        return m_pendingSeekTime >= 0.0 ? m_pendingSeekTime : m_mediaSource->seekTime.load();
    }
    return m_mediaSource->clockTime(true);
}

int64_t PlaybackManager::durationMs() const
{
    constexpr double msPerSecond = 1000.0;
    return static_cast<int64_t>(duration() * msPerSecond);
}

QSize PlaybackManager::shownVideoSize() const
{
    const QSize stored(videoWidth(), videoHeight());
    return stored.isEmpty() ? QSize() : m_presenter.shownSize(*m_mediaSource, stored);
}

double PlaybackManager::speedMultiplier() const
{
    return m_mediaSource ? m_mediaSource->clock.speed.load() : 1.0;
}

void PlaybackManager::setSpeedMultiplier(double multiplier)
{
    if (m_mediaSource) {
        m_mediaSource->clockTime(true); // what has passed counts at the old speed
        m_mediaSource->clock.speed = multiplier;
    }
}

void PlaybackManager::setVolume(int volume)
{
    const int clamped = std::max(volume, 0);
    if (clamped == m_volume) {
        return;
    }
    m_volume = clamped;
    if (m_mediaSource) {
        applyVolume();
    }
}

void PlaybackManager::setCacheSize(int64_t bytes, float trailingPct)
{
    m_cacheSize = bytes;
    m_trailingCachePct = trailingPct;
    m_cacheResized = true;
    if (canBePositioned()) {
        resizeCache();
        seek(false, playbackTime(), 0.0);
    }
}

void PlaybackManager::setFlip(bool horizontal, bool vertical)
{
    m_presenter.setFlip(horizontal, vertical);
    updateVideoFrame(true);
}

void PlaybackManager::setRotation(int degrees)
{
    m_presenter.setRotation(degrees);
    updateVideoFrame(true);
}

void PlaybackManager::applyVolume()
{
    m_mediaSource->volume = m_volume / fullVolumePercent;
}

void PlaybackManager::resizeCache()
{
    MediaSource& source = *m_mediaSource;
    const int64_t frameBytes = bytesPerPixel * source.videoWidth() * source.videoHeight();
    source.videoFrames.setCacheSize(m_cacheSize, frameBytes, m_trailingCachePct);
    // Too many for the new size, perhaps. There are none while a file is being opened.
    if (auto retired = source.videoFrames.takeRetired(); !retired.empty()) {
        releaseInBackground(std::make_shared<VideoFrameCache::FrameLists>(std::move(retired)));
    }
    m_comingTo = nothingComing;
    m_cacheResized = false;
}
