#include "player.h"

#include "consolewindow.h"
#include "filechoosers.h"
#include "launchrequest.h"
#include "logger.h"
#include "mediacopy.h"
#include "playbackcontrolwidget.h"
#include "rangetimelinewidget.h"
#include "recentlist.h"
#include "recentmenu.h"
#include "settings.h"
#include "settingsstore.h"
#include "softwareviewer.h"
#include "timelinewidget.h"
#include "transport.h"
#include "volumewidget.h"
#include "windowplacement.h"

#include <QAction>
#include <QCloseEvent>
#include <QFileInfo>
#include <QIcon>
#include <QLayout>
#include <QMenu>
#include <QProgressDialog>
#include <QShortcut>

namespace {

constexpr int volumeWidth = 90; // pixels
constexpr int statsIntervalMs = 500;
constexpr int64_t bytesPerMegabyte = 1000000;
constexpr int noFrame = -1;

} // namespace

Player::Player(const QString& filename, int rangeStart, int rangeEnd, QWidget* parent)
    : QWidget(parent)
    , m_manager(new PlaybackManager(this))
    , m_transport(new Transport(*m_manager, m_bookmarks, this))
    , m_recentMedia(new QMenu(tr("Recent Media"), this))
{
    setWindowIcon(QIcon(QStringLiteral(":/icons/application.png")));
    loadSettings();
    settings().openMediaInNewPlayers = false; // there is one window
    showTitle(noFrame);
    createWidgets();
    connectManager();
    connectTransport();
    connectControls();
    createShortcuts();
    applySettings();
    open(filename, rangeStart, rangeEnd);
}

Player::~Player()
{
    m_manager->disconnect(this); // it goes after this window, and tells so
}

void Player::createWidgets()
{
    m_timeline = new TimelineWidget(this);
    m_rangeTimeline = new RangeTimelineWidget(this);
    m_viewer = new SoftwareViewer(this);
    m_viewer->setAccessibleName(tr("Video"));
    m_controls = new PlaybackControlWidget(this);
    m_volume = new VolumeWidget(this);
    m_volume->setFixedWidth(volumeWidth);
    for (TimelineWidget* timeline : { m_timeline, static_cast<TimelineWidget*>(m_rangeTimeline) }) {
        timeline->setBookmarks(&m_bookmarks);
        timeline->installEventFilter(this);
        timeline->hide(); // until media is loaded
    }
    m_layout = std::make_unique<PlayerLayout>(
        this, PlayerWidgets{ m_timeline, m_rangeTimeline, m_viewer, m_controls, m_volume });
    m_controls->setEnabled(false);
    m_console = std::make_unique<ConsoleWindow>();
}

void Player::connectManager()
{
    connect(m_manager, &PlaybackManager::playbackTimeChanged, this, &Player::setPlaybackTime);
    connect(m_manager, &PlaybackManager::stateChanged, this, &Player::onStateChange);
    connect(m_manager, &PlaybackManager::statusChanged, this, &Player::onStatusChange);
    connect(m_manager, &PlaybackManager::error, this, &Player::onError);
    m_statsTimer.setInterval(statsIntervalMs);
    connect(&m_statsTimer, &QTimer::timeout, this, &Player::updateStats);
}

void Player::connectTransport()
{
    connect(m_transport, &Transport::frameShown, this, &Player::showTitle);
    connect(m_transport, &Transport::rateChanged, m_timeline, &TimelineWidget::setPlaybackRate);
    connect(m_transport, &Transport::playHeadMoved, this, &Player::showCachedRange);
    connect(m_transport, &Transport::repaintNeeded, this, [this] { repaint(); });
    for (TimelineWidget* timeline : { m_timeline, static_cast<TimelineWidget*>(m_rangeTimeline) }) {
        connect(m_transport, &Transport::frameShown, timeline, &TimelineWidget::setCurrentFrame);
        connect(
            m_transport, &Transport::frameRequested, timeline, &TimelineWidget::setCurrentFrame);
        connect(m_transport, &Transport::rangeChanged, timeline, &TimelineWidget::setRange);
        connect(m_transport, &Transport::speedChanged, timeline, &TimelineWidget::setSpeed);
        connect(timeline, &TimelineWidget::frameChangeRequest, this,
            qOverload<int, bool>(&Player::setCurrentFrame));
        connect(timeline, &TimelineWidget::rangeChangeRequest, this, &Player::setFrameRange);
    }
}

void Player::connectControls()
{
    connect(m_timeline, &TimelineWidget::positionChangeRequest, this, &Player::setTimelineAtTop);
    connect(m_rangeTimeline, &TimelineWidget::positionChangeRequest, this,
        &Player::setRangeTimelineAtTop);
    connect(m_controls, &PlaybackControlWidget::playForwardClicked, this, &Player::playForward);
    connect(m_controls, &PlaybackControlWidget::stepForwardClicked, this, &Player::stepForward);
    connect(m_controls, &PlaybackControlWidget::stepBackwardClicked, this, &Player::stepBackward);
    connect(m_controls, &PlaybackControlWidget::seekStartClicked, this, &Player::seekRangeStart);
    connect(m_controls, &PlaybackControlWidget::seekEndClicked, this, &Player::seekRangeEnd);
    connect(m_volume, &VolumeWidget::volumeChanged, this, &Player::setVolume);
}

