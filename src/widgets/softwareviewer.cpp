#include "softwareviewer.h"

#include <QPainter>

#include <utility>

namespace {

constexpr int restMs = 1000;

// Once to the format that Qt scales without conversions of its own, which would be of the result.
QPixmap smoothlyScaled(const QPixmap& pixmap, const QSize& size, Qt::AspectRatioMode mode)
{
    QImage image = pixmap.toImage();
    if (!image.hasAlphaChannel()) {
        image = std::move(image).convertToFormat(QImage::Format_RGB32);
    }
    return QPixmap::fromImage(image.scaled(size, mode, Qt::SmoothTransformation));
}

} // namespace

SoftwareViewer::SoftwareViewer(QWidget* parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAttribute(
        Qt::WA_OpaquePaintEvent); // every pixel is painted, so nothing needs to be erased first
    m_restTimer.setSingleShot(true);
    m_restTimer.setInterval(restMs);
    connect(&m_restTimer, &QTimer::timeout, this, [this] {
        dropScaled();
        Q_EMIT rested();
    });
}

void SoftwareViewer::setPixmap(QPixmap pixmap)
{
    m_pixmap = std::move(pixmap);
    if (m_pixmap.isNull()) {
        dropScaled();
        m_imageSize = { 0, 0 };
    }
    update();
}

void SoftwareViewer::dropScaled()
{
    m_scaled = QPixmap();
    m_scaledKey = 0;
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

Qt::AspectRatioMode SoftwareViewer::aspectMode() const
{
    return isStretched() ? Qt::IgnoreAspectRatio : Qt::KeepAspectRatio;
}

QSize SoftwareViewer::sizeWithin(const QSize& room) const
{
    const QSize shape = isStretched() ? m_shape : m_pixmap.size();
    return m_pixmap.size().scaled(shape.scaled(room, Qt::KeepAspectRatio), aspectMode());
}

QPixmap SoftwareViewer::scaledTo(const QSize& size) const
{
    return smoothlyScaled(m_pixmap, size, aspectMode());
}

void SoftwareViewer::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (m_pixmap.isNull()) {
        return;
    }
    const qreal ratio = devicePixelRatioF();
    const QSize room = roomOnScreen(ratio);
    scaleInto(room, ratio);
    painter.setRenderHint(QPainter::Antialiasing);
    const int x = (room.width() - m_scaled.width()) / 2;
    const int y = (room.height() - m_scaled.height()) / 2;
    painter.drawPixmap(QPointF(x / ratio, y / ratio), m_scaled);
}

// With a fraction for a ratio the widget can start and end amid a pixel of the screen.
QSize SoftwareViewer::roomOnScreen(qreal devicePixelRatio) const
{
    const auto pixel = [=](int place) { return qRound(place * devicePixelRatio); };
    const QPoint start = mapTo(window(), QPoint());
    return { pixel(start.x() + width()) - pixel(start.x()),
        pixel(start.y() + height()) - pixel(start.y()) };
}

void SoftwareViewer::scaleInto(const QSize& deviceSize, qreal devicePixelRatio)
{
    if (m_pixmap.cacheKey() == m_scaledKey && deviceSize == m_scaledFor
        && devicePixelRatio == m_scaled.devicePixelRatio()) {
        return;
    }
    m_scaledKey = m_pixmap.cacheKey();
    m_scaledFor = deviceSize;
    m_imageSize = sizeWithin(size());
    m_scaled = smoothlyScaled(m_pixmap, sizeWithin(deviceSize), Qt::IgnoreAspectRatio);
    m_restTimer.start();
    m_scaled.setDevicePixelRatio(devicePixelRatio);
}
