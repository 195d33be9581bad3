#include "benchmarks.h"
#include "rig.h"
#include "samples.h"

#include <QCoreApplication>
#include <QRandomGenerator>

#include <algorithm>

namespace {

constexpr int opens = 10;
constexpr int steps = 400;
constexpr int seeks = 100;
constexpr double msPerSecond = 1000.0;
constexpr double walkShare = 0.6; // of the cache: less than it keeps behind the play head
constexpr unsigned seed = 20;

void openToPicture(benchmark::State& state, const std::string& path)
{
    Samples times;
    for ([[maybe_unused]] auto iteration : state) {
        Rig rig;
        const Stopwatch watch;
        const bool shown = rig.open(path) && rig.awaitPicture();
        state.SetIterationTime(watch.wall());
        times.add(watch.wall() * msPerSecond);
        if (!shown || !rig.holds(1)) {
            state.SkipWithError("the file does not open on its first picture");
            return;
        }
    }
    times.reportSpread(state, "to the first picture, ms");
}

// To and fro over frames that are all cached, so that every step can be answered at once.
void stepInCache(benchmark::State& state, const std::string& path)
{
    Rig rig;
    if (!rig.open(path) || !rig.awaitReady()) {
        state.SkipWithError("the file does not open");
        return;
    }
    rig.awaitFullCache();
    const int last = std::max(2, static_cast<int>(rig.cachedFrames() * walkShare));
    int frame = 1;
    int direction = 1;
    Samples held;
    Samples painted;
    for ([[maybe_unused]] auto iteration : state) {
        direction = frame >= last ? -1 : frame <= 1 ? 1 : direction;
        frame += direction;
        const Stopwatch watch;
        rig.seek(frame, false);
        rig.awaitPicture();
        state.SetIterationTime(watch.wall());
        held.add(watch.wall() * msPerSecond);
        QCoreApplication::processEvents();
        painted.add(watch.wall() * msPerSecond);
        if (!rig.holds(frame)) {
            state.SkipWithError("a step shows another frame");
            return;
        }
    }
    held.reportSpread(state, "to the picture in the view, ms");
    painted.reportSpread(state, "to the view painted, ms");
}

void seekOutsideCache(benchmark::State& state, const std::string& path)
{
    Rig rig;
    if (!rig.open(path) || !rig.awaitReady()) {
        state.SkipWithError("the file does not open");
        return;
    }
    QRandomGenerator random(seed);
    Samples times;
    int frame = 1;
    for ([[maybe_unused]] auto iteration : state) {
        const int before = frame;
        while (frame == before) {
            frame = random.bounded(1, rig.lastFrame() + 1);
        }
        const Stopwatch watch;
        rig.seek(frame, true);
        rig.awaitPicture();
        state.SetIterationTime(watch.wall());
        times.add(watch.wall() * msPerSecond);
        if (!rig.holds(frame)) {
            state.SkipWithError("a seek shows another frame");
            return;
        }
    }
    times.reportSpread(state, "to the picture in the view, ms");
}

using Measure = void (*)(benchmark::State&, const std::string&);

void add(const std::string& what, const char* clip, Measure measure, int iterations)
{
    benchmark::RegisterBenchmark((what + "/" + clip).c_str(), measure, clipPath(clip))
        ->Iterations(iterations)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

} // namespace

void registerInteraction()
{
    for (const char* clip : { "h264-360p", "h264-1080p", "h264-2160p" }) {
        add("open", clip, openToPicture, opens);
    }
    for (const char* clip : { "h264-360p", "h264-1080p", "h264-2160p" }) {
        add("step", clip, stepInCache, steps);
    }
    for (const char* clip : { "h264-360p", "h264-1080p", "h264-2160p", "hevc-1080p" }) {
        add("seek", clip, seekOutsideCache, seeks);
    }
}
