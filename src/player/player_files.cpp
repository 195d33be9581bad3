// Opening, saving and copying files.
#include "acceptedmedia.h"
#include "bookmarksfile.h"
#include "commandmenus.h"
#include "filechoosers.h"
#include "launchrequest.h"
#include "mediacopy.h"
#include "player.h"
#include "rangetimelinewidget.h"
#include "recentlist.h"
#include "recentmenu.h"
#include "settings.h"
#include "settingsstore.h"
#include "timelinewidget.h"
#include "transport.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QProgressDialog>

namespace {
constexpr int64_t bytesPerMegabyte = 1000000;
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
    if (isRefusedWhileLoading(path)) {
        return;
    }
    m_bookmarks.clear();
    m_bookmarksFile.clear();
    m_bookmarks.mediaPath = path;
    if (loadMedia(path, rangeStart, rangeEnd)) {
        recentlist::add(settings().recentFiles, path, settings().numRecentFiles);
        rebuildRecentMenus();
    }
}

bool Player::loadMedia(const QString& path, int rangeStart, int rangeEnd)
{
    m_transport->expectMedia(rangeStart, rangeEnd);
    return setMedia(path);
}

bool Player::setMedia(const QString& path)
{
    return m_manager->setMedia(
        path, settings().cacheSize * bytesPerMegabyte, settings().cacheTrailingPct);
}

// Refusing a name leaves a file that is on its way alone: its range and bookmarks stay, too.
bool Player::isRefusedWhileLoading(const QString& path)
{
    const PlaybackManager::Status status = m_manager->status();
    const bool isOnItsWay =
        isStopped() && (status == PlaybackManager::Loading || status == PlaybackManager::Unloading);
    return isOnItsWay && !isAcceptedMedia(QFileInfo(path).suffix()) && !setMedia(path);
}

// By the name's end as it is written: "BMK" is no bookmarks file.
void Player::openAny(const QString& path, int rangeStart, int rangeEnd)
{
    if (path.endsWith(QLatin1Char('.') + QLatin1String(bookmarksExtension))) {
        openBookmarksFile(path, rangeStart, rangeEnd);
    } else {
        open(path, rangeStart, rangeEnd);
    }
}

void Player::openRecent()
{
    if (const auto* entry = qobject_cast<QAction*>(sender())) {
        open(entry->data().toString(), -1, -1);
    }
}

void Player::rebuildRecentMenus()
{
    const auto media = recentmenu::fill(
        m_menus->menu(Menu::RecentMedia), settings().recentFiles, settings().numRecentFiles);
    for (const QAction* entry : media) {
        connect(entry, &QAction::triggered, this, &Player::openRecent);
    }
    const auto bookmarks = recentmenu::fill(m_menus->menu(Menu::RecentBookmarks),
        settings().recentBookmarkFiles, settings().numRecentBookmarkFiles);
    for (const QAction* entry : bookmarks) {
        connect(entry, &QAction::triggered, this, &Player::openRecentBookmarksFile);
    }
}

void Player::openBookmarksFile()
{
    openBookmarksFile(filechoosers::bookmarksToOpen(this, settings().recentBookmarkFiles), -1, -1);
}

void Player::openBookmarksFile(const QString& filename, int rangeStart, int rangeEnd)
{
    if (filename.isEmpty() || m_closePending) {
        return;
    }
    show();
    const QFileInfo file(filename);
    if (!file.isFile()) {
        reportError(tr("Bookmarks file not found: %1").arg(file.absoluteFilePath()));
        return;
    }
    Bookmarks found;
    bookmarksfile::read(found, file.absoluteFilePath());
    const QString media = found.mediaPath;
    // Files that were moved together still belong together.
    const QString beside = file.absoluteDir().filePath(QFileInfo(media).fileName());
    const QString chosen = QFileInfo::exists(media) ? media : beside;
    if (!media.isEmpty() && QFileInfo::exists(chosen) && isRefusedWhileLoading(chosen)) {
        return;
    }
    m_bookmarks = found;
    m_bookmarksFile = file.absoluteFilePath();
    m_timeline->update();
    m_rangeTimeline->update();
    if (media.isEmpty()) {
        reportError(tr("Media path not set in bookmarks file."));
        return;
    }
    if (!QFileInfo::exists(chosen)) {
        reportError(tr("Media file not found: %1").arg(QFileInfo(beside).absoluteFilePath()));
        return;
    }
    rememberBookmarksFile();
    loadMedia(chosen, rangeStart, rangeEnd);
}

void Player::openRecentBookmarksFile()
{
    if (const auto* entry = qobject_cast<QAction*>(sender())) {
        openBookmarksFile(entry->data().toString(), -1, -1);
    }
}

void Player::rememberBookmarksFile()
{
    recentlist::add(
        settings().recentBookmarkFiles, m_bookmarksFile, settings().numRecentBookmarkFiles);
    rebuildRecentMenus();
}

void Player::saveBookmarksFile()
{
    if (isStopped()) {
        return;
    }
    if (m_bookmarksFile.isEmpty()) {
        saveBookmarksFileAs(); // which comes back here once a file is chosen
        return;
    }
    if (!bookmarksfile::write(m_bookmarks, m_bookmarksFile)) {
        reportError(tr("Failed to save bookmarks file: %1 (make room there and save again, or "
                       "choose another place with Save Bookmarks As)")
                        .arg(m_bookmarksFile));
        return;
    }
    rememberBookmarksFile();
}

void Player::saveBookmarksFileAs()
{
    if (isStopped()) {
        return;
    }
    const QString media = m_manager->mediaFilename();
    const QString file = filechoosers::bookmarksDestination(this);
    // A later launch or the remote control may have opened another media meanwhile.
    if (!file.isEmpty() && m_manager->mediaFilename() == media) {
        m_bookmarksFile = file;
        saveBookmarksFile();
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
    openAny(request.file, request.rangeStart, request.rangeEnd);
}