void Player::createShortcuts()
{
    struct Shortcut {
        const char* key;
        void (Player::*slot)();
        bool repeats = true;
    };
    static const Shortcut shortcuts[] = {
        { "L", &Player::play },
        { "K", &Player::pause },
        { "I", &Player::setStartRangeToCurrent },
        { "O", &Player::setEndRangeToCurrent },
        { "=", &Player::increaseSpeed },
        { "Right", &Player::stepForward },
        { "Left", &Player::stepBackward },
        { "Space", &Player::playForward, false },
        { "0", &Player::setSpeedNormal },
        { "9", &Player::setSpeedHalf },
        { "8", &Player::setSpeedQuarter },
        { "+", &Player::increaseSpeed },
        { "-", &Player::decreaseSpeed },
        { ",", &Player::setStartRangeToCurrent },
        { ".", &Player::setEndRangeToCurrent },
        { "C", &Player::cacheFromCurrent },
        { "M", &Player::toggleMute, false },
        { "Home", &Player::seekStart },
        { "End", &Player::seekEnd },
        { "Ctrl+Left", &Player::seekRangeStart },
        { "Ctrl+Right", &Player::seekRangeEnd },
        { "Ctrl+P", &Player::resetFrameRange },
        { "Ctrl+0", &Player::setCustomSpeed },
        { "Ctrl+O", &Player::open },
        { "Ctrl+D", &Player::copyCurrentMedia },
        { "Ctrl+W", &Player::stop },
        { "F10", &Player::console },
    };
    for (const Shortcut& row : shortcuts) {
        auto* shortcut = new QShortcut(QKeySequence(QString::fromLatin1(row.key)), this);
        shortcut->setAutoRepeat(row.repeats);
        connect(shortcut, &QShortcut::activated, this, row.slot);
    }
}

void Player::applySettings()
{
    const Settings& values = settings();
    m_timeline->setDisplayType(DISPLAY_TYPE(values.timeline.displayType));
    m_rangeTimeline->setDisplayType(DISPLAY_TYPE(values.rangeTimeline.displayType));
    m_layout->setTimelineAtTop(values.timeline.positionAtTop);
    m_layout->setRangeTimelineAtTop(values.rangeTimeline.positionAtTop);
    m_console->setSavedGeometry(values.consoleGeometry);
    m_console->setShowOnLevel(values.displayConsoleOnType);
    rebuildRecentMedia();
    if (values.windowGeometry.isEmpty() || !restoreGeometry(values.windowGeometry)) {
        resize(windowplacement::firstSize);
    }
    setBottomToolbarVisible(values.showBottomToolbar);
    m_manager->setVolume(values.muted ? 0 : values.volume);
    m_manager->setViewer(m_viewer);
}

void Player::open()
{
    open(filechoosers::mediaToOpen(this, settings().recentFiles), -1, -1);
}

void Player::open(const QString& filename, int rangeStart, int rangeEnd)
{
    if (filename.isEmpty() || m_closePending) {
        return;
    }
    show();
    const QFileInfo file(filename);
    const QString path = file.absoluteFilePath();
    if (!file.exists()) {
        reportError(tr("File not found: %1").arg(path));
        return;
    }
    m_bookmarks.clear();
    m_bookmarksFile.clear();
    m_bookmarks.mediaPath = path;
    m_transport->expectMedia(rangeStart, rangeEnd);
    if (m_manager->setMedia(
            path, settings().cacheSize * bytesPerMegabyte, settings().cacheTrailingPct)) {
        recentlist::add(settings().recentFiles, path, settings().numRecentFiles);
        rebuildRecentMedia();
    }
}

void Player::openRecent()
{
    if (const auto* entry = qobject_cast<QAction*>(sender())) {
        open(entry->data().toString(), -1, -1);
    }
}

void Player::rebuildRecentMedia()
{
    const auto entries =
        recentmenu::fill(*m_recentMedia, settings().recentFiles, settings().numRecentFiles);
    for (const QAction* entry : entries) {
        connect(entry, &QAction::triggered, this, &Player::openRecent);
    }
}

void Player::copyCurrentMedia()
{
    const QString media = m_manager->mediaFilename();
    if (isStopped() || !QFileInfo::exists(media)) {
        return;
    }
    const QString destination = filechoosers::copyDestination(this, media);
    if (destination.isEmpty()) {
        return;
    }
    auto* copy = new MediaCopy(media, destination, this);
    auto* progress = new QProgressDialog(
        tr("Copying %1").arg(QFileInfo(media).fileName()), tr("Cancel"), 0, 100, this);
    progress->setWindowTitle(tr("Copy Current Media"));
    progress->setWindowModality(Qt::WindowModal);
    connect(copy, &MediaCopy::progressed, progress, &QProgressDialog::setValue);
    connect(progress, &QProgressDialog::canceled, copy, &MediaCopy::cancel);
    connect(copy, &MediaCopy::finished, progress, &QObject::deleteLater);
    connect(copy, &MediaCopy::finished, this, [this, copy] { finishCopy(*copy); });
    copy->start();
}

