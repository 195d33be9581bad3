#include "playbacksliderwidget.h"

#include "zslider.h"

#include <QVBoxLayout>

PlaybackSliderWidget::PlaybackSliderWidget(QWidget* parent)
    : QWidget(parent)
    , m_slider(new ZSlider(Qt::Horizontal, this))
{
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_slider);
    connect(m_slider, &ZSlider::sliderPositionChanged, this,
        &PlaybackSliderWidget::onSliderPositionChange);
}

void PlaybackSliderWidget::setValue(int value)
{
    m_slider->setValue(value);
}

int PlaybackSliderWidget::value() const
{
    return m_slider->value();
}

bool PlaybackSliderWidget::isSliderDown() const
{
    return m_slider->isSliderDown();
}

void PlaybackSliderWidget::setSliderPosition(int position)
{
    m_slider->setSliderPosition(position);
}

void PlaybackSliderWidget::setRange(int minimum, int maximum)
{
    m_slider->setRange(minimum, maximum);
}

void PlaybackSliderWidget::onSliderPositionChange()
{
    Q_EMIT sliderPositionChanged();
}
