#include "barerun.h"
#include "benchmarks.h"
#include "enginerun.h"
#include "samples.h"

#include <array>
#include <string>

namespace {

constexpr int runs = 7;

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

struct Figures {
    Samples rate; // pictures a second
    Samples bareRate;
    Samples share; // of the bare libraries' rate
    Samples work; // processor time, as a multiple of the bare libraries'

    void add(const Pass& engine, const Pass& bare)
    {
        rate.add(engine.pictures / engine.wall);
        bareRate.add(bare.pictures / bare.wall);
        share.add(bare.wall / engine.wall);
        work.add(engine.processor / bare.processor);
    }

    void report(benchmark::State& state, const std::string& when) const
    {
        state.counters[when + "frames/s"] = rate.median();
        state.counters[when + "frames/s, bare libraries"] = bareRate.median();
        state.counters[when + "share of the bare rate"] = share.median();
        state.counters[when + "times the bare processor time"] = work.median();
    }
};

// Each run of the engine is compared with a bare one right beside it, so that whatever else the
// machine does weighs on both.
void decode(benchmark::State& state, const std::string& path)
{
    std::array<Figures, 2> figures;
    bool engineFirst = false;
    for ([[maybe_unused]] auto iteration : state) {
        engineFirst = !engineFirst;
        Passes engine = engineFirst ? measureFile<EngineRun>(path) : Passes{};
        const Passes bare = measureFile<BareRun>(path);
        if (!engineFirst) {
            engine = measureFile<EngineRun>(path);
        }
        for (size_t pass = 0; pass < figures.size(); ++pass) {
            if (engine[pass].pictures != bare[pass].pictures) {
                state.SkipWithError("the engine ends on another picture than the file");
                return;
            }
            figures[pass].add(engine[pass], bare[pass]);
        }
        state.SetIterationTime(engine[0].wall);
    }
    figures[0].report(state, "from opening: ");
    figures[1].report(state, "after a seek: ");
}

} // namespace

void registerDecoding()
{
    for (const char* clip :
        { "h264-360p", "h264-1080p", "h264-2160p", "hevc-1080p", "hevc10-1080p" }) {
        const std::string name = std::string("decode/") + clip;
        benchmark::RegisterBenchmark(name.c_str(), decode, clipPath(clip))
            ->Iterations(runs)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
}
