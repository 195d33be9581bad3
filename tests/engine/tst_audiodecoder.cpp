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

    /// Decodes what is queued and what the codec still holds; the sample frames stored.
    int decodeQueued()
    {
        int stored = 0;
        for (int last = 1; last > 0 || !source.audioPackets.isEmpty(); stored += last) {
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
    void everySampleIsDecodedButOfDamagedPackets()
    {
        // mpeg2.mpg starts half a second late.
        for (const char* name :
            { "mpeg2.mpg", "soundonly.mp4", "vp9.webm", "prores.mov", "wmv2.wmv", "flv1.flv" }) {
            Sound sound(name);
            const double decoded = double(sound.decodeToEnd()) / sound.source.sampleRate;
            const double off = decoded - clip(name).seconds;
            QVERIFY2(qAbs(off) < 0.1, qPrintable(QString("%1: %2").arg(name).arg(off)));
            const double late = sound.source.audioFrames.endTime() - decoded;
            QVERIFY(qAbs(late) < (name == QString("mpeg2.mpg") ? 0.6 : 0.1));
        }
        Sound sound("soundonly.mp4");
        const int stored = sound.decodeToEnd(true) / sound.source.sampleRate;
        QVERIFY2(stored >= 3 && stored < 6, qPrintable(QString::number(stored)));
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
        QVERIFY(qAbs(sound.decodeToEnd() - whole) <= 2048);
        QVERIFY(!sound.source.audioFrames.discarding);
    }
};

QTEST_GUILESS_MAIN(TestAudioDecoder)
#include "tst_audiodecoder.moc"
