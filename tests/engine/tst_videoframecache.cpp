#include "scopedlock.h"
#include "videoframecache.h"

#include <QTest>

#include <cmath>
#include <random>

namespace {

constexpr double duration = 0.04; // seconds
constexpr int pictureBytes = 64;

bool put(VideoFrameCache& cache, double time)
{
    auto picture = std::make_unique<DecodedVideoFrame>(pictureBytes, 4, 4);
    std::fill_n(picture->data.get(), pictureBytes, static_cast<uint8_t>(time / duration + 0.5));
    picture->time = time;
    return cache.put(picture, duration) && !picture;
}

void fill(VideoFrameCache& cache, int first, int count)
{
    for (int i = first; i < first + count; ++i) {
        QVERIFY(put(cache, i * duration));
    }
}

/// Puts pictures from `next` on while the cache says it has room for one; the first it had none
/// for.
int fillWhileThereIsRoom(VideoFrameCache& cache, int next, double clock)
{
    while (cache.hasRoom(clock) && next < 100) {
        fill(cache, next++, 1);
    }
    return next;
}

/// Index of the picture shown at that time, -1 for none.
int shownAt(VideoFrameCache& cache, double seconds)
{
    const ScopedLock lock(cache.mutex());
    const DecodedVideoFrame* frame = cache.frameAt(seconds);
    return frame ? static_cast<int>(std::lround(frame->time / duration)) : -1;
}

/// Makes room for exactly that many pictures.
void setCapacity(VideoFrameCache& cache, int pictures, float trailingShare = 0.5F)
{
    cache.setCacheSize(0, 253440000 / pictures, trailingShare);
    QCOMPARE(cache.capacity(), pictures);
}

} // namespace

