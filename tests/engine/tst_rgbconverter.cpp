#include "rgbconverter.h"
#include "videoframecache.h"

#include <QTest>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixdesc.h>
}

#include <array>
#include <cmath>

using Planes = std::array<int, 3>; // one value for each
using Rgb = std::array<int, 3>;

namespace {

constexpr int tolerance = 3; // of 255; 8-bit chroma holds no more

Planes encoded(const Rgb& rgb, double redWeight, double blueWeight, bool fullRange)
{
    const double luma =
        redWeight * rgb[0] + (1.0 - redWeight - blueWeight) * rgb[1] + blueWeight * rgb[2];
    const double chromaScale = (fullRange ? 255.0 : 224.0) / 255.0 / 2.0;
    const auto rounded = [](double value) { return static_cast<int>(std::lround(value)); };
    return { rounded(fullRange ? luma : 16 + luma * 219.0 / 255.0),
        rounded(128 + (rgb[2] - luma) / (1.0 - blueWeight) * chromaScale),
        rounded(128 + (rgb[0] - luma) / (1.0 - redWeight) * chromaScale) };
}

AvPtr<AVFrame> flatPicture(int width, int height, AVPixelFormat format, const Planes& values)
{
    AvPtr<AVFrame> frame = makeFrame();
    frame->width = width;
    frame->height = height;
    frame->format = format;
    if (av_frame_get_buffer(frame.get(), 0) < 0) {
        qFatal("out of memory");
    }
    for (int plane = 0; plane < av_pix_fmt_count_planes(format); ++plane) {
        const int shift = plane == 0 ? 0 : av_pix_fmt_desc_get(format)->log2_chroma_h;
        std::fill_n(frame->data[plane],
            ptrdiff_t{ frame->linesize[plane] } * AV_CEIL_RSHIFT(height, shift), values[plane]);
    }
    return frame;
}

/// Empty where every pixel of the converted picture is of that colour.
QByteArray wrongPixel(
    RgbConverter& converter, int width, int height, const AVFrame& source, const Rgb& colour)
{
    DecodedVideoFrame target(converter.pictureBytes(), width, height);
    std::fill_n(target.data.get(), target.size, uint8_t{ 0xdb }); // far from any colour here
    if (converter.convert(source, target) < 0) {
        return "not converted";
    }
    for (int y = 0; y < height; ++y) {
        for (int i = 0; i < width * 3; ++i) {
            const int value = target.data[ptrdiff_t{ y } * converter.rowBytes() + i];
            if (std::abs(value - colour[i % 3]) > tolerance) {
                return QString::asprintf("%dx%d %s: x %d y %d %c is %d", source.width,
                    source.height, av_get_pix_fmt_name(static_cast<AVPixelFormat>(source.format)),
                    i / 3, y, "RGB"[i % 3], value)
                    .toLatin1();
            }
        }
    }
    return {};
}

} // namespace

