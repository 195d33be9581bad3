#include "cachedrangewidget.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr int barHeight = 4; // pixels

} // namespace

CachedRangeWidget::CachedRangeWidget(QWidget* parent)
    : QWidget(parent)
{
    setFixedHeight(barHeight);
}

void CachedRangeWidget::setRange(int first, int last)
{
    if (first != m_first || last != m_last) {
        m_first = first;
        m_last = last;
        update();
    }
}

void CachedRangeWidget::setCachedRange(int first, int last)
{
    if (first != m_cachedFirst || last != m_cachedLast) {
        m_cachedFirst = first;
        m_cachedLast = last;
        update();
    }
}

void CachedRangeWidget::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::gray);
    if (m_last == m_first) {
        return;
    }
    const int left = positionOf(m_cachedFirst);
    const int right = positionOf(m_cachedLast) - 1;
    if (left <= right) {
        painter.fillRect(QRect(QPoint(left, 0), QPoint(right, height())), Qt::green);
    }
}

int CachedRangeWidget::positionOf(int frame) const
{
    const float share = static_cast<float>(qint64{ frame } - m_first)
        / static_cast<float>(qint64{ m_last } - m_first);
    // Kept just outside the bar where it lies far outside, so that it fits into an int.
    const float position =
        std::clamp(share * static_cast<float>(width()), -1.0F, static_cast<float>(width()) + 1.0F);
    return static_cast<int>(position);
}
