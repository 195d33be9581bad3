#include "zslider.h"

#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionSlider>

#include <cmath>

namespace {

// At each end this share of the width stands for the very end, which is hard to hit otherwise.
constexpr double endMarginShare = 0.005;

} // namespace

ZSlider::ZSlider(Qt::Orientation orientation, QWidget* parent)
    : QSlider(orientation, parent)
{
}

void ZSlider::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && !isOnHandle(event->pos())) {
        event->accept();
        jumpTo(qRound(event->localPos().x()));
        return;
    }
    QSlider::mousePressEvent(event);
}

void ZSlider::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() != Qt::NoButton && !isSliderDown()) {
        event->accept();
        jumpTo(qRound(event->localPos().x()));
        return;
    }
    QSlider::mouseMoveEvent(event);
}

bool ZSlider::isOnHandle(const QPoint& position) const
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    return style()
        ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this)
        .contains(position);
}

int ZSlider::valueAt(int x) const
{
    const int margin = static_cast<int>(width() * endMarginShare);
    int value = maximum();
    if (x < margin) {
        value = minimum();
    } else if (x <= width() - margin && width() > 0) {
        const float span = static_cast<float>(qint64{ maximum() } - minimum());
        const float offset = span * static_cast<float>(x) / static_cast<float>(width());
        value = static_cast<int>(std::lround(static_cast<float>(minimum()) + offset));
    }
    return invertedAppearance() ? maximum() - value : value;
}

void ZSlider::jumpTo(int x)
{
    const int target = valueAt(x);
    if (target == value() || target < minimum() || target > maximum()) {
        return;
    }
    setValue(target);
    Q_EMIT sliderPositionChanged();
}