void Player::finishCopy(MediaCopy& copy)
{
    if (copy.result() == MediaCopy::Result::OverwriteFailed) {
        reportError(tr("Failed to overwrite file: %1").arg(copy.destination()));
    } else if (copy.result() == MediaCopy::Result::CopyFailed) {
        reportError(tr("Failed to copy file to %1").arg(copy.destination()));
    }
    copy.deleteLater();
}

void Player::receiveMessageFromOtherInstance(const QStringList& args)
{
    if (m_closePending) {
        return;
    }
    if (isMinimized()) {
        showNormal();
    }
    show();
    raise();
    activateWindow();
    const LaunchRequest request = LaunchRequest::fromMessage(args);
    open(request.file, request.rangeStart, request.rangeEnd);
}

void Player::setPlaybackTime(double playbackTime)
{
    m_transport->followPlayHead(playbackTime);
}

void Player::onStateChange(PlaybackManager::State state)
{
    m_controls->setEnabled(state != PlaybackManager::Stopped);
    m_controls->setPlaying(state == PlaybackManager::Playing);
    if (state == PlaybackManager::Playing) {
        m_transport->onPlaying();
        return;
    }
    m_timeline->setPlaybackRate(0.0);
    if (state == PlaybackManager::Stopped) {
        m_statsTimer.stop();
        showTitle(noFrame);
        m_timeline->hide();
        m_rangeTimeline->hide();
    }
}

void Player::onStatusChange(PlaybackManager::Status status)
{
    switch (status) {
    case PlaybackManager::NoMedia:
        if (m_closePending) {
            close();
        }
        return;
    case PlaybackManager::Loaded:
        return onLoaded();
    case PlaybackManager::Ready:
        updateStats();
        return m_transport->onReady();
    case PlaybackManager::EndOfMedia:
        return m_transport->onEndOfMedia();
    default:
        return;
    }
}

void Player::onLoaded()
{
    showTitle(1);
    m_transport->onLoaded();
    for (TimelineWidget* timeline : { m_timeline, static_cast<TimelineWidget*>(m_rangeTimeline) }) {
        timeline->setFrameRate(m_manager->frameRate());
        timeline->setCurrentFrame(1);
        timeline->setFrameCount(m_transport->lastFrame());
    }
    updateStats();
    m_timeline->setVisible(settings().showTimeline);
    m_rangeTimeline->setVisible(settings().showRangeTimeline);
    if (settings().resizeToFit) {
        layout()->activate(); // the view's size now that the timelines are there
        windowplacement::fitToVideo(
            *this, m_viewer->size(), { m_manager->videoWidth(), m_manager->videoHeight() });
    }
    m_statsTimer.start();
}

void Player::onError(PlaybackManager::Error, const QString& errorStr)
{
    reportError(errorStr);
}

void Player::reportError(const QString& text)
{
    if (m_console) {
        m_console->error(text);
    } else {
        Logger::displayError(text);
    }
}

void Player::showTitle(int frame)
{
    setWindowTitle(frame < 0
            ? QStringLiteral("Vantor")
            : QFileInfo(m_manager->mediaFilename()).fileName() + tr(" -- Frame %1").arg(frame));
}

void Player::showCachedRange()
{
    const int start = m_transport->frameAt(m_manager->cacheStartTime());
    const int end = m_transport->frameAt(m_manager->cacheEndTime());
    m_timeline->setCachedRange(start, end);
    m_rangeTimeline->setCachedRange(start, end);
}

bool Player::isStopped() const
{
    return m_manager->state() == PlaybackManager::Stopped;
}

// What a scrub interrupted is not resumed by a later one.
bool Player::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonPress) {
        m_transport->forgetResume();
    }
    return QWidget::eventFilter(watched, event);
}

void Player::mousePressEvent(QMouseEvent* event)
{
    m_transport->forgetResume();
    QWidget::mousePressEvent(event);
}

void Player::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        m_transport->endScrub();
    }
    event->accept();
}

void Player::closeEvent(QCloseEvent* event)
{
    if (!isStopped() && m_manager->status() != PlaybackManager::NoMedia) {
        m_closePending = true;
        m_manager->stop();
        event->ignore();
        return;
    }
    m_closePending = true; // nothing is opened from now on
    m_manager->stop(); // nor what is loading, or was to be opened next
    if (m_console) {
        m_console->close();
        settings().consoleGeometry = m_console->savedGeometry();
        settings().displayConsoleOnType = m_console->showOnLevel();
        m_console.reset();
    }
    settings().windowGeometry = saveGeometry();
    saveSettings();
    event->accept();
    Q_EMIT closed();
}
