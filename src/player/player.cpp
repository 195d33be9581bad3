#include "player.h"

#include "bookmarkcommands.h"
#include "commandmenus.h"
#include "consolewindow.h"
#include "logger.h"
#include "mediainfodialog.h"
#include "playbackcontrolwidget.h"
#include "rangemenu.h"
#include "rangetimelinewidget.h"
#include "settings.h"
#include "settingsstore.h"
#include "softwareviewer.h"
#include "tcpserver.h"
#include "timelinewidget.h"
#include "transport.h"
#include "volumewidget.h"
#include "windowplacement.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QIcon>
#include <QLayout>
#include <QMenuBar>

namespace {

constexpr int volumeWidth = 90; // pixels
constexpr int statsIntervalMs = 500;
constexpr int noFrame = -1;

} // namespace

Player::Player(const QString& filename, int rangeStart, int rangeEnd, QWidget* parent)
    : QWidget(parent)
    , m_manager(new PlaybackManager(this))
    , m_transport(new Transport(*m_manager, m_bookmarks, this))
    , m_bookmarkCommands(new BookmarkCommands(m_bookmarks, *m_transport, this))
    , m_remote(new TcpServer(this))
{
    setWindowIcon(QIcon(QStringLiteral(":/icons/application.png")));
    loadSettings();
    settings().openMediaInNewPlayers = false; // there is one window
    showTitle(noFrame);
    createWidgets();
    m_menus = std::make_unique<CommandMenus>(this);
    layout()->setMenuBar(&m_menus->bar());
    setAcceptDrops(true);
    setContextMenuPolicy(Qt::CustomContextMenu);
    connectManager();
    connectTransport();
    connectControls();
    connectRemote();
    applySettings();
    m_created = true;
    openAny(filename, rangeStart, rangeEnd);
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
    // Before its level is set: what every start says brings no window forward.
    m_console->info(tr("Vantor %1").arg(QCoreApplication::applicationVersion()));
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
    connect(this, &QWidget::customContextMenuRequested, this, &Player::contextMenu);
    connect(m_bookmarkCommands, &BookmarkCommands::rangesChanged, this,
        [this] { m_menus->rangeMenu().offer(m_bookmarks.ranges()); });
    for (TimelineWidget* timeline : { m_timeline, static_cast<TimelineWidget*>(m_rangeTimeline) }) {
        connect(m_bookmarkCommands, &BookmarkCommands::changed, timeline,
            qOverload<>(&QWidget::update));
    }
}

void Player::connectRemote()
{
    connect(m_remote, &TcpServer::fileChanged, this,
        qOverload<const QString&, int, int>(&Player::open));
    connect(m_remote, &TcpServer::bookmarksFileChanged, this,
        qOverload<const QString&, int, int>(&Player::openBookmarksFile));
    connect(m_remote, &TcpServer::frameChanged, m_transport, &Transport::goToWhenLoaded);
    connect(
        m_remote, &TcpServer::frameChangedRelative, m_transport, &Transport::goToInRangeWhenLoaded);
    connect(
        m_remote, &TcpServer::rangeStartChanged, m_transport, &Transport::setRangeStartWhenLoaded);
    connect(m_remote, &TcpServer::rangeEndChanged, m_transport, &Transport::setRangeEndWhenLoaded);
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
    rebuildRecentMenus();
    if (values.windowGeometry.isEmpty() || !restoreGeometry(values.windowGeometry)) {
        resize(windowplacement::firstSize);
    }
    setMenuBarVisible(values.showMenuBar);
    setBottomToolbarVisible(values.showBottomToolbar);
    m_manager->setVolume(values.muted ? 0 : values.volume);
    m_manager->setViewer(m_viewer);
    if (!m_remote->listen()) {
        m_console->warning(
            tr("Remote control is off: port %1 cannot be used. If another program has it, choose "
               "another port in the preferences and start again.")
                .arg(values.tcpPort));
    }
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
        if (m_mediaInfo) {
            m_mediaInfo->clear();
        }
    }
}

void Player::onStatusChange(PlaybackManager::Status status)
{
    keepRoomForTimelines(status == PlaybackManager::Loading);
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

// The first picture is shown before them; it shall not change its place when they come.
void Player::keepRoomForTimelines(bool keep)
{
    const auto keepFor = [keep](QWidget* timeline, bool isWanted) {
        QSizePolicy policy = timeline->sizePolicy();
        if (policy.retainSizeWhenHidden() != (keep && isWanted)) {
            policy.setRetainSizeWhenHidden(keep && isWanted);
            timeline->setSizePolicy(policy);
        }
    };
    keepFor(m_timeline, settings().showTimeline);
    keepFor(m_rangeTimeline, settings().showRangeTimeline);
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
    m_menus->rangeMenu().offer(m_bookmarks.ranges());
    updateStats();
    m_timeline->setVisible(settings().showTimeline);
    m_rangeTimeline->setVisible(settings().showRangeTimeline);
    if (settings().resizeToFit) {
        layout()->activate(); // the view's size now that the timelines are there
        windowplacement::fitToVideo(*this, m_viewer->size(), m_manager->shownVideoSize());
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

void Player::storeSettings()
{
    if (m_console) {
        settings().displayConsoleOnType = m_console->showOnLevel();
    }
    if (!saveSettings()) {
        reportError(tr("Failed to save settings in %1 (check that there is room and that the "
                       "folder can be written)")
                        .arg(QDir::home().filePath(QLatin1String(userDirectoryName))));
    }
}

void Player::showTitle(int frame)
{
    if (frame < 0) {
        setWindowTitle(QStringLiteral("Vantor")); // a name
        return;
    }
    QString file = QFileInfo(m_manager->mediaFilename()).fileName();
    file.replace(QLatin1String("[*]"), QLatin1String("[*][*]")); // else a sign for unsaved changes
    setWindowTitle(tr("%1 -- Frame %2").arg(file, QString::number(frame)));
}

void Player::showCachedRange()
{
    const int start = m_transport->frameAt(m_manager->cacheStartTime());
    const int end = m_transport->frameAt(m_manager->cacheEndTime());
    m_timeline->setCachedRange(start, end);
    m_rangeTimeline->setCachedRange(start, end);
}

// A window out of sight does not know its frame any more.
void Player::rememberGeometry()
{
    if (isVisible()) {
        settings().windowGeometry = saveGeometry();
    }
}

bool Player::isStopped() const
{
    return m_manager->state() == PlaybackManager::Stopped;
}

void Player::closeEvent(QCloseEvent* event)
{
    if (!m_console) {
        return; // closed already
    }
    if (!isStopped() && m_manager->status() != PlaybackManager::NoMedia) {
        m_closePending = true;
        m_manager->stop();
        event->ignore();
        return;
    }
    m_closePending = true; // nothing is opened from now on
    m_remote->close(); // a launch made from now on takes the port
    m_manager->stop(); // nor what is loading, or was to be opened next
    if (m_console->isVisible()) {
        m_console->close(); // which saves its geometry
    }
    settings().consoleGeometry = m_console->savedGeometry();
    m_console.reset();
    rememberGeometry();
    storeSettings();
    event->accept();
    Q_EMIT closed();
}
