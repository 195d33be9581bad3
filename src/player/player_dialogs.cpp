// The windows beside the player's own.
#include "aboutdialog.h"
#include "consolewindow.h"
#include "libraryversions.h"
#include "mediainfodialog.h"
#include "mediastats.h"
#include "player.h"
#include "preferencesdialog.h"
#include "recentlist.h"
#include "settings.h"
#include "softwareviewer.h"
#include "transport.h"

namespace {
constexpr int64_t bytesPerMegabyte = 1000000;
constexpr int64_t bytesPerSample = 2;
}

void Player::console()
{
    m_console->show();
    m_console->raise();
    m_console->activateWindow();
}

void Player::mediaInfo()
{
    if (!m_mediaInfo) {
        m_mediaInfo = new MediaInfoDialog(this);
    }
    updateStats();
    if (!m_mediaInfo->isHidden()) {
        m_mediaInfo->raise();
        m_mediaInfo->activateWindow();
    }
    m_mediaInfo->show();
}

void Player::updateStats()
{
    if (m_manager->state() == PlaybackManager::Paused) {
        showCachedRange(); // while playing, the play head does
    }
    if (!m_mediaInfo || isStopped()) {
        return;
    }
    MediaFigures figures;
    figures.path = m_manager->mediaFilename();
    figures.lastFrame = m_transport->lastFrame();
    figures.frameRate = m_manager->frameRate();
    figures.currentTime = m_manager->playbackTime();
    figures.duration = m_manager->duration();
    figures.videoSize = m_manager->shownVideoSize();
    figures.shownSize = { m_viewer->imageWidth(), m_viewer->imageHeight() };
    figures.videoCacheBytes = m_manager->videoCacheBytes();
    figures.cachedFrames = m_manager->cachedFrameCount();
    figures.audioCacheBytes = m_manager->audioBufferSamples() * bytesPerSample;
    figures.cachedStart = m_manager->cacheStartTime();
    figures.cachedEnd = m_manager->cacheEndTime();
    m_mediaInfo->setStats(mediaStats(figures));
}

void Player::preferences()
{
    PreferencesDialog dialog(this);
    const int shownCacheSize = dialog.cacheSize();
    const float shownTrailingPct = dialog.cacheTrailingPct();
    dialog.setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    Settings& values = settings();
    // Not with the settings: the form rounds what was written there by hand.
    if (dialog.cacheSize() != shownCacheSize || dialog.cacheTrailingPct() != shownTrailingPct) {
        values.cacheSize = dialog.cacheSize();
        values.cacheTrailingPct = dialog.cacheTrailingPct();
        m_manager->setCacheSize(values.cacheSize * bytesPerMegabyte, values.cacheTrailingPct);
    }
    values.numRecentFiles = dialog.numRecentFiles();
    values.numRecentBookmarkFiles = dialog.numRecentBookmarkFiles();
    recentlist::trim(values.recentFiles, values.numRecentFiles);
    recentlist::trim(values.recentBookmarkFiles, values.numRecentBookmarkFiles);
    rebuildRecentMenus();
    values.openMediaInNewPlayers = dialog.openMediaInNewPlayers();
    values.resizeToFit = dialog.resizeToFit();
    values.continuePlayingAfterSeek = dialog.continuePlayingAfterSeek();
    values.endlessMouseScrub = dialog.endlessMouseScrub();
    values.tcpPort = dialog.tcpPort();
    storeSettings();
}

void Player::about()
{
    AboutDialog(ffmpegVersion(), portAudioVersion(), this).exec();
}
