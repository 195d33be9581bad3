// The picture, the window round it and what the mouse does there.
#include "commandmenus.h"
#include "playbackcontrolwidget.h"
#include "player.h"
#include "rangemenu.h"
#include "rangetimelinewidget.h"
#include "settings.h"
#include "settingsstore.h"
#include "softwareviewer.h"
#include "timelinewidget.h"
#include "transport.h"
#include "volumewidget.h"
#include "windowplacement.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QLayout>
#include <QMenuBar>
#include <QMimeData>
#include <QMouseEvent>
#include <QScreen>
#include <QSpinBox>
#include <QUrl>

namespace {

constexpr int clockwise = 90; // degrees
constexpr int counterClockwise = 270;
constexpr float halfSize = 0.5F;
constexpr float quarterSize = 0.25F;
constexpr float doubleSize = 2.0F;
const auto fileList = QStringLiteral("text/uri-list");

} // namespace

void Player::setCommandChecked(const char* id, bool checked)
{
    m_menus->action(id).setChecked(checked);
}

bool Player::isCommandChecked(const char* id) const
{
    return m_menus->action(id).isChecked();
}

void Player::flip()
{
    m_manager->setFlip(isCommandChecked("flipHorizontal"), isCommandChecked("flipVertical"));
}

void Player::flipHorizontal()
{
    m_menus->action("flipHorizontal").toggle();
    flip();
}

void Player::flipVertical()
{
    m_menus->action("flipVertical").toggle();
    flip();
}

void Player::rotateImageCW()
{
    setCommandChecked("rotateCCW", false);
    m_manager->setRotation(isCommandChecked("rotateCW") ? clockwise : 0);
}

void Player::rotateImageCCW()
{
    setCommandChecked("rotateCW", false);
    m_manager->setRotation(isCommandChecked("rotateCCW") ? counterClockwise : 0);
}

void Player::takeSnapshot()
{
    const QSize size(m_viewer->imageWidth(), m_viewer->imageHeight());
    if (!isStopped() && !size.isEmpty()) {
        QGuiApplication::clipboard()->setPixmap(m_viewer->scaledTo(size));
    }
}

void Player::resizeToFit(float scale)
{
    layout()->activate(); // the view's size as it is now
    resize(windowplacement::sizeForVideo(
        size(), m_viewer->size(), m_manager->shownVideoSize(), scale));
}

void Player::resizeToOriginal()
{
    resizeVideo(1.0F);
}

void Player::resizeToHalf()
{
    resizeVideo(halfSize);
}

void Player::resizeToQuarter()
{
    resizeVideo(quarterSize);
}

void Player::resizeToDouble()
{
    resizeVideo(doubleSize);
}

void Player::resizeVideo(float scale)
{
    if (!isStopped()) {
        resizeToFit(scale);
    }
}

// The other flag is not cleared but inverted, on purpose: enabling it for the first time sets both,
// disabling it then leaves only the one for the bottom.
void Player::setAlwaysOnTopEnabled(bool enable)
{
    const bool wasVisible = isVisible();
    const Qt::WindowFlags set = enable ? Qt::WindowStaysOnTopHint : Qt::WindowStaysOnBottomHint;
    const Qt::WindowFlags inverted =
        enable ? Qt::WindowStaysOnBottomHint : Qt::WindowStaysOnTopHint;
    setWindowFlags((windowFlags() | set) ^ inverted);
    if (wasVisible) {
        show(); // changing the flags has hidden it
    }
    settings().alwaysOnTop = enable;
    if (m_created) {
        storeSettings();
    }
}

void Player::setTimelineVisible(bool vis)
{
    settings().showTimeline = vis;
    if (!isStopped()) {
        m_timeline->setVisible(vis);
    }
}

void Player::setRangeTimelineVisible(bool vis)
{
    settings().showRangeTimeline = vis;
    if (!isStopped()) {
        m_rangeTimeline->setVisible(vis);
    }
}

