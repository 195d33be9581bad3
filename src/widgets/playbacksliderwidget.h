#pragma once

#include <QWidget>

class ZSlider;

/// A slider for the play head, as a widget of its own.
class PlaybackSliderWidget : public QWidget {
    Q_OBJECT

public:
    explicit PlaybackSliderWidget(QWidget* parent = nullptr);

    void setValue(int value);
    [[nodiscard]] int value() const;
    [[nodiscard]] bool isSliderDown() const;
    void setSliderPosition(int position);
    void setRange(int minimum, int maximum);

public Q_SLOTS:
    void onSliderPositionChange();

Q_SIGNALS:
    void sliderPositionChanged();

private:
    ZSlider* m_slider; // child
};
