#include "rgbconverter.h"
#include "videoframecache.h"

#include <QTest>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixdesc.h>
}

#include <array>

using Planes = std::array<int, 3>; // one value for each
using Rgb = std::array<int, 3>;

namespace {

constexpr int tolerance = 3; // of 255; 8-bit chroma holds no more

AvPtr<AVFrame> flatPicture(QSize size, AVPixelFormat format, const Planes& values)
{
    AvPtr<AVFrame> frame = makeFrame();
    frame->width = size.width();
    frame->height = size.height();
    frame->format = format;
    if (av_frame_get_buffer(frame.get(), 0) < 0) {
        qFatal("out of memory");
    }
    for (int plane = 0; plane < av_pix_fmt_count_planes(format); ++plane) {
        const int shift = plane == 0 ? 0 : av_pix_fmt_desc_get(format)->log2_chroma_h;
        const int rows = AV_CEIL_RSHIFT(size.height(), shift);
        std::fill_n(frame->data[plane], frame->linesize[plane] * rows, values[plane]);
    }
    return frame;
}

/// Empty where every pixel of the converted picture is of that colour.
QString wrongPixel(RgbConverter& converter, QSize size, const AVFrame& source, const Rgb& colour)
{
    DecodedVideoFrame target(converter.pictureBytes(), size.width(), size.height());
    std::fill_n(target.data.get(), target.size, uint8_t{ 0xdb }); // far from any colour here
    if (converter.convert(source, target) < 0) {
        return "not converted";
    }
    for (int i = 0; i < size.width() * 3 * size.height(); ++i) {
        const int x = i % (size.width() * 3);
        const int y = i / (size.width() * 3);
        const int value = target.data[ptrdiff_t{ y } * converter.rowBytes() + x];
        if (std::abs(value - colour[x % 3]) > tolerance) {
            return QString::asprintf("at %d, %d %c is %d", x / 3, y, "RGB"[x % 3], value);
        }
    }
    return {};
}

} // namespace

class TestRgbConverter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void coloursAreThoseOfTheTags()
    {
        // clang-format off
        const std::tuple<AVPixelFormat, AVColorSpace, AVColorRange, Planes> rows[] = { // of one colour
            {AV_PIX_FMT_YUV420P, AVCOL_SPC_SMPTE170M, AVCOL_RANGE_MPEG, {102, 98, 191}},
            {AV_PIX_FMT_YUV420P, AVCOL_SPC_SMPTE170M, AVCOL_RANGE_JPEG, {100, 94, 200}},
            {AV_PIX_FMT_YUV420P, AVCOL_SPC_BT709, AVCOL_RANGE_MPEG, {92, 105, 190}},
            {AV_PIX_FMT_YUV420P, AVCOL_SPC_BT709, AVCOL_RANGE_JPEG, {88, 102, 199}},
            {AV_PIX_FMT_YUV420P, AVCOL_SPC_UNSPECIFIED, AVCOL_RANGE_UNSPECIFIED, {102, 98, 191}},
            {AV_PIX_FMT_YUVJ444P, AVCOL_SPC_UNSPECIFIED, AVCOL_RANGE_UNSPECIFIED, {100, 94, 200}},
        };
        // clang-format on
        const QSize size(64, 32);
        for (const auto& [format, matrix, range, values] : rows) {
            RgbConverter converter(size.width(), size.height());
            QVERIFY(converter.open(format) >= 0);
            const AvPtr<AVFrame> source = flatPicture(size, format, values);
            source->colorspace = matrix;
            source->color_range = range;
            QCOMPARE(wrongPixel(converter, size, *source, { 200, 60, 40 }), QString());
        }
    }

    // The last columns of odd widths, and pictures unlike the first, read by that one's planes.
    void everyPixelIsWrittenWhateverThePicture()
    {
        // clang-format off
        const std::tuple<AVPixelFormat, Planes, Rgb> pictures[] = {
            {AV_PIX_FMT_YUV420P, {123, 121, 75}, {40, 170, 110}},
            {AV_PIX_FMT_YUV444P, {123, 121, 75}, {40, 170, 110}},
            {AV_PIX_FMT_GBRP, {170, 110, 40}, {40, 170, 110}},
            {AV_PIX_FMT_GRAY8, {70}, {70, 70, 70}}, // scaled it was taken for one of limited range
        };
        // clang-format on
        for (const int width : { 2, 31, 32, 36, 320, 638, 1366 }) {
            const QSize size(width, 90);
            RgbConverter converter(size.width(), size.height());
            QVERIFY(converter.open(AV_PIX_FMT_YUV420P) >= 0);
            QVERIFY(converter.rowBytes() % 4 == 0 && converter.rowBytes() - width * 3 < 4);
            for (const QSize& given :
                { size, QSize(width / 2, 45), QSize(width + 7, 201), QSize(8, 720), size }) {
                for (const auto& [format, values, rgb] : pictures) {
                    const AvPtr<AVFrame> source = flatPicture(given, format, values);
                    QCOMPARE(wrongPixel(converter, size, *source, rgb), QString());
                }
            }
        }
    }
};

QTEST_APPLESS_MAIN(TestRgbConverter)
#include "tst_rgbconverter.moc"