void Player::setBottomToolbarVisible(bool vis)
{
    m_controls->setVisible(vis);
    m_volume->setVisible(vis);
    settings().showBottomToolbar = vis;
}

void Player::setMenuBarVisible(bool vis)
{
    m_menus->setBarVisible(vis);
    setMinimumWidth(vis ? m_menus->bar().sizeHint().width() : 0); // every menu is in sight
    settings().showMenuBar = vis;
}

// Exactly one of them is on show afterwards; the commands' checks lead there.
void Player::swapTimelines()
{
    const bool rangeWasVisible = m_rangeTimeline->isVisible();
    setCommandChecked("timeline", rangeWasVisible);
    setCommandChecked("rangeTimeline", !rangeWasVisible);
}

void Player::setTimelineAtTop(bool top)
{
    m_layout->setTimelineAtTop(top);
    settings().timeline.positionAtTop = top;
}

void Player::setRangeTimelineAtTop(bool top)
{
    m_layout->setRangeTimelineAtTop(top);
    settings().rangeTimeline.positionAtTop = top;
}

void Player::contextMenu(QPoint pos)
{
    RangeMenu menu(this);
    if (QGuiApplication::keyboardModifiers() != Qt::ControlModifier) {
        return; // an empty menu shows nothing
    }
    menu.offer(m_bookmarks.ranges());
    menu.exec(mapToGlobal(pos));
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
    if (auto* spinBox = qobject_cast<QSpinBox*>(QApplication::focusWidget())) {
        spinBox->clearFocus();
    }
    if (event->button() == Qt::LeftButton && isOverVideo(*event)) {
        m_scrubber.begin(qRound(event->screenPos().x()));
    }
}

bool Player::isOverVideo(const QMouseEvent& event) const
{
    return m_viewer->geometry().contains(event.localPos().toPoint());
}

void Player::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_scrubber.isActive()) {
        return;
    }
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    const int pixels = MouseScrubber::pixelsPerFrame(
        modifiers.testFlag(Qt::ShiftModifier), modifiers.testFlag(Qt::ControlModifier));
    const QPoint pointer = event->screenPos().toPoint();
    const int desktopWidth = QGuiApplication::primaryScreen()->virtualGeometry().width();
    const MouseScrubber::Step step =
        m_scrubber.move(pointer.x(), pixels, settings().endlessMouseScrub, desktopWidth);
    if (step.warpTo) {
        QCursor::setPos(*step.warpTo, pointer.y());
        if (std::abs(QCursor::pos().x() - *step.warpTo) > desktopWidth / 2) {
            m_scrubber.stayedAt(pointer.x());
        }
    }
    if (step.frames != 0) {
        m_transport->scrubBy(step.frames);
    }
}

void Player::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && isOverVideo(*event)) {
        playForward();
    }
}

void Player::mouseReleaseEvent(QMouseEvent* event)
{
    m_scrubber.end();
    if (event->button() == Qt::LeftButton) {
        m_transport->endScrub();
    }
    event->accept();
}

void Player::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasFormat(fileList)) {
        event->acceptProposedAction();
    }
    QWidget::dragEnterEvent(event);
}

void Player::dragMoveEvent(QDragMoveEvent* event)
{
    if (event->mimeData()->hasFormat(fileList)) {
        event->acceptProposedAction();
    }
    QWidget::dragMoveEvent(event);
}

void Player::dropEvent(QDropEvent* event)
{
    if (!event->mimeData()->hasFormat(fileList)) {
        QWidget::dropEvent(event);
        return;
    }
    for (const QUrl& url : event->mimeData()->urls()) {
        const QFileInfo file(url.toLocalFile());
        if (!file.isFile()) {
            continue;
        }
        if (file.suffix() == QLatin1String(bookmarksExtension)) {
            openBookmarksFile(file.filePath());
        } else {
            open(file.filePath());
        }
    }
    event->acceptProposedAction();
}
