#include "rgbconverter.h"

#include "videoframecache.h"

#include <QThread>

extern "C" {
#include <libavutil/buffer.h>
#include <libavutil/frame.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr int bytesPerPixel = 3;
constexpr int rowAlignment = 4; // bytes; what an image without an explicit stride expects
// The library's vector code works on whole groups of pixels and leaves the rest of a shorter row
// unwritten.
constexpr int pixelGroup = 32;
constexpr int mostThreads = 4;
constexpr int fixedPointOne = 1 << 16; // contrast and saturation as they are

int paddedRowBytes(int width)
{
    const int bytes = width * bytesPerPixel;
    return bytes + (rowAlignment - bytes % rowAlignment) % rowAlignment;
}

int alignedRowBytes(int width)
{
    return (width + pixelGroup - 1) / pixelGroup * pixelGroup * bytesPerPixel;
}

// The full-range twins of the plain formats ("yuvj420p") carry their range in the format itself,
// and grey has the full range unless it is told otherwise.
bool isFullRange(int format, int range)
{
    const AVPixFmtDescriptor* description = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(format));
    const bool isTwin = description && std::strncmp(description->name, "yuvj", 4) == 0;
    const bool isGrey = description && description->nb_components < 3;
    return range == AVCOL_RANGE_JPEG || isTwin || (isGrey && range == AVCOL_RANGE_UNSPECIFIED);
}

void keepMemory(void*, uint8_t*) { } // the picture's memory belongs to its owner

} // namespace

struct RgbConverter::Input {
    int width = 0;
    int height = 0;
    int format = AV_PIX_FMT_NONE;
    int matrix = AVCOL_SPC_UNSPECIFIED;
    bool fullRange = false;

    bool operator==(const Input&) const = default;
};

RgbConverter::RgbConverter(int width, int height)
    : m_width(width)
    , m_height(height)
    , m_rowBytes(paddedRowBytes(width))
    , m_input(std::make_unique<Input>())
{
    if (width % pixelGroup != 0) {
        m_alignedRows.reset(new (std::nothrow)
                uint8_t[static_cast<size_t>(alignedRowBytes(width)) * static_cast<size_t>(height)]);
    }
}

RgbConverter::~RgbConverter() = default;

int RgbConverter::open(int pixelFormat)
{
    if (m_width % pixelGroup != 0 && !m_alignedRows) {
        return AVERROR(ENOMEM);
    }
    if (pixelFormat < 0) {
        return 0;
    }
    return prepare({ m_width, m_height, pixelFormat });
}

int RgbConverter::prepare(const Input& input)
{
    if (m_context && input == *m_input) {
        return 0;
    }
    // Asked first: a context that fails to start leaks what it made for its threads.
    const bool isSupported = sws_isSupportedInput(static_cast<AVPixelFormat>(input.format)) != 0;
    m_context.reset(isSupported ? sws_alloc_context() : nullptr);
    if (!m_context) {
        return AVERROR(EINVAL);
    }
    const int threads = std::clamp(QThread::idealThreadCount(), 1, mostThreads);
    for (const auto& [name, value] : { std::pair("srcw", input.width),
             std::pair("srch", input.height), std::pair("src_format", input.format),
             std::pair("dstw", m_width), std::pair("dsth", m_height),
             std::pair("dst_format", static_cast<int>(AV_PIX_FMT_RGB24)),
             std::pair("sws_flags", SWS_BILINEAR), std::pair("threads", threads) }) {
        av_opt_set_int(m_context.get(), name, value, 0);
    }
    const int result = sws_init_context(m_context.get(), nullptr, nullptr);
    if (result < 0) {
        m_context.reset();
        return result;
    }
    // Fails, harmlessly, for formats that have no matrix.
    sws_setColorspaceDetails(m_context.get(), sws_getCoefficients(input.matrix),
        input.fullRange ? 1 : 0, sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, fixedPointOne,
        fixedPointOne);
    *m_input = input;
    return 0;
}

int RgbConverter::convert(const AVFrame& source, DecodedVideoFrame& target)
{
    const int prepared = prepare({ source.width, source.height, source.format, source.colorspace,
        isFullRange(source.format, source.color_range) });
    if (prepared < 0) {
        return prepared;
    }
    if (!m_alignedRows) {
        return scaleInto(source, target.data.get(), m_rowBytes);
    }
    const int stride = alignedRowBytes(m_width);
    const int result = scaleInto(source, m_alignedRows.get(), stride);
    for (int y = 0; result >= 0 && y < m_height; ++y) {
        // The aligned row is the longer one, so the padding is copied along and holds no stale
        // bytes of another file.
        std::memcpy(target.data.get() + static_cast<ptrdiff_t>(y) * m_rowBytes,
            m_alignedRows.get() + static_cast<ptrdiff_t>(y) * stride,
            static_cast<size_t>(m_rowBytes));
    }
    return result;
}

// Through frames rather than plain pointers: only so does the library convert on several threads.
int RgbConverter::scaleInto(const AVFrame& source, uint8_t* data, int stride)
{
    const AvPtr<AVFrame> target = makeFrame();
    if (!target) {
        return AVERROR(ENOMEM);
    }
    target->width = m_width;
    target->height = m_height;
    target->format = AV_PIX_FMT_RGB24;
    target->data[0] = data;
    target->linesize[0] = stride;
    target->buf[0] = av_buffer_create(
        data, static_cast<size_t>(stride) * static_cast<size_t>(m_height), keepMemory, nullptr, 0);
    return target->buf[0] ? sws_scale_frame(m_context.get(), target.get(), &source)
                          : AVERROR(ENOMEM);
}
