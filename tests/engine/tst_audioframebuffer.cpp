#include "audioframebuffer.h"

#include <QTest>

namespace {

constexpr int rate = 1000; // Hz
constexpr int blockFrames = 50;

/// Sample frame i of the block holds `first` + i.
std::unique_ptr<DecodedAudioFrame> block(double time, int first)
{
    auto made = std::make_unique<DecodedAudioFrame>(blockFrames, blockFrames, time);
    for (int i = 0; i < blockFrames; ++i) {
        made->samples[i] = static_cast<int16_t>(first + i);
    }
    return made;
}

QVector<int16_t> readSound(AudioFrameBuffer& buffer, int count, double time, double gain = 1.0)
{
    QVector<int16_t> out(count, -1);
    return buffer.read(out.data(), count, 1, rate, time, gain) == count ? out : QVector<int16_t>();
}

} // namespace

class TestAudioFrameBuffer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void read_startsAtTheSampleForTheTime()
    {
        const std::tuple<double, int, int> rows[] = { // first sample, how many before silence
            { -5.0, 100, 150 }, { 0.0099, 100, 150 }, // early, and late by less than a hundredth
            { 0.0205, 120, 130 }, { 0.05, 200, 100 }, { 0.1305, 330, 20 }, { 30000.0, 0, 0 }
        };
        for (const auto& [time, first, sounding] : rows) {
            AudioFrameBuffer buffer;
            for (int i = 0; i < 3; ++i) {
                buffer.put(block(i * 0.05, 100 * (i + 1)), rate, 0.0);
            }
            const auto sound = readSound(buffer, 200, time);
            QVERIFY2(sound.value(0) == first && sound.count(0) == 200 - sounding,
                qPrintable(QString::number(time)));
            // Sound that comes after the silence is played.
            buffer.put(block(time + 0.2, 700), rate, 0.0);
            QCOMPARE(int(readSound(buffer, 1, time + 0.2)[0]), 700);
            buffer.resetReadPosition();
            QCOMPARE(int(readSound(buffer, 1, 0.0)[0]), 100);
        }
    }

    void read_limitsTheGain()
    {
        AudioFrameBuffer buffer;
        auto loud = block(0.0, 0);
        loud->samples[0] = 30000;
        loud->samples[1] = -30000;
        loud->samples[2] = -5;
        buffer.put(std::move(loud), rate, 0.0);
        QCOMPARE(readSound(buffer, 3, 0.0, 1.5), (QVector<int16_t>{ 32767, -32768, -7 }));
    }

    // The callback went on reading a block that was freed, some seconds into half speed.
    void put_whichDropsTheBlockBeingReadForgetsThePosition()
    {
        AudioFrameBuffer buffer;
        buffer.put(block(0.0, 100), rate, 0.0);
        buffer.put(block(0.05, 200), rate, 0.0);
        QCOMPARE(int(readSound(buffer, 10, 0.0)[9]), 109);
        buffer.put(block(0.1, 300), rate, 1.5);
        QCOMPARE(int(readSound(buffer, 1, 0.1)[0]), 300);
        QCOMPARE(int(readSound(buffer, 1, 0.101)[0]), 301);
    }

    void put_dropsOneOldBlockACallAndTakesNoneWhileDiscarding()
    {
        AudioFrameBuffer buffer;
        for (int i = 0; i < 4; ++i) {
            buffer.put(block(i, 0), rate, 0.0);
        }
        buffer.put(block(4.0, 0), rate, 99.0);
        QCOMPARE(buffer.frameCount(), 4);
        QCOMPARE(buffer.totalValues(), 4 * blockFrames);
        QCOMPARE(buffer.endTime(), 4.05);
        buffer.discarding = true;
        buffer.clear();
        buffer.put(block(6.0, 0), rate, 0.0);
        QVERIFY(buffer.discarding);
        QCOMPARE(buffer.frameCount() + buffer.totalValues(), 0);
    }
};

QTEST_GUILESS_MAIN(TestAudioFrameBuffer)
#include "tst_audioframebuffer.moc"
