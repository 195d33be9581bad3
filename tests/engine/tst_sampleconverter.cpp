#include "audioframebuffer.h"
#include "sampleconverter.h"

#include <QTest>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/frame.h>
#include <libavutil/samplefmt.h>
}

class TestSampleConverter : public QObject {
    Q_OBJECT

    static constexpr int outputRate = 48000;

    /// A tenth of a second at half of the format's range in every channel.
    static AvPtr<AVFrame> sound(AVSampleFormat format, int channels, int rate)
    {
        AvPtr<AVFrame> frame = makeFrame();
        frame->format = format;
        frame->sample_rate = rate;
        frame->nb_samples = rate / 10;
        av_channel_layout_default(&frame->ch_layout, channels); // for 9 there is none
        if (av_frame_get_buffer(frame.get(), 0) < 0) {
            qFatal("No memory for a frame");
        }
        const int width = av_get_bytes_per_sample(format);
        const std::map<int, const char*> halves{ { 1, "c0" }, { 2, "0040" }, { 4, "0000003f" } };
        const QByteArray sample = QByteArray::fromHex(halves.at(width));
        const bool planar = av_sample_fmt_is_planar(format);
        const QByteArray plane = sample.repeated(frame->nb_samples * (planar ? 1 : channels));
        for (int i = 0; i < (planar ? channels : 1); ++i) {
            std::copy(plane.begin(), plane.end(), frame->extended_data[i]);
        }
        return frame;
    }

private Q_SLOTS:
    void convert_givesTheOpenedOutput()
    {
        const std::tuple<AVSampleFormat, int, int> rows[] = { // the channels and the rate
            { AV_SAMPLE_FMT_S16, 2, outputRate }, { AV_SAMPLE_FMT_U8P, 2, outputRate },
            { AV_SAMPLE_FMT_FLTP, 2, 22050 }, { AV_SAMPLE_FMT_FLT, 6, outputRate },
            { AV_SAMPLE_FMT_S16, 1, outputRate },
            // of no known layout
            { AV_SAMPLE_FMT_FLT, 9, outputRate }, { AV_SAMPLE_FMT_S16P, 9, outputRate },
            { AV_SAMPLE_FMT_U8, 9, outputRate }
        };
        for (const auto& [format, channels, rate] : rows) {
            SampleConverter converter(2, outputRate);
            // Whatever was converted before, a frame of another kind is made into the same output.
            QVERIFY(converter.convert(*sound(AV_SAMPLE_FMT_S16P, 1, 8000), 0.0));
            const auto block = converter.convert(*sound(format, channels, rate), 2.5);
            QVERIFY(block && block->valueCount == block->sampleCount * 2 && block->time == 2.5);
            QVERIFY(qAbs(block->sampleCount - outputRate / 10) < outputRate / 500);
            const int middle = block->sampleCount / 2 * 2;
            QVERIFY(block->samples[middle] > 8000);
            QCOMPARE(block->samples[middle], block->samples[middle + 1]);
        }
    }
};

QTEST_GUILESS_MAIN(TestSampleConverter)
#include "tst_sampleconverter.moc"
