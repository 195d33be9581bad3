#include "rangetimelinewidget.h"

#include "settings.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

RangeTimelineWidget::RangeTimelineWidget(QWidget* parent)
    : TimelineWidget(rangeTimelineMetrics, settings().rangeTimeline, false, parent)
{
    setAccessibleName(tr("Range Timeline"));
    setAccessibleDescription(tr("The frames of the playback range; drag its ends to move them"));
}

void RangeTimelineWidget::displayRangeBookmarks(bool /*display*/) { }

int RangeTimelineWidget::frameAtPosition(QPoint position) const
{
    return parts().frameAt(position.x(), range());
}

int RangeTimelineWidget::positionOfFrame(int frame) const
{
    if (frame < rangeStart() || frame > rangeEnd()) {
        return TimelineGeometry::noPosition;
    }
    return parts().positionOf(frame, range());
}

void RangeTimelineWidget::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    drawBackground(&painter);
    drawHoverFrame(&painter);
    drawCurrentFrame(&painter);
    drawFrameBookmarks(&painter);
    drawRangeLabels(&painter);
}

void RangeTimelineWidget::drawBackground(QPainter* painter)
{
    const QRect track = parts().track();
    fill(painter, track, Qt::gray);
    drawCache(painter);
    fill(painter, parts().tick(track.left()), timelinecolours::tick);
    fill(painter, parts().tick(track.left() + track.width()), timelinecolours::tick);
}

void RangeTimelineWidget::drawCache(QPainter* painter) const
{
    const FrameRange cached = cachedRange();
    if (!display().showCache || cached.start >= cached.end) {
        return;
    }
    const QRect track = parts().track();
    const int from = positionOfFrame(std::max(cached.start, rangeStart()));
    const int to = positionOfFrame(std::min(cached.end, rangeEnd()));
    const int left = from == TimelineGeometry::noPosition ? track.left() : from;
    const int right = to == TimelineGeometry::noPosition ? track.left() + track.width() : to;
    fill(painter, { QPoint(left, track.top()), QPoint(right - 1, track.top()) },
        timelinecolours::cache);
}

void RangeTimelineWidget::drawFrameBookmarks(QPainter* painter)
{
    if (display().showFrameBookmarks) {
        drawBookmarksBetween(painter, rangeStart(), rangeEnd());
    }
}

void RangeTimelineWidget::drawRangeLabels(QPainter* painter) const
{
    const QRect left = parts().leftText();
    const QRect right = parts().rightText();
    drawSideText(painter, left, left.width(), Qt::AlignRight | Qt::AlignVCenter,
        frameToString(rangeStart()));
    drawSideText(painter, right, (right & rect()).width(), Qt::AlignLeft | Qt::AlignVCenter,
        frameToString(rangeEnd()));
}

RangeTimelineWidget::Drag RangeTimelineWidget::dragAt(QPoint position) const
{
    if (!parts().scrubArea().contains(position)) {
        if (parts().leftText().contains(position)) {
            return Drag::StartLabel;
        }
        if (parts().rightText().contains(position)) {
            return Drag::EndLabel;
        }
    }
    return Drag::Scrub;
}

void RangeTimelineWidget::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        TimelineWidget::mousePressEvent(event);
        return;
    }
    const QPoint position = placeOf(event);
    m_pressX = static_cast<int>(std::lround(event->screenPos().x()));
    m_drag = dragAt(position);
    if (m_drag == Drag::Scrub) {
        Q_EMIT frameChangeRequest(frameAtPosition(position), false);
    }
}

void RangeTimelineWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() == Qt::NoButton) {
        update(); // the hovered frame follows the pointer
    } else if (m_drag == Drag::Scrub) {
        Q_EMIT frameChangeRequest(frameAtPosition(placeOf(event)), true);
    } else if (m_drag != Drag::None) {
        dragLabel(static_cast<int>(std::lround(event->screenPos().x())), event->modifiers());
    }
}

/// The place of the press stays what it was: away from it the label keeps running with every move,
/// the faster the farther the pointer is.
void RangeTimelineWidget::dragLabel(int screenX, Qt::KeyboardModifiers modifiers)
{
    const int frames = labelDragFrames(screenX - m_pressX, modifiers);
    if (frames == 0) {
        return;
    }
    if (m_drag == Drag::StartLabel) {
        const int start = movedFrame(rangeStart(), frames);
        Q_EMIT rangeChangeRequest(start, rangeEnd());
        if (start > currentFrame()) {
            Q_EMIT frameChangeRequest(start, false);
        }
    } else {
        const int end = movedFrame(rangeEnd(), frames);
        Q_EMIT rangeChangeRequest(rangeStart(), end);
        if (end < currentFrame()) {
            Q_EMIT frameChangeRequest(end, false);
        }
    }
}

void RangeTimelineWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        TimelineWidget::mouseReleaseEvent(event);
        return;
    }
    m_drag = Drag::None;
    event->ignore();
}
