// Playing for ten seconds, and a step key held down where nothing is decoded yet: what is to be
// seen on the display.
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
constexpr double keysPerSecond = 30.0;
constexpr unsigned long lookPauseUs = 1000;

using Make = std::unique_ptr<Contestant> (*)();

struct Played {
    double shown = 0.0; // pictures, of those due
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
    while (watch.wall() < playedSeconds) {
        seen.insert(player->frameOnShow());
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
        state.counters["processor while playing, %"] = own.playing;
        state.counters["processor while paused, % of a core"] = own.paused;
        state.counters["mpv: pictures shown of those due"] = other.shown;
        state.counters["mpv: processor while playing, %"] = other.playing;
        state.counters["mpv: processor while paused, %"] = other.paused;
    }
}

// Each step as soon as the picture before has come; seconds in all, or never.
double stepBack(Make make, const Film& film)
{
    const auto player = make();
    if (!startOn(*player, film)) {
        return Contestant::never;
    }
    player->jump(heldFrom, film.rate);
    if (player->secondsTo(film.code(heldFrom)) < 0.0) {
        return Contestant::never;
    }
    const Stopwatch watch;
    for (int i = 1; i <= heldSteps; ++i) {
        player->stepBackward();
        if (player->secondsTo(film.code(heldFrom - i)) < 0.0) {
            return Contestant::never;
        }
    }
    return watch.wall();
}

void compareSteppingBack(benchmark::State& state, const Film& film)
{
    for ([[maybe_unused]] auto iteration : state) {
        const double own = stepBack(makeVantor, film);
        const double other = stepBack(makeMpv, film);
        if (own < 0.0 || other < 0.0) {
            state.SkipWithError(own < 0.0 ? "a step does not show its picture" : "mpv lost a step");
            return;
        }
        state.SetIterationTime(own);
        state.counters["Ratio to mpv, held back"] = own / other;
        state.counters["Vantor, s for 300 steps"] = own;
        state.counters["mpv, s for 300 steps"] = other;
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
