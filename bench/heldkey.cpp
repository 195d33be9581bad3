#include "benchmarks.h"
#include "drivenplayer.h"
#include "samples.h"

#include <QFileInfo>

namespace {

constexpr int frames = 300; // of the clip
constexpr int presses = 60; // two seconds; fewer than the cache keeps behind the play head
constexpr int holds = 10;
constexpr double limitSeconds = 10.0;
constexpr double msPerSecond = 1000.0;

// Seconds until the title tells the frame; negative where it never does.
double secondsTo(const DrivenPlayer& player, int frame)
{
    const Stopwatch watch;
    while (player.frame() != frame) {
        if (watch.wall() > limitSeconds) {
            return -1.0;
        }
    }
    return watch.wall();
}

// A step key held down over pictures that are all cached: how long after the last press the title
// still changes. The player is the program itself, and the keys are real.
void holdStepKey(benchmark::State& state, const std::string& path)
{
    const QString file = QString::fromStdString(path);
    const Scene scene{ { QFileInfo(file).fileName(), file, 1920, 1080, frames, 25.0, 12.0, true } };
    DrivenPlayer player;
    if (!player.start({ file }) || player.awaitSight(scene, 1) != scene.sightOf(1)) {
        state.SkipWithError("the file does not open");
        return;
    }
    player.hold("Right", presses); // decodes what is measured
    bool forward = player.awaitRest() != presses + 1;
    Samples times;
    for ([[maybe_unused]] auto iteration : state) {
        const int target = forward ? presses + 1 : 1;
        player.hold(forward ? "Right" : "Left", presses);
        const double seconds = secondsTo(player, target);
        state.SetIterationTime(seconds);
        times.add(seconds * msPerSecond);
        if (seconds < 0.0 || player.awaitRest() != target
            || player.awaitSight(scene, target) != scene.sightOf(target)) {
            state.SkipWithError("steps were lost, or another picture is shown");
            return;
        }
        forward = !forward;
    }
    times.reportSpread(state, "from release to title at rest, ms");
}

} // namespace

void registerHeldKey()
{
    const char* clip = "h264-1080p";
    benchmark::RegisterBenchmark(
        ("held key/" + std::string(clip)).c_str(), holdStepKey, clipPath(clip))
        ->Iterations(holds)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}
