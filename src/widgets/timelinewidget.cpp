#include "timelinewidget.h"

#include "settings.h"

#include <QAction>
#include <QMouseEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int narrowest = 400; // pixels
constexpr int currentFrameReach = 6; // pixels around the current frame that the menu takes for it

} // namespace

TimelineWidget::TimelineWidget(QWidget* parent)
    : TimelineWidget(timelineMetrics, settings().timeline, true, parent)
{
    setAccessibleName(tr("Timeline"));
    setAccessibleDescription(tr("All frames of the media, with the playback range"));
}

TimelineWidget::TimelineWidget(const TimelineMetrics& metrics, TimelineDisplay& display,
    bool offersRangeBookmarks, QWidget* parent)
    : QWidget(parent)
    , m_display(display)
    , m_metrics(metrics)
    , m_menu(this)
    , m_offersRangeBookmarks(offersRangeBookmarks)
{
    setMinimumWidth(narrowest);
    setFixedHeight(metrics.height);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent); // every pixel is painted
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this, &TimelineWidget::contextMenu);
}

template <typename T> void TimelineWidget::store(T& field, const T& value)
{
    if (field != value) {
        field = value;
        update();
    }
}

void TimelineWidget::setCurrentFrame(int frame)
{
    store(m_currentFrame, frame);
}

void TimelineWidget::setFrameCount(int count)
{
    store(m_frameCount, count);
}

void TimelineWidget::setRange(int start, int end)
{
    store(m_range, { start, end });
}

void TimelineWidget::setCachedRange(int start, int end)
{
    store(m_cached, { start, end });
}

void TimelineWidget::setFrameRate(double rate)
{
    store(m_frameRate, rate);
}

void TimelineWidget::setPlaybackRate(double rate)
{
    store(m_playbackRate, rate);
}

void TimelineWidget::setSpeed(double speed)
{
    store(m_speed, speed);
}

void TimelineWidget::setBookmarks(const Bookmarks* bookmarks)
{
    store(m_bookmarks, bookmarks);
}

QString TimelineWidget::frameToString(int frame) const
{
    return frameText(frame, m_frameRate, m_displayType);
}

void TimelineWidget::setDisplayType(DISPLAY_TYPE type)
{
    store(m_displayType, type);
    m_display.displayType = static_cast<int>(type);
}

void TimelineWidget::displayFrameBookmarks(bool display)
{
    m_display.showFrameBookmarks = display;
    update();
}

void TimelineWidget::displayRangeBookmarks(bool display)
{
    m_display.showRangeBookmarks = display;
    update();
}

void TimelineWidget::displayCache(bool display)
{
    m_display.showCache = display;
    update();
}

void TimelineWidget::setDisplayType()
{
    const QObject* action = sender();
    if (action == m_menu.action(TimelineMenu::FrameNumbers)) {
        setDisplayType(DISPLAY_TYPE::FrameNumbers);
    } else if (action == m_menu.action(TimelineMenu::TimeCode)) {
        setDisplayType(DISPLAY_TYPE::TimeCode);
    } else if (action == m_menu.action(TimelineMenu::Seconds)) {
        setDisplayType(DISPLAY_TYPE::Seconds);
    }
}

void TimelineWidget::setPositionAtTop(bool top)
{
    Q_EMIT positionChangeRequest(top);
}

void TimelineWidget::setRangeStartFromAction()
{
    Q_EMIT rangeChangeRequest(m_menu.action(TimelineMenu::RangeStart)->data().toInt(), m_range.end);
}

void TimelineWidget::setRangeEndFromAction()
{
    Q_EMIT rangeChangeRequest(m_range.start, m_menu.action(TimelineMenu::RangeEnd)->data().toInt());
}

void TimelineWidget::resetRange()
{
    Q_EMIT rangeChangeRequest(1, m_frameCount);
}

void TimelineWidget::contextMenu(QPoint pos)
{
    updateContextActions(pos);
    m_menu.show(this, mapToGlobal(pos), m_offersRangeBookmarks);
}

