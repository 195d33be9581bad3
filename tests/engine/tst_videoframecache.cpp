#include "scopedlock.h"
#include "videoframecache.h"

#include <QTest>

#include <cmath>
#include <random>

namespace {

constexpr int pictureBytes = 64;
constexpr int64_t smallestBudget = 253440000; // bytes

// Picture i starts at i seconds, lasts one and is filled with i.
bool put(VideoFrameCache& cache, int index)
{
    auto picture = std::make_unique<DecodedVideoFrame>(pictureBytes, 4, 4);
    std::fill_n(picture->data.get(), pictureBytes, static_cast<uint8_t>(index));
    picture->time = index;
    return cache.put(picture, 1.0) && !picture;
}

/// Puts pictures while the cache says that it has room for one; the first it had none for.
int fill(VideoFrameCache& cache, int next = 0, double clock = 0.0)
{
    while (cache.hasRoom(clock) && next < 100 && put(cache, next)) {
        ++next;
    }
    return next;
}

/// The picture shown at that time, -1 for none.
int shownAt(VideoFrameCache& cache, double seconds)
{
    const ScopedLock lock(cache.mutex());
    const DecodedVideoFrame* frame = cache.frameAt(seconds);
    return frame ? frame->data[pictureBytes - 1] : -1;
}

} // namespace

class TestVideoFrameCache : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void budgetIsSplitIntoPlaces()
    {
        const struct {
            const char* name;
            int64_t cacheBytes, frameBytes;
            float share;
            int capacity, trailing;
        } rows[] = { { "minimum, full HD", 0, 6220800, 0.7F, 40, 28 },
            { "just above the minimum", 256000000, 6220800, 0.7F, 40, 28 },
            { "more than 32 bits", 8000000000, 6220800, 0.8F, 1273, 1018 },
            { "two ahead at least", 0, smallestBudget / 3, 1.0F, 3, 1 },
            { "picture larger than the budget", 0, 300000000, 0.8F, 2, 0 },
            { "size not known", 0, 0, 0.0F, 253440000, 0 } };
        for (const auto& row : rows) {
            VideoFrameCache cache;
            cache.setCacheSize(row.cacheBytes, row.frameBytes, row.share);
            QVERIFY2(
                cache.capacity() == row.capacity && cache.trailing() == row.trailing, row.name);
        }
    }

    void frameAt_isTheLastThatStartsByThen()
    {
        std::minstd_rand random(11);
        for (size_t count = 0; count <= 40; ++count) {
            VideoFrameCache cache;
            std::vector<int> times;
            while (times.size() < count) { // some at the same time, some out of order
                times.push_back(static_cast<int>(random() % 30 + 1));
                QVERIFY(put(cache, times.back()));
            }
            std::sort(times.begin(), times.end());
            for (int half = 0; half < 64; ++half) { // before all, exactly, between, after all
                const double t = half / 2.0;
                size_t i = 1;
                while (i < count && times[i] <= t) {
                    ++i;
                }
                QCOMPARE(shownAt(cache, t), count > 0 ? times[i - 1] : -1);
            }
        }
    }

    void beforeAnythingIsShownItRollsUpToTheClockThenKeepsTheTrailingShare()
    {
        VideoFrameCache cache;
        cache.setCacheSize(0, smallestBudget / 10, 0.5F);
        QCOMPARE(fill(cache, 0, 3.5), 13);
        QVERIFY(cache.startTime() == 3.0 && cache.endTime() == 13.0);
        QCOMPARE(cache.byteCount(), int64_t{ 10 } * pictureBytes);
        QVERIFY(cache.contains(3.0) && cache.contains(13.0));
        QVERIFY(!cache.contains(2.9) && !cache.contains(13.1));
        for (const int head : { 3, 6, 8 }) {
            QCOMPARE(shownAt(cache, head), head);
            QVERIFY(!cache.hasRoom(head) && !put(cache, 13));
        }
        QCOMPARE(shownAt(cache, 11.0), 11); // three places further than may stay behind
        QCOMPARE(fill(cache, 13, 11.0), 16);
    }

    void reset_keepsThePictureUntilALaterPut()
    {
        VideoFrameCache cache;
        for (const int places : { 20, 5, 30 }) { // full, then smaller, then larger
            cache.setCacheSize(0, smallestBudget / places, 0.5F);
            QVERIFY(!cache.contains(0.0) && cache.byteCount() == 0); // empty: contains no time
            QCOMPARE(fill(cache), places);
            const DecodedVideoFrame* held = nullptr;
            {
                const ScopedLock lock(cache.mutex());
                held = cache.frameAt(3.0);
            }
            cache.reset();
            QCOMPARE(shownAt(cache, 3.0), -1);
            QCOMPARE(held->data[pictureBytes - 1], uint8_t{ 3 });
        }
    }

    void theEndIsNeverBeforeTheNewestPicture()
    {
        VideoFrameCache cache;
        const auto isDecodedUpTo = [&cache](double seconds) {
            const ScopedLock lock(cache.mutex());
            return cache.isDecodedUpTo(seconds);
        };
        QVERIFY(put(cache, 12));
        QVERIFY(isDecodedUpTo(12.9) && !isDecodedUpTo(13.0));
        cache.setEndTime(5.0); // the container names less than there is
        QVERIFY(cache.endTime() == 13.0 && isDecodedUpTo(99.0));
        cache.setEndTime(20.0);
        QCOMPARE(cache.endTime(), 20.0);
        cache.reset();
        QVERIFY(!isDecodedUpTo(0.0));
        cache.setEndTime(5.0);
        QCOMPARE(cache.endTime(), 0.0); // nothing is cached
    }

    void whatIsDiscardedIsMemoryForTheNext()
    {
        VideoFrameCache cache;
        cache.setCacheSize(0, smallestBudget / 3, 0.5F);
        QCOMPARE(fill(cache), 3);
        cache.discarding = true;
        QCOMPARE(fill(cache, 3), 100);
        QVERIFY(shownAt(cache, 99.0) == 2 && cache.frameCount() == 3);
        const auto recycled = cache.obtain(pictureBytes, 2, 8);
        QVERIFY(recycled->data[0] >= 3 && recycled->width == 2 && recycled->height == 8);
        QCOMPARE(cache.obtain(2 * pictureBytes, 8, 4)->size, 2 * pictureBytes);
    }
};

QTEST_APPLESS_MAIN(TestVideoFrameCache)
#include "tst_videoframecache.moc"
