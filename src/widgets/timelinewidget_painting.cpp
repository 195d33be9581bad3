#include "bookmarks.h"
#include "settings.h"
#include "timelinewidget.h"

#include <QGuiApplication>
#include <QPainter>

#include <algorithm>
#include <limits>

namespace {

constexpr int smallPointSize = 8; // of the side texts
constexpr int handlePenWidth = 2;
constexpr int dotSize = 2; // of a bookmark
constexpr double handleRadius = 1.0;
// Columns of the frame rate texts, from the left of their box.
constexpr int measuredRateColumn = 36;
constexpr int unitColumn = 65;
constexpr int columnGap = 2;
constexpr int stretchError = 2; // pixels that a condensed text may turn out wider than asked for

} // namespace

void TimelineWidget::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    drawBackground(&painter);
    drawPlaybackRange(&painter);
    drawRangeBookmarks(&painter);
    drawHoverFrame(&painter);
    drawCurrentFrame(&painter);
    drawFrameBookmarks(&painter);
    drawLength(&painter);
    drawRate(&painter);
}

void TimelineWidget::drawBackground(QPainter* painter)
{
    fill(painter, parts().track(), timelinecolours::track);
}

void TimelineWidget::drawPlaybackRange(QPainter* painter)
{
    const PixelSpan ends = rangeEnds();
    if (m_hover == Hover::Range) {
        fill(painter, parts().rangeHighlight(ends), timelinecolours::handlePen);
    }
    fill(painter, parts().rangeBar(ends), timelinecolours::range);
    if (m_display.showCache) {
        const PixelSpan cached{ positionOfFrame(std::max(m_cached.start, 1)),
            positionOfFrame(std::min(m_frameCount, m_cached.end)) };
        fill(painter, parts().cacheBand(cached), timelinecolours::cache);
    }
    fill(painter, parts().tick(ends.from), timelinecolours::range);
    fill(painter, parts().tick(ends.to), timelinecolours::range);
    drawHandles(painter, ends);
}

void TimelineWidget::drawHandles(QPainter* painter, PixelSpan ends) const
{
    painter->setPen(QPen(timelinecolours::handlePen, handlePenWidth));
    painter->setBrush(timelinecolours::handleFill);
    if (m_hover == Hover::Start || m_hover == Hover::Range) {
        painter->drawRoundedRect(parts().startHandle(ends.from), handleRadius, handleRadius);
    }
    if (m_hover == Hover::End || m_hover == Hover::Range) {
        painter->drawRoundedRect(parts().endHandle(ends.to), handleRadius, handleRadius);
    }
}

void TimelineWidget::drawCurrentFrame(QPainter* painter)
{
    const int x = positionOfFrame(m_currentFrame);
    const bool bookmarked = isBookmarked(m_currentFrame);
    const QColor marker = bookmarked ? timelinecolours::bookmark : timelinecolours::currentFrame;
    const QColor label = bookmarked ? timelinecolours::bookmark : timelinecolours::currentLabel;
    drawFrame(painter, m_currentFrame, x, marker, label);
}

void TimelineWidget::drawHoverFrame(QPainter* painter)
{
    if (!underMouse() || QGuiApplication::mouseButtons().testFlag(Qt::LeftButton)) {
        return;
    }
    const int frame = frameAtPosition(mapFromGlobal(QCursor::pos()));
    const QColor colour = isBookmarked(frame) ? timelinecolours::bookmark : timelinecolours::hover;
    drawFrame(painter, frame, positionOfFrame(frame), colour, colour);
}

void TimelineWidget::drawFrame(
    QPainter* painter, int frame, int x, const QColor& marker, const QColor& label) const
{
    if (x == TimelineGeometry::noPosition || !parts().label(x).intersects(rect())) {
        return;
    }
    fill(painter, parts().marker(x), marker);
    QFont font = painter->font();
    font.setPointSize(m_metrics.labelPointSize);
    painter->setFont(font);
    painter->setPen(label);
    painter->drawText(parts().label(x), Qt::AlignCenter, frameToString(frame));
}

