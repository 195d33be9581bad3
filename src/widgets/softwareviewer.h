#pragma once

#include <QPixmap>
#include <QTimer>
#include <QWidget>

/// The video view: shows one picture as large as the view allows, in its proportions, centred on
/// black.
class SoftwareViewer : public QWidget {
    Q_OBJECT

public:
    explicit SoftwareViewer(QWidget* parent = nullptr);

    /// The picture as it was given, null when there is none.
    [[nodiscard]] QPixmap pixmap() const { return m_pixmap; }

    /// Size at which the picture was last drawn, in the widget's pixels whatever number of the
    /// screen's they take; 0 when there is no picture or none was drawn yet.
    [[nodiscard]] int imageWidth() const { return m_imageSize.width(); }
    [[nodiscard]] int imageHeight() const { return m_imageSize.height(); }

    /// The picture scaled into that size, stretched to fill it where its pixels are not square.
    [[nodiscard]] QPixmap scaledTo(const QSize& size) const;

    /// Proportions to show the pictures in, from now on; empty for those of their pixels.
    void setShape(const QSize& shape);

public Q_SLOTS:
    void setPixmap(QPixmap pixmap);

Q_SIGNALS:
    /// Nothing was scaled for a second. The scaled copy has been dropped: the window keeps what was
    /// painted, and the next paint scales again.
    void rested();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QSize roomOnScreen(qreal devicePixelRatio) const;
    void scaleInto(const QSize& deviceSize, qreal devicePixelRatio);
    void dropScaled();
    [[nodiscard]] bool isStretched() const;
    [[nodiscard]] Qt::AspectRatioMode aspectMode() const;
    [[nodiscard]] QSize sizeWithin(const QSize& room) const; // of the picture

    QPixmap m_pixmap;
    QSize m_shape; // tells of proportions alone
    QSize m_imageSize{ 0, 0 };
    QPixmap m_scaled; // m_pixmap in the size of the last paint; scaling costs far more than drawing
    qint64 m_scaledKey = 0; // which picture m_scaled was made from
    QSize m_scaledFor; // and for which room, in device pixels
    QTimer m_restTimer; // since something was scaled
};
