// What a look at one picture, a jump and a bookmark cost as the cache, the film and the bookmarks
// grow.
#include "benchmarks.h"
#include "bookmarks.h"
#include "rig.h"
#include "samples.h"
#include "scopedlock.h"
#include "timelinewidget.h"
#include "videoframecache.h"

#include <QMutex>
#include <QPixmap>
#include <QRandomGenerator>

#include <algorithm>
#include <benchmark/benchmark.h>

namespace {

constexpr unsigned seed = 20;
constexpr double usPerSecond = 1e6;
constexpr double msPerSecond = 1e3;
constexpr int tries = 50;

// Cached pictures: small ones, which the cache takes for large ones, so that so many fill it.
constexpr int64_t cacheBytes = 1000000000;
constexpr int pictureWidth = 16;
constexpr int pictureHeight = 9;
constexpr int pictureBytes = pictureWidth * pictureHeight * 3;
constexpr int looks = 100000;

void put(VideoFrameCache& cache, int number)
{
    auto picture = cache.obtain(pictureBytes, pictureWidth, pictureHeight);
    picture->time = number;
    benchmark::DoNotOptimize(cache.put(picture, 1.0));
}

// A look at a random picture, and a new one that pushes out the oldest.
void lookIntoCache(benchmark::State& state, int pictures)
{
    VideoFrameCache cache;
    cache.setCacheSize(cacheBytes, cacheBytes / (pictures + 1), 0.5F);
    const int held = cache.capacity();
    for (int i = 0; i < held; ++i) {
        put(cache, i);
    }
    QRandomGenerator random(seed);
    for ([[maybe_unused]] auto iteration : state) {
        const Stopwatch look;
        for (int i = 0; i < looks; ++i) {
            const double time = random.bounded(held);
            const ScopedLock lock(cache.mutex());
            benchmark::DoNotOptimize(cache.frameAt(time));
        }
        const double looked = look.wall();
        {
            const ScopedLock lock(cache.mutex());
            benchmark::DoNotOptimize(cache.frameAt(held));
        }
        const int news = held / 4; // fewer than it keeps behind
        const Stopwatch roll;
        for (int i = 0; i < news; ++i) {
            put(cache, held + i);
        }
        const double rolled = roll.wall();
        state.SetIterationTime(looked + rolled);
        state.counters["pictures"] = held;
        state.counters["look, us"] = looked * usPerSecond / looks;
        state.counters["new picture, us"] = rolled * usPerSecond / std::max(news, 1);
    }
}

void openFilm(benchmark::State& state, int seconds)
{
    constexpr int rate = 25;
    constexpr int repetition = 250; // of what the pictures tell
    const std::string path = clipPath("small-" + std::to_string(seconds) + "s");
    for ([[maybe_unused]] auto iteration : state) {
        Samples opens;
        Samples jumps;
        for (int i = 0; i < tries / 10; ++i) {
            Rig rig;
            const Stopwatch watch;
            if (!rig.open(path) || !rig.awaitPicture() || !rig.holds(1)) {
                state.SkipWithError("the film does not open on its first picture");
                return;
            }
            opens.add(watch.wall() * msPerSecond);
        }
        Rig rig;
        QRandomGenerator random(seed);
        bool right = rig.open(path) && rig.awaitReady();
        for (int i = 0; i < tries && right; ++i) {
            const int frame = random.bounded(1, seconds * rate + 1);
            const Stopwatch watch;
            rig.seek(frame, true);
            right = rig.awaitPicture();
            jumps.add(watch.wall() * msPerSecond);
            right = right && rig.holds((frame - 1) % repetition + 1);
        }
        if (!right) {
            state.SkipWithError("a jump shows another frame");
            return;
        }
        state.SetIterationTime(jumps.median() / msPerSecond);
        state.counters["open, ms"] = opens.median();
        state.counters["jump, ms"] = jumps.median();
    }
}

void paintBookmarks(benchmark::State& state, int count)
{
    constexpr int framesPerBookmark = 30;
    Bookmarks bookmarks;
    for (int i = 0; i < count; ++i) {
        bookmarks.addFrame(1 + i * framesPerBookmark);
        bookmarks.addRange(1 + i * framesPerBookmark, (i + 1) * framesPerBookmark, {});
    }
    TimelineWidget timeline;
    timeline.resize(1280, timeline.height());
    timeline.setFrameCount(count * framesPerBookmark);
    timeline.setBookmarks(&bookmarks);
    timeline.grab();
    QRandomGenerator random(seed);
    for ([[maybe_unused]] auto iteration : state) {
        const Stopwatch paint;
        for (int i = 0; i < tries; ++i) {
            benchmark::DoNotOptimize(timeline.grab());
        }
        const double painted = paint.wall();
        const Stopwatch cycle;
        for (int i = 0; i < tries; ++i) {
            benchmark::DoNotOptimize(
                bookmarks.cycledFrame(random.bounded(count * framesPerBookmark), false));
        }
        const double cycled = cycle.wall();
        state.SetIterationTime(painted);
        state.counters["paint, ms"] = painted * msPerSecond / tries;
        state.counters["next bookmark, us"] = cycled * usPerSecond / tries;
    }
}

template <typename Measure> void add(const char* what, Measure measure, int size)
{
    const std::string name = std::string(what) + "/" + std::to_string(size);
    benchmark::RegisterBenchmark(name.c_str(), measure, size)
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

} // namespace

void registerGrowth()
{
    for (const int pictures : { 10, 100, 1000, 10000 }) {
        add("cached pictures", lookIntoCache, pictures);
    }
    for (const int seconds : { 10, 60, 600, 3600, 10800 }) {
        add("film of seconds", openFilm, seconds);
    }
    for (const int count : { 10, 100, 1000, 10000 }) {
        add("bookmarks", paintBookmarks, count);
    }
}
