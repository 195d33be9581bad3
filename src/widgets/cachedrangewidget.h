#pragma once

#include <QWidget>

/// Thin bar that shows which part of a span of frames is cached.
class CachedRangeWidget : public QWidget {
    Q_OBJECT

public:
    explicit CachedRangeWidget(QWidget* parent = nullptr);

    /// The span of frames that the whole width stands for.
    void setRange(int first, int last);
    void setCachedRange(int first, int last);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] int positionOf(int frame) const;

    int m_first = 0;
    int m_last = 0;
    int m_cachedFirst = 0;
    int m_cachedLast = 0;
};
