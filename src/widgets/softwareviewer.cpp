#include "softwareviewer.h"

#include <QPainter>

#include <utility>

SoftwareViewer::SoftwareViewer(QWidget* parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAttribute(
        Qt::WA_OpaquePaintEvent); // every pixel is painted, so nothing needs to be erased first
}

void SoftwareViewer::setPixmap(QPixmap pixmap)
{
    m_pixmap = std::move(pixmap);
    if (m_pixmap.isNull()) {
        m_scaled = QPixmap();
        m_scaledKey = 0;
    }
    update();
}

void SoftwareViewer::setShape(const QSize& shape)
{
    if (m_shape != shape) {
        m_shape = shape;
        m_scaledKey = 0;
        update();
    }
}

bool SoftwareViewer::isStretched() const
{
    return !m_shape.isEmpty() && m_shape != m_pixmap.size();
}

QPixmap SoftwareViewer::scaledTo(const QSize& size) const
{
    return m_pixmap.scaled(size, isStretched() ? Qt::IgnoreAspectRatio : Qt::KeepAspectRatio,
        Qt::SmoothTransformation);
}

void SoftwareViewer::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (m_pixmap.isNull()) {
        return;
    }
    const qreal ratio = devicePixelRatioF();
    const QSize room(qRound(width() * ratio), qRound(height() * ratio));
    scaleInto(room, ratio);
    painter.setRenderHint(QPainter::Antialiasing);
    const int x = (room.width() - m_scaled.width()) / 2;
    const int y = (room.height() - m_scaled.height()) / 2;
    painter.drawPixmap(QPointF(x / ratio, y / ratio), m_scaled);
}

void SoftwareViewer::scaleInto(const QSize& deviceSize, qreal devicePixelRatio)
{
    if (m_pixmap.cacheKey() == m_scaledKey && deviceSize == m_scaledFor
        && devicePixelRatio == m_scaled.devicePixelRatio()) {
        return;
    }
    m_scaledKey = m_pixmap.cacheKey();
    m_scaledFor = deviceSize;
    const QSize shape = isStretched() ? m_shape : m_pixmap.size();
    m_scaled = scaledTo(shape.scaled(deviceSize, Qt::KeepAspectRatio));
    m_scaled.setDevicePixelRatio(devicePixelRatio);
}
