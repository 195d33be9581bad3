#pragma once

#include "timelinewidget.h"

/// A second timeline that spreads the playback range alone over its whole width. Its side texts
/// are the ends of the range, and dragging them sideways moves the ends frame by frame.
class RangeTimelineWidget : public TimelineWidget {
    Q_OBJECT

public:
    explicit RangeTimelineWidget(QWidget* parent = nullptr);

public Q_SLOTS:
    /// Nothing: this timeline shows no range bookmarks.
    void displayRangeBookmarks(bool display) override;

protected:
    void drawBackground(QPainter* painter) override;
    void drawFrameBookmarks(QPainter* painter) override;
    [[nodiscard]] int frameAtPosition(QPoint position) const override;
    [[nodiscard]] int positionOfFrame(int frame) const override;

    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    enum class Drag { None, Scrub, StartLabel, EndLabel };

    void drawCache(QPainter* painter) const;
    void drawRangeLabels(QPainter* painter) const;
    [[nodiscard]] Drag dragAt(QPoint position) const;
    void dragLabel(int screenX, Qt::KeyboardModifiers modifiers);

    Drag m_drag = Drag::None; // what the left button does since it went down
    int m_pressX = 0; // on the screen, where a label was pressed
};
