#include "audiodecoder.h"
#include "clips.h"
#include "framecode.h"
#include "mediamanager.h"
#include "mediasource.h"
#include "scopedlock.h"
#include "videomanager.h"

#include <QImage>
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

/// The engine on plain threads; whoever makes one looks pictures up, as the window does.
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
                AudioDecoder decoder(source);
                while (!source.abortRequested) {
                    (void)decoder.decodeNext();
                }
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

    void seek(double seconds)
    {
        source.seekTime = seconds;
        source.seekRequested = true;
    }

    MediaSource source;

private:
    bool isOpen() const
    {
        while (!source.opened && !source.abortRequested) {
            QThread::msleep(1);
        }
        return !source.abortRequested;
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

    void everyPictureIsTheOneItsTimeSays_data()
    {
        QTest::addColumn<QString>("name");
        for (const char* name : { "opengop.mp4", "mpeg4.avi", "rate23976.mkv", "longgop.mkv" }) {
            QTest::newRow(name) << name;
        }
    }
    void everyPictureIsTheOneItsTimeSays()
    {
        QFETCH(const QString, name);
        Engine engine(clip(name).path);
        // No seek before: the first picture says where the file starts.
        QTRY_COMPARE_WITH_TIMEOUT(engine.shownAt(0.0001), 1, limitMs);
        std::minstd_rand random(3);
        engine.source.clock.speed = 4.0;
        for (int i = 0; i < 20; ++i) {
            const int frame = static_cast<int>(random()) % clip(name).frameCount + 1;
            const double target = (frame - 1) / clip(name).rate + 0.0001;
            engine.seek(target);
            int shown = 0;
            QTRY_VERIFY_WITH_TIMEOUT(
                (!engine.source.seekRequested && (shown = engine.shownAt(target)) == frame)
                    || shown < 0,
                limitMs);
            QCOMPARE(shown, frame);
            engine.source.playing = true;
            for (int look = 0; look < 50; ++look) {
                QVERIFY(engine.shownAt(engine.source.clockTime(true)) >= 0);
                QThread::usleep(500);
            }
            engine.source.playing = false;
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
        Engine last(clip("opengop.mp4").path);
        QTRY_COMPARE_WITH_TIMEOUT(last.shownAt(0.0001), 1, limitMs);
    }
};

QTEST_GUILESS_MAIN(TestEngineThreads)
#include "tst_engine_threads.moc"
