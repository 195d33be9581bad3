// Playing for ten seconds, and a step key held down where nothing is decoded
// yet: what is to be seen on the display.
#include "films.h"
#include "samples.h"

#include <QThread>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <set>

namespace {

constexpr double playedSeconds = 10.0;
constexpr double restSeconds = 3.0;
constexpr double msPerSecond = 1000.0;
constexpr int heldSteps = 300;
constexpr int heldFrom = 10000;
constexpr double stepSeconds = 10.0; // after which a press is lost; mpv takes up to three
constexpr int pressesForAStep = 3; // at most
constexpr double keysPerSecond = 30.0;
constexpr unsigned long lookPauseUs = 1000;

using Make = std::unique_ptr<Contestant> (*)();

struct Played {
    double shown = 0.0; // pictures, of those due
    double longestRest = 0.0; // of a picture, ms
    double playing = 0.0; // processor, % of a core
    double paused = 0.0;
};

bool play(Make make, const Film& film, Played& result)
{
    const auto player = make();
    if (!startOn(*player, film)) {
        return false;
    }
    QThread::msleep(static_cast<unsigned long>(restSeconds * msPerSecond)); // fills its cache
    std::set<int> seen;
    player->togglePlaying();
    double before = player->processorSeconds();
    const Stopwatch watch;
    double changed = 0.0;
    while (watch.wall() < playedSeconds) {
        if (const int now = player->frameOnShow(); now > 0 && seen.insert(now).second) {
            result.longestRest =
                std::max(result.longestRest, (watch.wall() - changed) * msPerSecond);
            changed = watch.wall();
        }
        QThread::usleep(lookPauseUs);
    }
    result.playing = 100.0 * (player->processorSeconds() - before) / watch.wall();
    result.shown = static_cast<double>(seen.size()) / (playedSeconds * film.rate);
    player->togglePlaying();
    QThread::msleep(static_cast<unsigned long>(restSeconds * msPerSecond));
    before = player->processorSeconds();
    QThread::msleep(static_cast<unsigned long>(restSeconds * msPerSecond));
    result.paused = 100.0 * (player->processorSeconds() - before) / restSeconds;
    return true;
}

void comparePlaying(benchmark::State& state, const Film& film)
{
    for ([[maybe_unused]] auto iteration : state) {
        Played own;
        Played other;
        if (!play(makeVantor, film, own) || !play(makeMpv, film, other)) {
            state.SkipWithError("the film does not open");
            return;
        }
        state.SetIterationTime(playedSeconds);
        state.counters["Pictures shown of those due"] = own.shown;
        state.counters["longest rest of a picture, ms"] = own.longestRest;
        state.counters["processor while playing, %"] = own.playing;
        state.counters["processor while paused, % of a core"] = own.paused;
        state.counters["mpv: pictures shown of those due"] = other.shown;
        state.counters["mpv: longest rest of a picture, ms"] = other.longestRest;
        state.counters["mpv: processor while playing, %"] = other.playing;
        state.counters["mpv: processor while paused, %"] = other.paused;
    }
}

struct SteppedBack {
    Samples ms; // from the press to its picture, of each press that was heeded
    int lost = 0; // presses after which no other picture came
    int skipped = 0; // pictures passed over
};

// Number of the picture that the key leads to from the one on show; -1 where the player stands
// still. Where none comes the key is pressed again, and the time waited for it is nobody's.
int stepBackFrom(Contestant& player, int shown, SteppedBack& result)
{
    for (int i = 0; i < pressesForAStep; ++i) {
        const Stopwatch watch;
        player.stepBackward();
        if (const int now = player.awaitBefore(shown, stepSeconds); now > 0) {
            result.ms.add(watch.wall() * msPerSecond);
            result.skipped += shown - now - 1;
            return now;
        }
        ++result.lost;
    }
    return -1;
}

// Each step as soon as the picture before has come; false where one does not.
bool stepBack(Make make, const Film& film, SteppedBack& result)
{
    const auto player = make();
    const int first = film.code(heldFrom);
    if (!startOn(*player, film)) {
        return false;
    }
    player->jump(heldFrom, film.rate);
    int shown = player->secondsTo(first) < 0.0 ? -1 : first;
    while (shown > first - heldSteps) {
        shown = stepBackFrom(*player, shown, result);
    }
    return shown > 0;
}

void report(benchmark::State& state, const std::string& player, const SteppedBack& steps)
{
    state.counters[player + ", s for 300 steps"] = steps.ms.sum() / msPerSecond;
    state.counters[player + ", longest step, ms"] = steps.ms.percentile(1.0);
    state.counters[player + ", presses lost"] = steps.lost;
    state.counters[player + ", pictures skipped"] = steps.skipped;
}

void compareSteppingBack(benchmark::State& state, const Film& film)
{
    for ([[maybe_unused]] auto iteration : state) {
        SteppedBack own;
        SteppedBack other;
        if (!stepBack(makeVantor, film, own) || own.lost > 0 || own.skipped > 0) {
            state.SkipWithError("a step does not show its picture");
            return;
        }
        if (!stepBack(makeMpv, film, other)) {
            state.SkipWithError("mpv stands still");
            return;
        }
        state.SetIterationTime(own.ms.sum() / msPerSecond);
        state.counters["Ratio to mpv, held back"] = own.ms.sum() / other.ms.sum();
        report(state, "Vantor", own);
        report(state, "mpv", other);
    }
}

// As a keyboard repeats it, whatever is on show meanwhile.
void holdBack(benchmark::State& state, const Film& film)
{
    const auto player = makeVantor();
    const bool opened = startOn(*player, film);
    player->jump(heldFrom, film.rate);
    if (!opened || player->secondsTo(film.code(heldFrom)) < 0.0) {
        state.SkipWithError("the film does not open");
        return;
    }
    for ([[maybe_unused]] auto iteration : state) {
        Samples freezes;
        int seen = 0;
        int last = film.code(heldFrom);
        double changed = 0.0;
        int pressed = 0;
        bool inOrder = true;
        const Stopwatch watch;
        while (last != film.code(heldFrom - heldSteps) && watch.wall() < 60.0) {
            if (pressed < heldSteps && watch.wall() >= pressed / keysPerSecond) {
                player->stepBackward();
                ++pressed;
            }
            if (const int now = player->frameOnShow(); now != last) {
                inOrder = inOrder && now < last;
                freezes.add((watch.wall() - changed) * msPerSecond);
                changed = watch.wall();
                last = now;
                ++seen;
            }
            QThread::usleep(lookPauseUs);
        }
        const double seconds = watch.wall();
        if (player->awaitRest() != film.code(heldFrom - heldSteps) || !inOrder) {
            state.SkipWithError("another picture is shown");
            return;
        }
        state.SetIterationTime(seconds);
        state.counters["Picture at rest after the last press, ms"] =
            (seconds - (heldSteps - 1) / keysPerSecond) * msPerSecond;
        state.counters["pictures seen of 300"] = seen;
        state.counters["longest rest of a picture, ms"] = freezes.percentile(1.0);
        state.counters["rest of a picture, ms, p90"] = freezes.percentile(0.9);
    }
}

template <typename Measure> void add(const char* what, Measure measure, const Film& film)
{
    benchmark::RegisterBenchmark((std::string(what) + "/" + film.clip).c_str(), measure, film)
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

} // namespace

void registerPlaying()
{
    add("play", comparePlaying, fastFilm);
    add("play", comparePlaying, cinemaFilm);
    add("hold back", holdBack, longFilm);
    add("steps back", compareSteppingBack, longFilm);
}
