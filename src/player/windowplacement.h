#pragma once

#include <QSize>

class QRect;
class QWidget;

/// Size and place of a window that shows a video.
namespace windowplacement {

constexpr QSize firstSize{ 960, 600 }; // pixels, where no geometry was saved

/// Size of a window whose view shows a video at `scale`; all in pixels.
QSize sizeForVideo(const QSize& window, const QSize& view, const QSize& video, float scale);

/// `wanted`, kept so small that a window whose corner stands at the corner of `frame`, with
/// decorations of `frame` less `window`, ends within `available`.
QSize endingWithin(const QRect& available, const QRect& frame, const QSize& window, QSize wanted);

/// Makes a window's view show the video pixel by pixel, as far as its screen has room; the top-left
/// corner stays. A maximised or full-screen window stays as it is.
void fitToVideo(QWidget& window, const QSize& view, const QSize& video);

} // namespace windowplacement