class TestVideoFrameCache : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void budget_data()
    {
        QTest::addColumn<qint64>("cacheBytes");
        QTest::addColumn<qint64>("frameBytes");
        QTest::addColumn<float>("share");
        QTest::addColumn<int>("capacity");
        QTest::addColumn<int>("trailing");
        const qint64 hd = 1920 * 1080 * 3;
        const qint64 third = 253440000 / 3;
        QTest::newRow("minimum budget")
            << qint64(100000000) << qint64(1000) << 0.5F << 253440 << 126720;
        QTest::newRow("minimum, full HD") << qint64(0) << hd << 0.7F << 40 << 28;
        QTest::newRow("just above the minimum") << qint64(256000000) << hd << 0.7F << 40 << 28;
        QTest::newRow("more than 32 bits") << qint64(8000000000) << hd << 0.8F << 1273 << 1018;
        QTest::newRow("two ahead at least") << qint64(0) << third << 1.0F << 3 << 1;
        QTest::newRow("nothing behind") << qint64(0) << hd << 0.0F << 40 << 0;
        QTest::newRow("beyond the budget") << qint64(0) << qint64(300000000) << 0.8F << 2 << 0;
        QTest::newRow("size not known") << qint64(0) << qint64(0) << 0.5F << 253440000 << 126720000;
    }
    void budget()
    {
        QFETCH(const qint64, cacheBytes);
        QFETCH(const qint64, frameBytes);
        QFETCH(const float, share);
        VideoFrameCache cache;
        cache.setCacheSize(cacheBytes, frameBytes, share);
        QTEST(cache.capacity(), "capacity");
        QTEST(cache.trailing(), "trailing");
    }

    void frameAt_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<int>("index"); // of pictures at 25, 26 and 27 times 0.04 s
        QTest::newRow("before all") << 0.5 << 25;
        QTest::newRow("inside the second") << 1.05 << 26;
        QTest::newRow("exactly the third") << 27 * duration << 27;
        QTest::newRow("a hair before it") << std::nextafter(27 * duration, 0.0) << 26;
        QTest::newRow("after all") << 9.0 << 27;
    }
    void frameAt()
    {
        QFETCH(const double, seconds);
        VideoFrameCache cache;
        QCOMPARE(shownAt(cache, seconds), -1);
        fill(cache, 25, 3);
        QTEST(shownAt(cache, seconds), "index");
    }

    void frameAt_searchEqualsScan()
    {
        std::minstd_rand random(11);
        for (size_t count = 1; count <= 40; ++count) {
            VideoFrameCache cache;
            std::vector<double> times;
            while (times.size() < count) { // some at the same time, some out of order
                times.push_back(static_cast<double>(random() % 30));
                QVERIFY(put(cache, times.back()));
            }
            std::sort(times.begin(), times.end());
            for (double t = -0.5; t < 31.0; t += 0.5) {
                size_t i = 1;
                while (i < count && times[i] <= t) {
                    ++i;
                }
                const ScopedLock lock(cache.mutex());
                QCOMPARE(cache.frameAt(t)->time, times[i - 1]);
            }
        }
    }

    void beforeAnythingIsShownItRollsUpToTheClock()
    {
        VideoFrameCache cache;
        setCapacity(cache, 10);
        const double clock = 3.5 * duration;
        QCOMPARE(fillWhileThereIsRoom(cache, 0, clock), 13);
        QCOMPARE(cache.startTime(), 3 * duration); // and the next starts after the clock
        QCOMPARE(shownAt(cache, clock), 3);
        QVERIFY(!put(cache, 13 * duration)); // from now on the trailing share decides
    }

    void onceShownItKeepsTheTrailingShare()
    {
        VideoFrameCache cache;
        setCapacity(cache, 10);
        fill(cache, 0, 10);
        for (const int head : { 0, 3, 5 }) {
            QCOMPARE(shownAt(cache, head * duration), head);
            QVERIFY(!cache.hasRoom(head * duration) && !put(cache, 10 * duration));
        }
        QCOMPARE(shownAt(cache, 8 * duration), 8); // three places further than may stay behind
        QCOMPARE(fillWhileThereIsRoom(cache, 10, 8 * duration), 13);
        QCOMPARE(cache.endTime(), 13 * duration);
        QCOMPARE(cache.byteCount(), int64_t{ 10 * pictureBytes });
        QVERIFY(cache.contains(3 * duration) && cache.contains(13 * duration));
        QVERIFY(!cache.contains(2.9 * duration) && !cache.contains(13.1 * duration));
    }

    void reset_keepsThePictureUntilALaterPut()
    {
        VideoFrameCache cache;
        fill(cache, 0, 5);
        const DecodedVideoFrame* held = nullptr;
        {
            const ScopedLock lock(cache.mutex());
            held = cache.frameAt(3 * duration);
        }
        cache.reset();
        QCOMPARE(shownAt(cache, 3 * duration), -1);
        fill(cache, 50, 1); // gives back 0 and 1
        QCOMPARE(held->data[pictureBytes - 1], uint8_t{ 3 });
        fill(cache, 51, 10);
    }

    void everyPlaceIsThereAfterAReset()
    {
        VideoFrameCache cache;
        for (const int places : { 20, 5, 30 }) { // full, then smaller, then larger
            setCapacity(cache, places);
            QCOMPARE(cache.byteCount(), int64_t{ 0 });
            QVERIFY(!cache.contains(0.0)); // an empty cache contains no time
            QCOMPARE(fillWhileThereIsRoom(cache, 0, 0.0), places);
        }
    }

    void theEndIsNeverBeforeTheNewestPicture()
    {
        VideoFrameCache cache;
        const auto isDecodedUpTo = [&cache](double seconds) {
            const ScopedLock lock(cache.mutex());
            return cache.isDecodedUpTo(seconds);
        };
        fill(cache, 10, 3);
        QVERIFY(isDecodedUpTo(12.9 * duration) && !isDecodedUpTo(13 * duration));
        cache.setEndTime(5 * duration); // the container names less than there is
        QCOMPARE(cache.endTime(), 13 * duration);
        QVERIFY(isDecodedUpTo(99.0));
        cache.setEndTime(20 * duration);
        QCOMPARE(cache.endTime(), 20 * duration);
        cache.reset();
        QVERIFY(!isDecodedUpTo(0.0));
        cache.setEndTime(5.0);
        QCOMPARE(cache.endTime(), 0.0); // nothing is cached
    }

    void whatIsDiscardedIsMemoryForTheNext()
    {
        VideoFrameCache cache;
        setCapacity(cache, 3);
        fill(cache, 0, 3);
        cache.discarding = true;
        QVERIFY(cache.hasRoom(0.0));
        fill(cache, 3, 9);
        QCOMPARE(shownAt(cache, 99.0), 2);
        const auto recycled = cache.obtain(pictureBytes, 2, 8);
        QVERIFY(recycled->data[0] >= 3 && recycled->width == 2 && recycled->height == 8);
        const auto larger = cache.obtain(2 * pictureBytes, 8, 4);
        larger->data[2 * pictureBytes - 1] = 1;
    }
};

QTEST_APPLESS_MAIN(TestVideoFrameCache)
#include "tst_videoframecache.moc"