void TimelineWidget::drawFrameBookmarks(QPainter* painter)
{
    if (m_display.showFrameBookmarks) {
        drawBookmarksBetween(
            painter, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    }
}

void TimelineWidget::drawRangeBookmarks(QPainter* painter)
{
    if (!m_display.showRangeBookmarks || m_bookmarks == nullptr) {
        return;
    }
    for (const RangeBookmark& bookmark : m_bookmarks->ranges()) {
        const PixelSpan ends{ positionOfFrame(bookmark.start), positionOfFrame(bookmark.end) };
        fill(painter, parts().rangeBookmark(ends), timelinecolours::rangeBookmark);
    }
}

void TimelineWidget::drawBookmarksBetween(QPainter* painter, int first, int last) const
{
    if (m_bookmarks == nullptr) {
        return;
    }
    painter->setPen(timelinecolours::bookmark);
    painter->setBrush(Qt::NoBrush);
    const QMap<int, int>& frames = m_bookmarks->frames();
    int previous = TimelineGeometry::noPosition;
    for (auto frame = frames.lowerBound(first); frame != frames.cend() && frame.key() <= last;
         ++frame) {
        const int x = positionOfFrame(frame.key());
        const QRect line = parts().marker(x);
        if (x == previous || !line.intersects(rect())) {
            continue;
        }
        previous = x;
        painter->drawLine(line.topLeft(), line.bottomLeft());
        painter->drawEllipse(QRect(line.left() - 1, line.bottom(), dotSize, dotSize));
    }
}

void TimelineWidget::drawLength(QPainter* painter)
{
    QString text = frameToString(m_frameCount);
    if (m_displayType == DISPLAY_TYPE::Seconds) {
        text = tr("%1 sec").arg(text);
    } else if (m_displayType == DISPLAY_TYPE::FrameNumbers) {
        text = tr("%1 frames", "length of the media", m_frameCount).arg(text);
    }
    const QRect box = parts().leftText();
    drawSideText(painter, box, box.width(), Qt::AlignLeft, text);
}

void TimelineWidget::drawRate(QPainter* painter)
{
    const QRect box = parts().rightText();
    const QRect middle = box.translated(measuredRateColumn, 0);
    const QRect unit = box.translated(unitColumn, 0);
    const int middleWidth = unitColumn - measuredRateColumn - columnGap;
    drawSideText(painter, box, measuredRateColumn - columnGap, Qt::AlignLeft,
        QString::number(m_frameRate, 'f', 2));
    if (m_speed == 1.0) {
        drawSideText(
            painter, middle, middleWidth, Qt::AlignLeft, QString::number(m_playbackRate, 'f', 1));
        drawSideText(painter, unit, rect().right() - unit.left(), Qt::AlignLeft, tr("fps"));
    } else {
        drawSideText(painter, middle, rect().right() - middle.left(), Qt::AlignLeft,
            tr("%1x", "speed").arg(QString::number(m_speed, 'f', 2)),
            timelinecolours::currentLabel);
    }
}

void TimelineWidget::drawSideText(QPainter* painter, const QRect& box, int width, int flags,
    const QString& text, const QColor& colour) const
{
    QFont font = painter->font();
    font.setPointSize(smallPointSize);
    font.setStretch(QFont::Unstretched);
    const int needed = QFontMetrics(font, painter->device()).horizontalAdvance(text);
    if (needed > width && width > 0) {
        font.setStretch(std::max(1, QFont::Unstretched * (width - stretchError) / needed));
    }
    painter->setFont(font);
    painter->setPen(colour);
    painter->drawText(box, flags | Qt::TextDontClip, text);
}

void TimelineWidget::fill(QPainter* painter, const QRect& rect, const QColor& colour) const
{
    if (rect.isValid()) {
        painter->fillRect(rect & this->rect(), colour);
    }
}

bool TimelineWidget::isBookmarked(int frame) const
{
    return m_bookmarks != nullptr && m_bookmarks->frames().contains(frame);
}