class TestRgbConverter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void coloursAreThoseOfTheTags_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<int>("matrix");
        QTest::addColumn<int>("range");
        QTest::addColumn<double>("redWeight"); // and what the picture is encoded with
        QTest::addColumn<double>("blueWeight");
        QTest::addColumn<bool>("fullRange");
        const int yuv = AV_PIX_FMT_YUV420P;
        const int unknown = AVCOL_SPC_UNSPECIFIED;
        const int unknownRange = AVCOL_RANGE_UNSPECIFIED;
        const int tv = AVCOL_RANGE_MPEG;
        const int pc = AVCOL_RANGE_JPEG;
        const int bt601 = AVCOL_SPC_SMPTE170M;
        const int bt709 = AVCOL_SPC_BT709;
        QTest::newRow("BT.601 limited") << yuv << bt601 << tv << 0.299 << 0.114 << false;
        QTest::newRow("BT.601 full") << yuv << bt601 << pc << 0.299 << 0.114 << true;
        QTest::newRow("BT.709 limited") << yuv << bt709 << tv << 0.2126 << 0.0722 << false;
        QTest::newRow("BT.709 full") << yuv << bt709 << pc << 0.2126 << 0.0722 << true;
        QTest::newRow("BT.709 alone") << yuv << bt709 << unknownRange << 0.2126 << 0.0722 << false;
        QTest::newRow("untagged") << yuv << unknown << unknownRange << 0.299 << 0.114 << false;
        QTest::newRow("full by its format")
            << int(AV_PIX_FMT_YUVJ444P) << unknown << unknownRange << 0.299 << 0.114 << true;
    }
    void coloursAreThoseOfTheTags()
    {
        QFETCH(const int, format);
        QFETCH(const int, matrix);
        QFETCH(const int, range);
        QFETCH(const double, redWeight);
        QFETCH(const double, blueWeight);
        QFETCH(const bool, fullRange);
        for (const Rgb& colour : { Rgb{ 200, 60, 40 }, Rgb{ 30, 180, 90 }, Rgb{ 60, 40, 220 },
                 Rgb{ 20, 20, 20 }, Rgb{ 255, 255, 255 }, Rgb{ 0, 0, 0 } }) {
            RgbConverter converter(64, 32);
            QVERIFY(converter.open(format) >= 0);
            const AvPtr<AVFrame> source = flatPicture(64, 32, static_cast<AVPixelFormat>(format),
                encoded(colour, redWeight, blueWeight, fullRange));
            source->colorspace = static_cast<AVColorSpace>(matrix);
            source->color_range = static_cast<AVColorRange>(range);
            QCOMPARE(wrongPixel(converter, 64, 32, *source, colour), QByteArray());
        }
    }

    // The last columns of odd widths, and pictures unlike the first, read by that one's planes.
    void everyPixelIsWrittenWhateverThePicture_data()
    {
        QTest::addColumn<int>("width");
        for (const int width : { 2, 31, 32, 33, 320, 638, 1366 }) {
            QTest::newRow(qPrintable(QString::number(width))) << width;
        }
    }
    void everyPixelIsWrittenWhateverThePicture()
    {
        QFETCH(const int, width);
        constexpr int height = 90;
        const Planes yuv = encoded({ 40, 170, 110 }, 0.299, 0.114, false);
        RgbConverter converter(width, height);
        QVERIFY(converter.open(AV_PIX_FMT_YUV420P) >= 0);
        QVERIFY(converter.rowBytes() % 4 == 0 && converter.rowBytes() - width * 3 < 4);
        QCOMPARE(converter.pictureBytes(), converter.rowBytes() * height);
        for (const auto& [w, h] : { std::pair(width, height), std::pair(width / 2, 45),
                 std::pair(width + 7, 201), std::pair(8, 720), std::pair(width, height) }) {
            for (const AVPixelFormat format : { AV_PIX_FMT_YUV420P, AV_PIX_FMT_YUV444P }) {
                const AvPtr<AVFrame> source = flatPicture(w, h, format, yuv);
                QCOMPARE(
                    wrongPixel(converter, width, height, *source, { 40, 170, 110 }), QByteArray());
            }
            const AvPtr<AVFrame> rgb = flatPicture(w, h, AV_PIX_FMT_GBRP, { 170, 110, 40 });
            QCOMPARE(wrongPixel(converter, width, height, *rgb, { 40, 170, 110 }), QByteArray());
            // Grey is full range where nothing else is told; scaled, it was taken for limited.
            const AvPtr<AVFrame> grey = flatPicture(w, h, AV_PIX_FMT_GRAY8, { 70 });
            QCOMPARE(wrongPixel(converter, width, height, *grey, { 70, 70, 70 }), QByteArray());
        }
    }

    void whatCannotBeConvertedIsRefusedAndEndsNothing()
    {
        QVERIFY(RgbConverter(320, 180).open(AV_PIX_FMT_VAAPI) < 0);
        RgbConverter converter(320, 180);
        QVERIFY(converter.open(AV_PIX_FMT_NONE) >= 0); // known with the first picture
        const AvPtr<AVFrame> source = flatPicture(320, 180, AV_PIX_FMT_GRAY8, { 20 });
        source->format = AV_PIX_FMT_VAAPI;
        QCOMPARE(wrongPixel(converter, 320, 180, *source, {}), QByteArray("not converted"));
        source->format = AV_PIX_FMT_GRAY8;
        QCOMPARE(wrongPixel(converter, 320, 180, *source, { 20, 20, 20 }), QByteArray());
    }
};

QTEST_APPLESS_MAIN(TestRgbConverter)
#include "tst_rgbconverter.moc"
