#include "audiodecoder.h"
#include "audiooutput.h"
#include "clips.h"
#include "mediareader.h"
#include "mediasource.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <array>
#include <random>
#include <thread>

namespace {

constexpr int limitMs = 20000;

/// The sound half of the player: reader, decoder and output callback, each a plain thread.
class SoundThreads {
public:
    explicit SoundThreads(const QString& path)
        : source(path)
        , m_reader(&source)
    {
        if (m_reader.open() < 0) {
            qFatal("%s does not open", qPrintable(path));
        }
        source.outputChannels = source.channels;
        m_threads[0] = std::thread([this] { read(); });
        m_threads[1] = std::thread([this] { decode(); });
        m_threads[2] = std::thread([this] { play(); });
    }

    ~SoundThreads()
    {
        source.abortRequested = true;
        for (std::thread& thread : m_threads) {
            thread.join();
        }
    }

    MediaSource source;
    std::atomic<int> loudBlocks{ 0 };
    std::atomic<int> spoiltBlocks{ 0 }; // which wrote beyond their end

private:
    void read()
    {
        while (!source.abortRequested) {
            if (source.seekRequested) {
                const double target = source.seekTime;
                source.audioFrames.discarding = true;
                source.audioPackets.flush();
                source.audioFrames.clear();
                (void)m_reader.seek(target);
                source.seekRequested = false;
                source.resetClock(target);
            }
            if (m_reader.readPackets(10) < 0) {
                QThread::msleep(1);
            }
        }
    }

    void decode()
    {
        AudioDecoder decoder(source);
        while (!source.abortRequested) {
            (void)decoder.decodeNext();
        }
    }

    void play()
    {
        constexpr int blockFrames = 300;
        constexpr int16_t untouched = 12345;
        const int values = blockFrames * source.outputChannels;
        std::vector<int16_t> out(values + 1);
        while (!source.abortRequested) {
            out.back() = untouched;
            fillOutput(source, out.data(), blockFrames);
            spoiltBlocks += out.back() != untouched ? 1 : 0;
            loudBlocks +=
                std::any_of(out.begin(), out.end() - 1, [](int16_t v) { return v > 500; }) ? 1 : 0;
            QThread::usleep(500);
        }
    }

    MediaReader m_reader;
    std::array<std::thread, 3> m_threads;
};

} // namespace

class TestAudioThreads : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyRequestAtAnyTime()
    {
        SoundThreads sound(clip("soundonly.mp4").path);
        MediaSource& source = sound.source;
        std::minstd_rand random(7);
        const std::array<int, 6> slices{ -5, 0, 1, 2400, 60000, 2000000000 };
        for (int i = 0; i < 600; ++i) {
            const int kind = int(random() % 5);
            if (kind == 0) {
                source.playing = !source.playing;
            } else if (kind == 1) {
                source.clock.speed = i % 2 ? 1.0 : 0.5;
                source.resetClock(double(random() % 6));
            } else if (kind == 2) {
                source.seekTime = double(random() % 6);
                source.seekRequested = true;
            } else {
                source.scrubForward = i % 2 == 0;
                source.audioResyncRequested = true;
                source.scrubSampleCount = slices[random() % slices.size()];
                source.scrubRequested.store(true, std::memory_order_release);
            }
            QThread::msleep(1);
        }
        source.playing = false;
        source.scrubSampleCount = 4800;
        source.scrubRequested = true;
        QTRY_VERIFY_WITH_TIMEOUT(!source.scrubRequested, limitMs);
        source.seekTime = 2.0;
        source.seekRequested = true;
        QTRY_VERIFY_WITH_TIMEOUT(
            !source.seekRequested && source.audioFrames.endTime() > 2.5, limitMs);
        source.clock.speed = 1.0;
        source.playing = true;
        const int before = sound.loudBlocks;
        QTRY_VERIFY_WITH_TIMEOUT(sound.loudBlocks > before, limitMs);
        QCOMPARE(sound.spoiltBlocks.load(), 0);
    }

    // Hours of sound without a picture were decoded at once and kept.
    void soundAloneStaysWithinAMinuteOfTheClock()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("long.mkv");
        QCOMPARE(QProcess::execute("ffmpeg",
                     { "-loglevel", "error", "-f", "lavfi", "-i",
                         "sine=duration=300:sample_rate=8000", "-c:a", "pcm_s16le", path }),
            0);
        SoundThreads sound(path);
        MediaSource& source = sound.source;
        const auto kept = [&source] {
            return double(source.audioFrames.totalValues()) / source.sampleRate;
        };
        QTRY_VERIFY_WITH_TIMEOUT(source.audioFrames.endTime() > 60.0, limitMs);
        QTest::qWait(200);
        QVERIFY2(source.audioFrames.endTime() < 61.0, qPrintable(QString::number(kept())));

        source.resetClock(150.0); // it goes on as the clock does, and what is past is dropped
        QTRY_VERIFY_WITH_TIMEOUT(source.audioFrames.endTime() > 209.0, limitMs);
        QVERIFY2(kept() < 63.0, qPrintable(QString::number(kept())));

        source.seekTime = 0.0; // a seek ends the wait
        source.seekRequested = true;
        QTRY_VERIFY_WITH_TIMEOUT(
            !source.seekRequested && !source.audioFrames.discarding && kept() > 59.0, limitMs);
        QVERIFY(source.audioFrames.endTime() < 62.0);
    }
};

QTEST_GUILESS_MAIN(TestAudioThreads)
#include "tst_audio_threads.moc"
