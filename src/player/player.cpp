#include "player.h"

#include "logger.h"
#include "playbackcontrolwidget.h"
#include "settings.h"
#include "settingsstore.h"
#include "softwareviewer.h"
#include "volumewidget.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QIcon>
#include <QVBoxLayout>

namespace {
constexpr int volumeWidth = 90; // pixels
constexpr int rowMargin = 6; // pixels
constexpr QSize firstSize{ 720, 480 }; // until a video tells its own
constexpr int64_t bytesPerMegabyte = 1000000;
}

Player::Player(const QString& filename, int rangeStart, int rangeEnd, QWidget* parent)
    : QWidget(parent)
    , m_manager(new PlaybackManager(this))
{
    setWindowIcon(QIcon(QStringLiteral(":/icons/application.png")));
    loadSettings();
    m_viewer = new SoftwareViewer(this);
    m_controls = new PlaybackControlWidget(this);
    m_volume = new VolumeWidget(this);
    createLayout();
    connectManager();
    connectControls();
    showTitle(-1);
    m_controls->setEnabled(false);
    m_manager->setVolume(settings().muted ? 0 : settings().volume);
    m_manager->setViewer(m_viewer);
    resize(firstSize);
    open(filename, rangeStart, rangeEnd);
}

Player::~Player()
{
    m_manager->disconnect(this); // it goes after this window, and tells so
}

void Player::createLayout()
{
    m_volume->setFixedWidth(volumeWidth);
    auto* row = new QHBoxLayout;
    row->setContentsMargins(rowMargin, 0, rowMargin, 0);
    row->addSpacing(volumeWidth); // keeps the buttons in the middle
    row->addStretch();
    row->addWidget(m_controls);
    row->addStretch();
    row->addWidget(m_volume);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_viewer, 1);
    column->addLayout(row);
}

void Player::connectManager()
{
    connect(m_manager, &PlaybackManager::playbackTimeChanged, this, &Player::setPlaybackTime);
    connect(m_manager, &PlaybackManager::stateChanged, this, &Player::onStateChange);
    connect(m_manager, &PlaybackManager::statusChanged, this, &Player::onStatusChange);
    connect(m_manager, &PlaybackManager::error, this, &Player::onError);
}

void Player::connectControls()
{
    connect(m_controls, &PlaybackControlWidget::playForwardClicked, this, &Player::playForward);
    connect(m_controls, &PlaybackControlWidget::stepForwardClicked, this, &Player::stepForward);
    connect(m_controls, &PlaybackControlWidget::stepBackwardClicked, this, &Player::stepBackward);
    connect(m_controls, &PlaybackControlWidget::seekStartClicked, this, &Player::seekRangeStart);
    connect(m_controls, &PlaybackControlWidget::seekEndClicked, this, &Player::seekRangeEnd);
    connect(m_volume, &VolumeWidget::volumeChanged, this, &Player::setVolume);
}

void Player::open(const QString& filename, int rangeStart, int rangeEnd)
{
    if (filename.isEmpty()) {
        return;
    }
    const QFileInfo file(filename);
    if (!file.exists()) {
        Logger::displayError(tr("File not found: %1").arg(file.absoluteFilePath()));
        return;
    }
    m_pendingRangeStart = rangeStart;
    m_pendingRangeEnd = rangeEnd;
    m_manager->setMedia(file.absoluteFilePath(), settings().cacheSize * bytesPerMegabyte,
        settings().cacheTrailingPct);
}

void Player::playForward()
{
    if (m_manager->state() == PlaybackManager::Playing) {
        m_manager->pause();
        return;
    }
    if (m_manager->state() != PlaybackManager::Paused) {
        return;
    }
    if (currentFrame() >= m_range.end) {
        setCurrentFrame(m_range.start);
        m_playWhenReady = m_manager->status() != PlaybackManager::Ready;
    }
    m_manager->play(-1.0);
}

void Player::stepForward()
{
    setCurrentFrame(currentFrame() + 1, true);
}

void Player::stepBackward()
{
    setCurrentFrame(currentFrame() - 1, true);
}

void Player::seekRangeStart()
{
    setCurrentFrame(m_range.start);
}

void Player::seekRangeEnd()
{
    setCurrentFrame(m_range.end);
}

void Player::setCurrentFrame(int frame, bool audioScrub)
{
    m_playWhenReady = false;
    const int target = qBound(1, frame, lastFrame());
    if (target == currentFrame()) {
        return;
    }
    const double scrubSeconds =
        settings().audioScrub && audioScrub ? m_manager->frameDuration() : 0.0;
    m_manager->seek(false, m_clock.timeOf(target), scrubSeconds);
}

void Player::setVolume(int volume)
{
    m_manager->setVolume(volume);
}

void Player::setPlaybackTime(double playbackTime)
{
    const int frame = m_clock.frameAt(playbackTime);
    if (frame != m_lastShownFrame) {
        m_lastShownFrame = frame;
        showTitle(frame);
    }
    if (m_manager->state() == PlaybackManager::Playing && frame >= m_range.end) {
        m_manager->pause();
    }
}

void Player::onStateChange(PlaybackManager::State state)
{
    m_controls->setEnabled(state != PlaybackManager::Stopped);
    m_controls->setPlaying(state == PlaybackManager::Playing);
    if (state == PlaybackManager::Stopped) {
        showTitle(-1);
    }
}

void Player::onStatusChange(PlaybackManager::Status status)
{
    if (status == PlaybackManager::Loaded) {
        onLoaded();
    } else if (status == PlaybackManager::Ready) {
        onReady();
    }
}

void Player::onLoaded()
{
    m_clock = FrameClock(m_manager->frameRate(), m_manager->frameDuration());
    m_range = { 1, lastFrame() };
    m_lastShownFrame = -1;
    m_playWhenReady = settings().autoplay;
    m_freshLoad = true;
    showTitle(1);
    if (settings().resizeToFit) {
        fitToVideo();
    }
}

void Player::onReady()
{
    if (m_freshLoad && (m_pendingRangeStart >= 0 || m_pendingRangeEnd >= 0)) {
        m_range = FrameRange::clamped(m_pendingRangeStart, m_pendingRangeEnd, lastFrame());
        setCurrentFrame(m_range.start);
        m_playWhenReady = settings().autoplay;
    }
    m_freshLoad = false;
    m_pendingRangeStart = -1;
    m_pendingRangeEnd = -1;
    if (m_playWhenReady && m_manager->status() == PlaybackManager::Ready) {
        m_playWhenReady = false;
        if (m_manager->state() != PlaybackManager::Playing) {
            playForward();
        }
    }
}

void Player::onError(PlaybackManager::Error, const QString& errorStr)
{
    Logger::displayError(errorStr);
}

void Player::showTitle(int frame)
{
    setWindowTitle(frame < 0
            ? QStringLiteral("Vantor")
            : QFileInfo(m_manager->mediaFilename()).fileName() + tr(" -- Frame %1").arg(frame));
}

// The top-left corner stays; the view shows the video pixel by pixel.
void Player::fitToVideo()
{
    const QSize video(m_manager->videoWidth(), m_manager->videoHeight());
    if (!video.isEmpty()) {
        resize(size() + video - m_viewer->size());
    }
}

int Player::currentFrame() const
{
    return m_clock.frameAt(m_manager->playbackTime());
}

int Player::lastFrame() const
{
    return m_clock.frameAt(m_manager->duration());
}
