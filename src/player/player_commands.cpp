// The commands of playing, the range, bookmarks, speed and sound.
#include "bookmarkcommands.h"
#include "consolewindow.h"
#include "mediainfodialog.h"
#include "playbackcontrolwidget.h"
#include "player.h"
#include "rangetimelinewidget.h"
#include "settings.h"
#include "speedladder.h"
#include "transport.h"
#include "volumewidget.h"

#include <QAction>
#include <QInputDialog>
#include <QLabel>

namespace {
constexpr int volumeStep = 5; // percent
constexpr double halfSpeed = 0.5;
constexpr double quarterSpeed = 0.25;
constexpr int speedDecimals = 2;
constexpr double titleFont = 1.4; // what a title bar takes for a text, by the width in our font
constexpr int titleButtons = 33; // pixels more than in the dialog itself
}

void Player::playForward()
{
    m_transport->togglePlaying();
}

void Player::play()
{
    m_transport->play();
}

void Player::pause()
{
    m_transport->pause();
}

void Player::stop()
{
    m_transport->forgetResume();
    if (m_mediaInfo) {
        m_mediaInfo->hide();
    }
    m_manager->stop();
    if (m_console) {
        m_console->hide();
    }
    rememberGeometry();
    hide();
}

void Player::stepForward()
{
    m_transport->stepForward();
}

void Player::stepBackward()
{
    m_transport->stepBackward();
}

void Player::seekStart()
{
    m_transport->goTo(1);
}

void Player::seekEnd()
{
    m_transport->goTo(m_transport->lastFrame(), { .skipPlayWhenReady = true });
}

void Player::seekRangeStart()
{
    m_transport->goTo(m_transport->range().start);
}

void Player::seekRangeEnd()
{
    m_transport->goTo(m_transport->range().end, { .skipPlayWhenReady = true });
}

void Player::setCurrentFrame(int frame, bool audioScrub, bool clearCache, bool skipPlayWhenReady)
{
    m_transport->goTo(frame, { audioScrub, clearCache, skipPlayWhenReady });
}

void Player::setCurrentFrameRelative(int frame)
{
    m_transport->goToInRange(frame);
}

void Player::cacheFromCurrent()
{
    m_transport->goTo(m_transport->currentFrame(), { .clearCache = true });
}

void Player::setLoopEnabled(bool enable)
{
    settings().loop = enable;
}

void Player::setLoopOnStepEnabled(bool enable)
{
    settings().loopOnStep = enable;
}

void Player::setLoopOnScrubEnabled(bool enable)
{
    settings().loopOnScrub = enable;
}

void Player::setAutoplayEnabled(bool enable)
{
    settings().autoplay = enable;
}

void Player::setFrameRange(int startFrame, int endFrame)
{
    m_transport->setRange(startFrame, endFrame);
}

void Player::setRangeStart(int startFrame)
{
    m_transport->setRange(startFrame, m_transport->range().end);
}

void Player::setRangeEnd(int endFrame)
{
    m_transport->setRange(m_transport->range().start, endFrame);
}

void Player::setStartRangeToCurrent()
{
    setRangeStart(m_transport->currentFrame());
}

void Player::setEndRangeToCurrent()
{
    setRangeEnd(m_transport->currentFrame());
}

void Player::resetFrameRange()
{
    m_transport->setRange(1, m_transport->lastFrame());
}

void Player::addFrameBookmark()
{
    addFrameBookmark(m_transport->currentFrame());
}

void Player::addFrameBookmark(int frame)
{
    m_bookmarkCommands->addFrame(frame);
}

void Player::addRangeBookmark()
{
    addRangeBookmark(m_transport->range().start, m_transport->range().end);
}

void Player::addRangeBookmark(int startFrame, int endFrame)
{
    m_bookmarkCommands->addRange(startFrame, endFrame);
}

void Player::clearCurrentFrameBookmark()
{
    m_bookmarkCommands->removeCurrentFrame();
}

void Player::clearFrameBookmarksInRange()
{
    m_bookmarkCommands->removeFramesInRange();
}

void Player::clearAllFrameBookmarks()
{
    m_bookmarkCommands->clearFrames();
}

void Player::clearCurrentRangeBookmark()
{
    m_bookmarkCommands->removeCurrentRange();
}

void Player::clearAllRangeBookmarks()
{
    m_bookmarkCommands->clearRanges();
}

void Player::clearAllBookmarks()
{
    clearAllFrameBookmarks();
    clearAllRangeBookmarks();
}

void Player::cycleFrameBookmarks(bool backward)
{
    m_bookmarkCommands->cycleFrames(backward);
}

void Player::cycleRangeBookmarks(bool backward)
{
    m_bookmarkCommands->cycleRanges(backward);
}

void Player::setRangeBookmark(int startFrame, int endFrame)
{
    m_transport->setRangeBookmark(startFrame, endFrame);
}

void Player::setRangeBookmark()
{
    if (const auto* entry = qobject_cast<QAction*>(sender())) {
        const QStringList ends = entry->data().toStringList();
        setRangeBookmark(ends.value(0).toInt(), ends.value(1).toInt());
    }
}

void Player::setSpeedMultiplier(double multiplier)
{
    m_transport->setSpeed(multiplier);
}

void Player::setSpeedNormal()
{
    setSpeedMultiplier(1.0);
}

void Player::setSpeedHalf()
{
    setSpeedMultiplier(halfSpeed);
}

void Player::setSpeedQuarter()
{
    setSpeedMultiplier(quarterSpeed);
}

void Player::increaseSpeed()
{
    setSpeedMultiplier(speedladder::increased(m_manager->speedMultiplier()));
}

void Player::decreaseSpeed()
{
    setSpeedMultiplier(speedladder::decreased(m_manager->speedMultiplier()));
}

void Player::setCustomSpeed()
{
    if (isStopped()) {
        return;
    }
    QInputDialog dialog(this);
    dialog.setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    dialog.setWindowTitle(tr("Playback Speed"));
    dialog.setLabelText(tr("Speed Multiplier:"));
    dialog.setInputMode(QInputDialog::DoubleInput);
    dialog.setDoubleRange(speedladder::slowest, speedladder::fastest);
    dialog.setDoubleDecimals(speedDecimals);
    dialog.setDoubleValue(m_manager->speedMultiplier());
    if (auto* label = dialog.findChild<QLabel*>()) { // the dialog itself keeps to its layout's size
        const int title = dialog.fontMetrics().horizontalAdvance(dialog.windowTitle());
        label->setMinimumWidth(qRound(title * titleFont) + titleButtons);
    }
    if (dialog.exec() == QDialog::Accepted) {
        setSpeedMultiplier(dialog.doubleValue());
    }
}

void Player::setAudioScrubEnabled(bool enable)
{
    settings().audioScrub = enable;
}

void Player::setVolume(int volume)
{
    m_manager->setVolume(volume);
}

void Player::toggleMute()
{
    m_volume->toggleMute();
}

void Player::increaseVolume()
{
    incrementVolume(volumeStep);
}

void Player::decreaseVolume()
{
    incrementVolume(-volumeStep);
}

void Player::incrementVolume(int increment)
{
    if (m_volume->isMuted()) {
        m_volume->toggleMute();
    }
    m_volume->setVolume(m_volume->volume() + increment);
    m_manager->setVolume(m_volume->volume());
}
