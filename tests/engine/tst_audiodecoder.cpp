#include "audiodecoder.h"
#include "clips.h"
#include "mediareader.h"
#include "mediasource.h"

#include <QTest>

class TestAudioDecoder : public QObject {
    Q_OBJECT

    /// Seconds of sound stored from the whole clip.
    static double decoded(MediaSource& source)
    {
        MediaReader reader(&source);
        if (reader.open() < 0) {
            return -1.0;
        }
        source.outputChannels = source.channels;
        source.videoUnused = true; // frees what is not looked at here
        AudioDecoder decoder(source);
        int stored = 0;
        const auto decodeQueued = [&] { // and what the codec still holds
            for (int last = 1; last > 0 || !source.audioPackets.isEmpty(); stored += last) {
                last = qMax(decoder.decodeNext(), 0);
            }
        };
        while (reader.readPackets(1) >= 0) {
            decodeQueued();
        }
        (void)source.audioPackets.putEndOfStream();
        decodeQueued();
        return double(stored) / source.sampleRate;
    }

private Q_SLOTS:
    void everySampleIsDecoded()
    {
        // mpeg2.mpg starts half a second late.
        for (const char* name :
            { "mpeg2.mpg", "soundonly.mp4", "vp9.webm", "prores.mov", "wmv2.wmv", "flv1.flv" }) {
            MediaSource source(clip(name).path);
            const double seconds = decoded(source);
            const double off = seconds - clip(name).seconds;
            QVERIFY2(qAbs(off) < 0.1, qPrintable(QString("%1: %2").arg(name).arg(off)));
            const double late = source.audioFrames.endTime() - seconds;
            QVERIFY(qAbs(late) < (name == QString("mpeg2.mpg") ? 0.6 : 0.1));
        }
    }
};

QTEST_GUILESS_MAIN(TestAudioDecoder)
#include "tst_audiodecoder.moc"
