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
QString wrongPixel(
    RgbConverter& converter, int width, int height, const AVFrame& source, const Rgb& colour)
{
    DecodedVideoFrame target(converter.pictureBytes(), width, height);
    std::fill_n(target.data.get(), target.size, uint8_t{ 0xdb }); // far from any colour here
    if (converter.convert(source, target) < 0) {
        return "not converted";
    }
    for (int i = 0; i < width * 3 * height; ++i) {
        const int x = i % (width * 3);
        const int y = i / (width * 3);
        const int value = target.data[ptrdiff_t{ y } * converter.rowBytes() + x];
        if (std::abs(value - colour[x % 3]) > tolerance) {
            return QString::asprintf("%dx%d, format %d: at %d, %d %c is %d", source.width,
                source.height, source.format, x / 3, y, "RGB"[x % 3], value);
        }
    }
    return {};
}

struct Tags {
    AVPixelFormat format;
    AVColorSpace matrix;
    AVColorRange range;
    double redWeight; // and what the picture is encoded with
    double blueWeight;
    bool fullRange;
};

} // namespace

class TestRgbConverter : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void coloursAreThoseOfTheTags()
    {
        const AVPixelFormat yuv = AV_PIX_FMT_YUV420P;
        for (const Tags& tags :
            { Tags{ yuv, AVCOL_SPC_SMPTE170M, AVCOL_RANGE_MPEG, 0.299, 0.114, false },
                Tags{ yuv, AVCOL_SPC_SMPTE170M, AVCOL_RANGE_JPEG, 0.299, 0.114, true },
                Tags{ yuv, AVCOL_SPC_BT709, AVCOL_RANGE_MPEG, 0.2126, 0.0722, false },
                Tags{ yuv, AVCOL_SPC_BT709, AVCOL_RANGE_JPEG, 0.2126, 0.0722, true },
                Tags{ yuv, AVCOL_SPC_BT709, AVCOL_RANGE_UNSPECIFIED, 0.2126, 0.0722, false },
                Tags{ yuv, AVCOL_SPC_UNSPECIFIED, AVCOL_RANGE_UNSPECIFIED, 0.299, 0.114, false },
                Tags{ AV_PIX_FMT_YUVJ444P, AVCOL_SPC_UNSPECIFIED, AVCOL_RANGE_UNSPECIFIED, 0.299,
                    0.114, true } }) {
            for (const Rgb& colour : { Rgb{ 200, 60, 40 }, Rgb{ 30, 180, 90 }, Rgb{ 60, 40, 220 },
                     Rgb{ 20, 20, 20 }, Rgb{ 255, 255, 255 } }) {
                RgbConverter converter(64, 32);
                QVERIFY(converter.open(tags.format) >= 0);
                const AvPtr<AVFrame> source = flatPicture(64, 32, tags.format,
                    encoded(colour, tags.redWeight, tags.blueWeight, tags.fullRange));
                source->colorspace = tags.matrix;
                source->color_range = tags.range;
                QCOMPARE(wrongPixel(converter, 64, 32, *source, colour), QString());
            }
        }
    }

    // The last columns of odd widths, and pictures unlike the first, read by that one's planes.
    void everyPixelIsWrittenWhateverThePicture()
    {
        const Rgb colour{ 40, 170, 110 };
        const Planes yuv = encoded(colour, 0.299, 0.114, false);
        const int height = 90;
        for (const int width : { 2, 31, 32, 36, 320, 638, 1366 }) {
            RgbConverter converter(width, height);
            QVERIFY(converter.open(AV_PIX_FMT_YUV420P) >= 0);
            QVERIFY(converter.rowBytes() % 4 == 0 && converter.rowBytes() - width * 3 < 4);
            for (const auto& [w, h] : { std::pair(width, height), std::pair(width / 2, 45),
                     std::pair(width + 7, 201), std::pair(8, 720), std::pair(width, height) }) {
                const auto shows = [&, w = w, h = h](
                                       AVPixelFormat format, const Planes& values, const Rgb& rgb) {
                    const AvPtr<AVFrame> source = flatPicture(w, h, format, values);
                    return wrongPixel(converter, width, height, *source, rgb);
                };
                QCOMPARE(shows(AV_PIX_FMT_YUV420P, yuv, colour), QString());
                QCOMPARE(shows(AV_PIX_FMT_YUV444P, yuv, colour), QString());
                QCOMPARE(shows(AV_PIX_FMT_GBRP, { 170, 110, 40 }, colour), QString());
                // Scaled grey, which has the full range by itself, was taken for limited.
                QCOMPARE(shows(AV_PIX_FMT_GRAY8, { 70 }, { 70, 70, 70 }), QString());
            }
        }
    }

    void whatCannotBeConvertedIsRefusedAndEndsNothing()
    {
        RgbConverter converter(320, 180);
        QVERIFY(converter.open(AV_PIX_FMT_VAAPI) < 0);
        QVERIFY(converter.open(AV_PIX_FMT_NONE) >= 0); // known with the first picture
        const AvPtr<AVFrame> source = flatPicture(320, 180, AV_PIX_FMT_GRAY8, { 20 });
        source->format = AV_PIX_FMT_VAAPI;
        QCOMPARE(wrongPixel(converter, 320, 180, *source, {}), "not converted");
        source->format = AV_PIX_FMT_GRAY8;
        QCOMPARE(wrongPixel(converter, 320, 180, *source, { 20, 20, 20 }), QString());
    }
};

QTEST_APPLESS_MAIN(TestRgbConverter)
#include "tst_rgbconverter.moc"
