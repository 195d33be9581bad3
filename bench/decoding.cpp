#include "barerun.h"
#include "benchmarks.h"
#include "enginerun.h"
#include "samples.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>

namespace {

constexpr int runs = 5;

struct Pass {
    int pictures = 0;
    double wall = 0.0; // seconds
    double processor = 0.0; // seconds, all threads together
};

using Passes = std::array<Pass, 2>; // with memory as new, and with memory that was used before

template <typename Run> Pass measure(Run& run)
{
    const Stopwatch watch;
    const int pictures = run.decodeAll();
    return { pictures, watch.wall(), watch.processor() };
}

template <typename Run> Passes measureFile(const std::string& path)
{
    Run run(path.c_str());
    const Pass first = measure(run);
    run.rewind();
    return { first, measure(run) };
}

// Of wall time the best run counts, the one that whatever else the machine does has disturbed
// least; the work done does not depend on that.
struct Figures {
    double wall = std::numeric_limits<double>::infinity(); // seconds, of the fastest pass
    double bareWall = wall;
    Samples work; // processor time, as a multiple of the bare libraries'

    void add(const Pass& engine, const Pass& bare)
    {
        wall = std::min(wall, engine.wall);
        bareWall = std::min(bareWall, bare.wall);
        work.add(engine.processor / bare.processor);
    }

    void report(benchmark::State& state, const std::string& when, int pictures) const
    {
        state.counters[when + "frames/s"] = pictures / wall;
        state.counters[when + "frames/s, bare libraries"] = pictures / bareWall;
        state.counters[when + "share of the bare rate"] = bareWall / wall;
        state.counters[when + "times the bare processor time"] = work.median();
    }
};

// Runs of the engine and bare ones take turns, so that both meet the same machine.
void decode(benchmark::State& state, const std::string& path)
{
    std::array<Figures, 2> figures;
    int pictures = 0;
    bool engineFirst = false;
    for ([[maybe_unused]] auto iteration : state) {
        engineFirst = !engineFirst;
        Passes engine = engineFirst ? measureFile<EngineRun>(path) : Passes{};
        const Passes bare = measureFile<BareRun>(path);
        if (!engineFirst) {
            engine = measureFile<EngineRun>(path);
        }
        for (size_t pass = 0; pass < figures.size(); ++pass) {
            pictures = bare[pass].pictures;
            if (engine[pass].pictures != pictures) {
                state.SkipWithError("the engine ends on another picture than the file");
                return;
            }
            figures[pass].add(engine[pass], bare[pass]);
        }
        state.SetIterationTime(engine[0].wall);
    }
    figures[0].report(state, "from opening: ", pictures);
    figures[1].report(state, "after a seek: ", pictures);
}

} // namespace

void registerDecoding()
{
    for (const char* clip : { "h264-360p", "h264-1080p", "h264-2160p", "hevc-1080p", "hevc10-1080p",
             "prores-1080p.mov", "vp9-1080p.webm" }) {
        const std::string name = std::string("decode/") + clip;
        benchmark::RegisterBenchmark(name.c_str(), decode, clipPath(clip))
            ->Iterations(runs)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
}
