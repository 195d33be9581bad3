#include "windowplacement.h"

#include <QRect>
#include <QScreen>
#include <QWidget>

namespace {

int scaledBy(int pixels, float scale, int other, int base)
{
    return static_cast<int>(float(base) + float(pixels) * scale - float(other));
}

} // namespace

QSize windowplacement::sizeForVideo(
    const QSize& window, const QSize& view, const QSize& video, float scale)
{
    return { scaledBy(video.width(), scale, view.width(), window.width()),
        scaledBy(video.height(), scale, view.height(), window.height()) };
}

QSize windowplacement::endingWithin(
    const QRect& available, const QRect& frame, const QSize& window, QSize wanted)
{
    const QPoint room = available.bottomRight() - frame.topLeft() + QPoint(1, 1);
    const QSize most = QSize(room.x(), room.y()) - (frame.size() - window);
    // A window that is too large already, or starts outside, does not shrink for the screen's sake.
    return wanted.boundedTo(most.expandedTo(window));
}

void windowplacement::fitToVideo(QWidget& window, const QSize& view, const QSize& video)
{
    const QScreen* screen = window.screen();
    if (video.isEmpty() || !screen || window.isMaximized() || window.isFullScreen()) {
        return;
    }
    window.resize(endingWithin(screen->availableGeometry(), window.frameGeometry(), window.size(),
        sizeForVideo(window.size(), view, video, 1.0F)));
}
