#include "audiodecoder.h"
#include "audiooutput.h"
#include "clips.h"
#include "framecode.h"
#include "mediamanager.h"
#include "mediasource.h"
#include "scopedlock.h"
#include "videomanager.h"

#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTransform>

extern "C" {
#include <libavutil/cpu.h>
}

#include <array>
#include <cmath>
#include <random>
#include <thread>

namespace {

constexpr int limitMs = 20000;
constexpr int64_t twentyPlaces = 253440000 / 20; // bytes of a picture: the cache has to evict

/// The engine on plain threads, the output callback among them; whoever makes one looks pictures
/// up, as the window does.
class Engine {
public:
    explicit Engine(const QString& path)
        : source(path)
    {
        source.videoFrames.setCacheSize(0, twentyPlaces, 0.5F);
        m_threads[0] = std::thread([this] {
            m_demuxer.load(&source);
            while (!source.abortRequested) {
                source.seekRequested ? m_demuxer.seek() : QThread::msleep(1);
            }
        });
        m_threads[1] = std::thread([this] {
            if (isOpen()) {
                m_video.changeMediaSource(&source);
                m_video.stopDecoding();
            }
        });
        m_threads[2] = std::thread([this] {
            if (isOpen() && source.audioStream) {
                source.outputChannels = source.channels;
                std::thread output([this] { play(); });
                AudioDecoder decoder(source);
                while (!source.abortRequested) {
                    (void)decoder.decodeNext();
                }
                output.join();
            }
        });
    }

    ~Engine()
    {
        source.abortRequested = true;
        for (std::thread& thread : m_threads) {
            thread.join();
        }
        m_demuxer.unload();
    }

    /// Number of the picture shown at that time, once it is final; 0 before. -1 where a picture is
    /// not the one that its time says.
    int shownAt(double seconds)
    {
        const ScopedLock lock(source.videoFrames.mutex());
        const DecodedVideoFrame* frame = source.videoFrames.frameAt(seconds);
        if (!frame) {
            return 0;
        }
        const QImage stored(frame->data.get(), frame->width, frame->height,
            frame->size / frame->height, QImage::Format_RGB888);
        const auto turn = QTransform().rotate(90 * source.turn.quarters);
        const int number = framecode::read(stored.transformed(turn));
        const long expected = std::lround(std::max(frame->time, 0.0) * source.rate()) + 1;
        if (number != expected) {
            return -1;
        }
        return source.videoFrames.isDecodedUpTo(seconds) ? number : 0;
    }

    void seek(double seconds, double reach = 0.0)
    {
        source.seekReach = reach;
        source.seekTime = seconds;
        source.seekRequested = true;
    }

    bool hasLanded() const
    {
        return !source.seekRequested && source.landing.verdict() != SeekLanding::Verdict::Pending;
    }

    MediaSource source;
    std::atomic<int> loudBlocks{ 0 };

private:
    bool isOpen() const
    {
        while (!source.opened && !source.abortRequested) {
            QThread::msleep(1);
        }
        return !source.abortRequested;
    }

    void play()
    {
        constexpr int blockFrames = 300;
        std::vector<int16_t> out(
            size_t{ blockFrames } * static_cast<size_t>(source.outputChannels));
        while (!source.abortRequested) {
            fillOutput(source, out.data(), blockFrames);
            loudBlocks += *std::max_element(out.begin(), out.end()) > 500 ? 1 : 0;
            QThread::usleep(500);
        }
    }

    MediaManager m_demuxer;
    VideoManager m_video;
    std::array<std::thread, 3> m_threads;
};

} // namespace

class TestEngineThreads : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
#if defined(__SANITIZE_THREAD__)
        // The library's workers hand pictures over by atomics that the sanitizer does not see.
        av_cpu_force_count(1);
