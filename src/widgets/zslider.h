#pragma once

#include <QSlider>

/// Horizontal slider that jumps to the point clicked on, and follows the pointer from there.
class ZSlider : public QSlider {
    Q_OBJECT

public:
    explicit ZSlider(Qt::Orientation orientation = Qt::Horizontal, QWidget* parent = nullptr);

Q_SIGNALS:
    /// The user made the slider jump to another value. Dragging the handle itself emits QSlider's
    /// signals alone.
    void sliderPositionChanged();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    [[nodiscard]] bool isOnHandle(const QPoint& position) const;
    [[nodiscard]] int valueAt(int x) const;
    void jumpTo(int x);
};