void TimelineWidget::updateContextActions(QPoint pos)
{
    const int frame = frameAtPosition(pos);
    const qint64 distance = std::abs(qint64{ pos.x() } - positionOfFrame(m_currentFrame));
    if (distance > currentFrameReach && frame != m_currentFrame) {
        m_menu.offerFrame(frame, frameToString(frame));
    } else {
        m_menu.offerFrame(m_currentFrame, tr("Current"));
    }
    const std::pair<TimelineMenu::Entry, bool> checks[] = {
        { TimelineMenu::FrameNumbers, m_displayType == DISPLAY_TYPE::FrameNumbers },
        { TimelineMenu::TimeCode, m_displayType == DISPLAY_TYPE::TimeCode },
        { TimelineMenu::Seconds, m_displayType == DISPLAY_TYPE::Seconds },
        { TimelineMenu::PositionAtTop, m_display.positionAtTop },
        { TimelineMenu::FrameBookmarks, m_display.showFrameBookmarks },
        { TimelineMenu::RangeBookmarks, m_display.showRangeBookmarks },
        { TimelineMenu::Cache, m_display.showCache },
    };
    for (const auto& [entry, checked] : checks) {
        m_menu.action(entry)->setChecked(checked);
    }
}

int TimelineWidget::frameAtPosition(QPoint position) const
{
    return parts().frameAt(position.x(), { 1, std::max(m_frameCount, 1) });
}

int TimelineWidget::positionOfFrame(int frame) const
{
    return parts().positionOf(frame, { 1, m_frameCount });
}

bool TimelineWidget::isWholeRange() const
{
    return m_range == FrameRange{ 1, m_frameCount };
}

PixelSpan TimelineWidget::rangeEnds() const
{
    return parts().rangeEnds(m_range, m_frameCount);
}

TimelineWidget::Hover TimelineWidget::partAt(QPoint position) const
{
    if (m_frameCount < 2) {
        return Hover::None;
    }
    const PixelSpan ends = rangeEnds();
    if (parts().startHit(ends.from).contains(position)) {
        return Hover::Start;
    }
    if (parts().endHit(ends.to).contains(position)) {
        return Hover::End;
    }
    const bool onRange = !isWholeRange() && parts().rangeHit(ends).contains(position);
    return onRange ? Hover::Range : Hover::None;
}

QPoint TimelineWidget::placeOf(const QMouseEvent* event)
{
    return { static_cast<int>(std::lround(event->localPos().x())),
        static_cast<int>(std::lround(event->localPos().y())) };
}

void TimelineWidget::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    const QPoint position = placeOf(event);
    beginDrag(partAt(position), position);
}

void TimelineWidget::beginDrag(Hover part, QPoint position)
{
    int frame = frameAtPosition(position);
    m_rangeDrag.reset();
    m_scrubbing = part == Hover::None;
    if (part == Hover::Start) {
        m_rangeDrag.emplace(RangeDrag::Part::Start, m_range);
        frame = m_range.start;
    } else if (part == Hover::End) {
        m_rangeDrag.emplace(RangeDrag::Part::End, m_range);
        frame = m_range.end;
    } else if (part == Hover::Range) {
        m_rangeDrag.emplace(RangeDrag::Part::Whole, m_range);
    }
    Q_EMIT frameChangeRequest(frame, false);
}

void TimelineWidget::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint position = placeOf(event);
    if (event->buttons() == Qt::NoButton) {
        m_hover = partAt(position);
        update(); // the hovered frame follows the pointer
    } else if (!event->buttons().testFlag(Qt::LeftButton)) {
        QWidget::mouseMoveEvent(event);
    } else if (m_rangeDrag) {
        dragRange(position);
    } else if (m_scrubbing) {
        Q_EMIT frameChangeRequest(frameAtPosition(position), true);
    }
}

void TimelineWidget::dragRange(QPoint position)
{
    const int frame = frameAtPosition(position);
    const FrameRange moved = m_rangeDrag->moved(m_range, m_currentFrame, frame, m_frameCount);
    const bool audioScrub = m_rangeDrag->part() == RangeDrag::Part::Whole;
    Q_EMIT rangeChangeRequest(moved.start, moved.end);
    Q_EMIT frameChangeRequest(frame, audioScrub);
}

void TimelineWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    m_scrubbing = false;
    m_rangeDrag.reset();
    event->ignore();
}

void TimelineWidget::leaveEvent(QEvent* /*event*/)
{
    m_hover = Hover::None; // of an end, too: its handle would stay without a pointer on it
    update();
}