#endif
    }

    void everyPictureIsTheOneItsTimeSays()
    {
        std::minstd_rand random(3);
        for (const char* name : { "opengop.mp4", "mpeg4.avi", "rate23976.mkv", "longgop.mkv" }) {
            Engine engine(clip(name).path);
            const auto timeOf = [name](
                                    int frame) { return (frame - 1) / clip(name).rate + 0.0001; };
            // No seek before: the first picture says where the file starts.
            QTRY_COMPARE_WITH_TIMEOUT(engine.shownAt(0.0001), 1, limitMs);
            engine.source.clock.speed = 4.0;
            for (int i = 0; i < 20; ++i) {
                const int frame = static_cast<int>(random()) % clip(name).frameCount + 1;
                const double target = timeOf(frame);
                const double step = 1.0 / clip(name).rate;
                engine.seek(target, i % 3 * 5 * step);
                int shown = 0;
                const auto isThere = [&] { // or wrong already
                    shown = engine.source.seekRequested ? 0 : engine.shownAt(target);
                    return shown == frame || shown < 0;
                };
                // Somewhere on the way more is asked for.
                for (int look = 0; look < limitMs && !engine.hasLanded(); ++look) {
                    QThread::usleep(100);
                }
                QThread::usleep(random() % 3000);
                engine.source.kept.extend(target - 40 * step, 12 * step);
                QTRY_VERIFY_WITH_TIMEOUT(isThere(), limitMs);
                QCOMPARE(shown, frame);
                for (int behind = frame; behind > 0; --behind) { // and no hole
                    const int found = engine.shownAt(timeOf(behind));
                    QVERIFY(found == behind || timeOf(behind) < engine.source.cachedStartTime());
                }
                engine.source.playing = true;
                for (int look = 0; look < 50; ++look) {
                    QVERIFY(engine.shownAt(engine.source.clockTime(true)) >= 0);
                    QThread::usleep(500);
                }
                engine.source.playing = false;
            }
        }
    }

    void opensAndClosesAtAnyMoment()
    {
        std::minstd_rand random(50);
        for (int i = 0; i < 50; ++i) {
            Engine engine(allClips()[i % allClips().size()].path);
            QThread::msleep(random() % 40);
            if (engine.shownAt(0.0001) == 1) {
                engine.seek(static_cast<double>(random() % 4000) / 1000.0);
                QThread::msleep(random() % 20);
            }
            QVERIFY(engine.shownAt(1.0) >= 0);
        }
    }

    void soundTakesEveryRequestAtAnyTime()
    {
        Engine engine(clip("soundonly.mp4").path);
        MediaSource& source = engine.source;
        QTRY_VERIFY_WITH_TIMEOUT(source.opened, limitMs);
        std::minstd_rand random(7);
        const std::array<int, 6> slices{ -5, 0, 1, 2400, 60000, 2000000000 };
        for (int i = 0; i < 600; ++i) {
            const auto kind = random() % 5;
            if (kind == 0) {
                source.playing = !source.playing;
            } else if (kind == 1) {
                source.clock.speed = i % 2 ? 1.0 : 0.5;
                source.resetClock(double(random() % 6));
            } else if (kind == 2) {
                engine.seek(double(random() % 6));
            } else {
                source.scrubForward = i % 2 == 0;
                source.audioResyncRequested = true;
                source.scrubSampleCount = slices[random() % slices.size()];
                source.scrubRequested.store(true, std::memory_order_release);
            }
            QThread::msleep(1);
        }
        source.playing = false;
        engine.seek(2.0);
        QTRY_VERIFY_WITH_TIMEOUT(
            !source.seekRequested && source.audioFrames.endTime() > 2.5, limitMs);
        source.clock.speed = 1.0;
        source.playing = true;
        const int before = engine.loudBlocks;
        QTRY_VERIFY_WITH_TIMEOUT(engine.loudBlocks > before, limitMs);
    }

    // Hours of sound without a picture were decoded at once and kept.
    void soundAloneStaysWithinAMinuteOfTheClock()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("long.mkv");
        const QString sine = "-loglevel error -f lavfi -i sine=duration=300:sample_rate=8000 ";
        QCOMPARE(QProcess::execute("ffmpeg", (sine + "-c:a pcm_s16le " + path).split(' ')), 0);
        Engine engine(path);
        MediaSource& source = engine.source;
        const auto kept = [&source] {
            return double(source.audioFrames.totalValues()) / source.sampleRate;
        };
        QTRY_VERIFY_WITH_TIMEOUT(source.audioFrames.endTime() > 60.0, limitMs);
        QTest::qWait(200);
        QVERIFY2(source.audioFrames.endTime() < 61.0, qPrintable(QString::number(kept())));

        source.resetClock(150.0); // it goes on as the clock does, and what is past is dropped
        QTRY_VERIFY_WITH_TIMEOUT(source.audioFrames.endTime() > 209.0, limitMs);
        QVERIFY2(kept() < 63.0, qPrintable(QString::number(kept())));

        engine.seek(0.0); // which ends the wait
        QTRY_VERIFY_WITH_TIMEOUT(
            !source.seekRequested && !source.audioFrames.discarding && kept() > 59.0, limitMs);
        QVERIFY(source.audioFrames.endTime() < 62.0);
    }
};

QTEST_GUILESS_MAIN(TestEngineThreads)
#include "tst_engine_threads.moc"
