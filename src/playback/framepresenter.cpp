#include "framepresenter.h"

#include "mediasource.h"
#include "scopedlock.h"
#include "softwareviewer.h"

#include <QImage>
#include <QPixmap>
#include <QTransform>

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

namespace {
// A frame that starts a hair before its exact time still counts as itself.
constexpr double numberGuardSeconds = 0.001;
constexpr int fullTurn = 360;
constexpr int quarterTurn = 90;

int numberOf(const DecodedVideoFrame& frame, double frameRate)
{
    // A damaged stream can name any time.
    constexpr double limit = std::numeric_limits<int>::max();
    return static_cast<int>(
        std::clamp((frame.time + numberGuardSeconds) * frameRate, -limit, limit));
}

// In place: the picture's memory lasts as long as the image, whatever becomes of the picture.
QImage imageOf(const DecodedVideoFrame& frame)
{
    using Memory = std::shared_ptr<uint8_t[]>;
    auto owner = std::make_unique<Memory>(frame.data);
    const uint8_t* const bytes = owner->get();
    return QImage(
        bytes, frame.width, frame.height, QImage::Format_RGB888,
        [](void* memory) { delete static_cast<Memory*>(memory); }, owner.release());
}

QImage applied(const PictureTurn& turn, const QImage& image)
{
    if (turn.quarters == 2) {
        return image.mirrored(!turn.mirrored, true); // one copy, where turning could need another
    }
    const QImage mirrored = turn.mirrored ? image.mirrored(true, false) : image;
    return turn.quarters == 0
        ? mirrored
        : mirrored.transformed(QTransform().rotate(turn.quarters * quarterTurn));
}

} // namespace

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
    // Held to the end on purpose: the frame could be evicted meanwhile.
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
    // Where the rate varies several pictures can have one number.
    if (number != m_lastDisplayedFrame || frame->time != m_lastDisplayedTime || m_repaintPending) {
        paint(source, *frame);
        m_lastDisplayedFrame = number;
        m_lastDisplayedTime = frame->time;
        m_repaintPending = false;
    }
    const bool mayChange = decoding && !movingFrom && !cache.isFinalAt(time);
    return mayChange ? Result::Awaited : Result::Shown;
}

void FramePresenter::showOpening(MediaSource& source)
{
    const auto picture =
        source.openingPicture.take(source.videoStreamIndex, source.width, source.height);
    if (m_viewer && picture) {
        paint(source, *picture);
        m_repaintPending = true;
    }
}

PictureTurn FramePresenter::turnFor(const MediaSource& source) const
{
    return source.turn.flipped(m_flipHorizontal, m_flipVertical).turned(m_rotation / quarterTurn);
}

QSize FramePresenter::shownSize(const MediaSource& source, const QSize& stored) const
{
    const QSize shape = shapeOf(stored, source.pixelAspect);
    return turnFor(source).exchangesSides() ? shape.transposed() : shape;
}

void FramePresenter::paint(const MediaSource& source, const DecodedVideoFrame& frame)
{
    QImage image = applied(turnFor(source), imageOf(frame));
    QSize shape = shownSize(source, { frame.width, frame.height });
    if (const int slant = m_rotation % quarterTurn; slant != 0) {
        // On its way to a slant a picture gets square pixels.
        image = image.scaled(shape).transformed(QTransform().rotate(slant), Qt::FastTransformation);
        shape = image.size();
    }
    // In the format it has, which takes no copy.
    m_viewer->setPixmap(QPixmap::fromImage(std::move(image), Qt::NoFormatConversion));
    m_viewer->setShape(shape);
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
