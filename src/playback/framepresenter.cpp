#include "framepresenter.h"

#include "mediasource.h"
#include "scopedlock.h"
#include "softwareviewer.h"

#include <QImage>
#include <QPixmap>
#include <QTransform>

#include <algorithm>
#include <limits>

namespace {
// A frame that starts a hair before its exact time still counts as itself.
constexpr double numberGuardSeconds = 0.001;
constexpr int fullTurn = 360;

int numberOf(const DecodedVideoFrame& frame, double frameRate)
{
    // A damaged stream can name any time.
    constexpr double limit = std::numeric_limits<int>::max();
    return static_cast<int>(
        std::clamp((frame.time + numberGuardSeconds) * frameRate, -limit, limit));
}

}

void FramePresenter::setFlip(bool horizontal, bool vertical)
{
    m_flipHorizontal = horizontal;
    m_flipVertical = vertical;
}

void FramePresenter::setRotation(int degrees)
{
    m_rotation = degrees % fullTurn;
}

FramePresenter::Result FramePresenter::show(
    MediaSource& source, bool refresh, std::optional<double> movingFrom)
{
    if (!m_viewer) {
        return Result::NoViewer;
    }
    m_repaintPending = m_repaintPending || refresh;
    VideoFrameCache& cache = source.videoFrames;
    // Held over the conversion on purpose: the picture is read in place.
    const ScopedLock lock(cache.mutex());
    const double time = source.clockTime(true);
    const DecodedVideoFrame* frame = cache.frameAt(time);
    const bool nothingMoreComes = source.readFailed && source.videoPackets.usedSlots() == 0;
    const bool decoding = source.videoDecoding && !nothingMoreComes;
    if (decoding && !cache.isDecodedUpTo(movingFrom.value_or(time))) {
        return Result::Awaited;
    }
    if (!frame) {
        return Result::Missing;
    }
    const int number = numberOf(*frame, source.rate());
    if (number != m_lastDisplayedFrame || m_repaintPending) {
        paint(*frame);
        m_lastDisplayedFrame = number;
        m_repaintPending = false;
    }
    const bool mayChange = decoding && !movingFrom && !cache.isFinalAt(time);
    return mayChange ? Result::Awaited : Result::Shown;
}

void FramePresenter::paint(const DecodedVideoFrame& frame)
{
    QImage image(frame.data.get(), frame.width, frame.height, QImage::Format_RGB888);
    if (m_flipHorizontal || m_flipVertical) {
        image = image.mirrored(m_flipHorizontal, m_flipVertical);
    }
    if (m_rotation != 0) {
        image = image.transformed(QTransform().rotate(m_rotation), Qt::FastTransformation);
    }
    m_viewer->setPixmap(QPixmap::fromImage(image));
    m_viewer->update();
}

void FramePresenter::clear()
{
    if (m_viewer) {
        m_viewer->setPixmap(QPixmap());
    }
    forget();
}

void FramePresenter::forget()
{
    m_lastDisplayedFrame = -1;
    m_repaintPending = true; // a picture before the start can have that very number
}
