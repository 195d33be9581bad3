#include "scopedlock.h"
#include "videoframecache.h"

#include <QTest>

namespace {

constexpr int pictureBytes = 64;
constexpr int64_t smallestBudget = 253440000; // bytes

// Picture i starts at i seconds, lasts one and is filled with i.
bool put(VideoFrameCache& cache, int index)
{
    auto picture = cache.obtain(pictureBytes, 4, 4);
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
        const std::tuple<int64_t, int64_t, float, int, int> rows[] = {
            { 0, 6220800, 0.7F, 40, 28 }, // the least
            { 8000000000, 6220800, 0.8F, 1273, 1018 }, // more than 32 bits
            { 0, 300000000, 0.8F, 2, 0 }, // for a picture larger than all of it
            { 0, 0, 0.0F, 253440000, 0 } // for a size not known
        };
        for (const auto& [cacheBytes, frameBytes, share, capacity, trailing] : rows) {
            VideoFrameCache cache;
            cache.setCacheSize(cacheBytes, frameBytes, share);
            QCOMPARE(cache.capacity(), capacity);
            QCOMPARE(cache.trailing(), trailing);
        }
    }

    void frameAt_isTheLastThatStartsByThen()
    {
        VideoFrameCache cache;
        QCOMPARE(shownAt(cache, 1.0), -1);
        for (const int time : { 3, 9, 4, 4, 7 }) { // some at the same time, some out of order
            QVERIFY(put(cache, time));
        }
        for (const auto& [time, shown] : { std::pair(0.0, 3), std::pair(3.0, 3), std::pair(4.0, 4),
                 std::pair(6.9, 4), std::pair(7.5, 7), std::pair(9.0, 9), std::pair(99.0, 9) }) {
            QCOMPARE(shownAt(cache, time), shown);
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

    void whatTheWindowShowsIsNotWrittenOver()
    {
        VideoFrameCache cache;
        cache.setCacheSize(0, smallestBudget / 4, 0.25F);
        QCOMPARE(fill(cache), 4);
        std::shared_ptr<uint8_t[]> shown;
        {
            const ScopedLock lock(cache.mutex());
            shown = cache.frameAt(3.0)->data;
        }
        const uint8_t* const itsMemory = shown.get();
        const auto isUsedByTheNext = [&](int pictures) {
            bool isUsed = false;
            const int first = static_cast<int>(cache.endTime());
            for (int next = first; next < first + pictures && shownAt(cache, next) >= 0; ++next) {
                static_cast<void>(put(cache, next));
                const ScopedLock lock(cache.mutex());
                isUsed = isUsed || cache.frameAt(next)->data.get() == itsMemory;
            }
            return isUsed;
        };
        QVERIFY(!isUsedByTheNext(20));
        QCOMPARE(cache.endTime(), 24.0);
        QCOMPARE(shown[pictureBytes - 1], uint8_t{ 3 });
        shown.reset();
        QVERIFY(isUsedByTheNext(3));
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
        cache.reset();
        QVERIFY(!isDecodedUpTo(0.0));
        cache.setEndTime(5.0);
        QCOMPARE(cache.endTime(), 0.0); // nothing is cached
    }
};

QTEST_APPLESS_MAIN(TestVideoFrameCache)
#include "tst_videoframecache.moc"
