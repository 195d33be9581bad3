#include "audiodecoder.h"
#include "clips.h"
#include "mediareader.h"
#include "mediasource.h"

#include <QTest>

extern "C" {
#include <libavcodec/packet.h>
}

namespace {

/// A clip whose sound is read and decoded step by step.
struct Sound {
    explicit Sound(const QString& clipName)
        : source(clip(clipName).path)
    {
        if (reader.open() < 0) {
            qFatal("%s does not open", qPrintable(clipName));
        }
        source.outputChannels = source.channels;
        source.videoUnused = true; // frees what is not looked at here
        decoder = std::make_unique<AudioDecoder>(source);
    }

    /// Decodes what is queued; the sample frames stored.
    int decodeQueued()
    {
        int stored = 0;
        while (!source.audioPackets.isEmpty()) {
            stored += qMax(decoder->decodeNext(), 0);
        }
        for (int last = 1; last > 0; stored += last) { // what the codec still holds
            last = qMax(decoder->decodeNext(), 0);
        }
        return stored;
    }

    /// From the current position to the end marker and out of the drained codec; with `damaged`,
    /// every third packet is rubbish.
    int decodeToEnd(bool damaged = false)
    {
        int stored = 0;
        for (int packets = 1; reader.readPackets(1) >= 0; ++packets) {
            AvPtr<AVPacket> packet = source.audioPackets.get();
            if (packet && damaged && packets % 3 == 0) {
                std::fill_n(packet->data, packet->size, uint8_t{ 0xff });
            }
            (void)source.audioPackets.put(packet);
            stored += decodeQueued();
        }
        (void)source.audioPackets.putEndOfStream();
        return stored + decodeQueued();
    }

    MediaSource source;
    MediaReader reader{ &source };
    std::unique_ptr<AudioDecoder> decoder;
};

} // namespace

class TestAudioDecoder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void decodesEverySample_data()
    {
        QTest::addColumn<QString>("name");
        for (const char* name :
            { "soundonly.mp4", "vp9.webm", "mpeg2.mpg", "prores.mov", "wmv2.wmv", "flv1.flv" }) {
            QTest::newRow(name) << name;
        }
    }
    void decodesEverySample()
    {
        QFETCH(QString, name);
        Sound sound(name);
        const int rate = sound.source.sampleRate;
        const int stored = sound.decodeToEnd();
        const double seconds = clip(name).seconds;
        QVERIFY2(qAbs(stored - seconds * rate) < 0.1 * rate, qPrintable(QString::number(stored)));
        if (name != "mpeg2.mpg") { // which starts half a second late
            QVERIFY(qAbs(sound.source.audioFrames.endTime() - seconds) < 0.1);
        }
    }

    void afterTheEndOnlyAFlushMakesItTakePackets()
    {
        Sound sound("vp9.webm"); // whose sound codec delays, and so is drained
        const int whole = sound.decodeToEnd();
        QVERIFY(sound.reader.seekToStart() >= 0);
        QCOMPARE(sound.decodeToEnd(), 0);

        QVERIFY(sound.reader.seekToStart() >= 0);
        sound.source.audioFrames.discarding = true;
        sound.source.audioFrames.clear();
        QVERIFY(sound.source.audioPackets.flush());
        QCOMPARE(sound.decoder->decodeNext(), 0);
        QVERIFY(!sound.source.audioFrames.discarding);
        QCOMPARE(sound.decoder->decodedTime(), 0.0);
        QVERIFY(qAbs(sound.decodeToEnd() - whole) <= 2048);
    }

    void damagedPacketsEndNothing()
    {
        Sound sound("soundonly.mp4");
        const int whole = Sound("soundonly.mp4").decodeToEnd();
        const int stored = sound.decodeToEnd(true);
        QVERIFY2(stored > whole / 2 && stored < whole, qPrintable(QString::number(stored)));
    }
};

QTEST_GUILESS_MAIN(TestAudioDecoder)
#include "tst_audiodecoder.moc"
