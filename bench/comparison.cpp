#include "films.h"
#include "samples.h"

#include <QRandomGenerator>
#include <QThread>

#include <array>
#include <benchmark/benchmark.h>
#include <functional>
#include <optional>

namespace {

constexpr double msPerSecond = 1000.0;
constexpr int launches = 5;
constexpr int opens = 9;
constexpr int stepsInCache = 60;
constexpr int stepsOutside = 15;
constexpr int jumps = 15;
constexpr unsigned seed = 20;
constexpr unsigned long fillMs = 1500; // for the pictures around the play head to be decoded

// Times in milliseconds; none where a picture did not come.
using Times = std::optional<Samples>;

bool add(Samples& samples, double seconds)
{
    samples.add(seconds * msPerSecond);
    return seconds >= 0.0;
}

using Make = std::unique_ptr<Contestant> (*)();

Times timeLaunches(Make make, const Film& film)
{
    Samples times;
    for (int i = 0; i < launches; ++i) {
        const auto player = make();
        const Stopwatch watch;
        if (!startOn(*player, film)) {
            return {};
        }
        add(times, watch.wall());
    }
    return times;
}

Times timeOpens(Make make, const Film& film)
{
    const auto player = make();
    if (!startOn(*player, film)) {
        return {};
    }
    Samples times;
    for (int i = 0; i < opens; ++i) {
        // Away from the first picture, so that it is seen to come.
        player->jump(film.frames / 2, film.rate);
        if (player->secondsTo(film.frames / 2) < 0.0) {
            return {};
        }
        QThread::msleep(fillMs);
        player->open(clipPath(film.clip));
        if (!add(times, player->secondsTo(1))) {
            return {};
        }
    }
    return times;
}

Times timeSteps(Make make, const Film& film, bool forward)
{
    const auto player = make();
    constexpr int first = 20;
    if (!startOn(*player, film)) {
        return {};
    }
    player->jump(first, film.rate);
    if (player->secondsTo(first) < 0.0) {
        return {};
    }
    QThread::msleep(fillMs);
    // To and fro over frames that were all shown before; the steps one way are timed.
    Samples times;
    constexpr int reach = 6;
    int frame = first;
    for (int i = 0; i < stepsInCache; ++i) {
        const bool goesForward = i / reach % 2 == 0;
        frame += goesForward ? 1 : -1;
        goesForward ? player->stepForward() : player->stepBackward();
        const double seconds = player->secondsTo(film.code(frame));
        if (seconds < 0.0 || (goesForward == forward && !add(times, seconds))) {
            return {};
        }
    }
    return times;
}

Times timeForwardSteps(Make make, const Film& film)
{
    return timeSteps(make, film, true);
}

Times timeBackwardSteps(Make make, const Film& film)
{
    return timeSteps(make, film, false);
}

// To random frames, each outside what is decoded; where asked for, the time of a step back from
// there instead of the jump's.
Times timeJumps(Make make, const Film& film, int count, bool stepBack)
{
    const auto player = make();
    if (!startOn(*player, film)) {
        return {};
    }
    QRandomGenerator random(seed);
    Samples times;
    for (int i = 0; i < count; ++i) {
        const int frame = random.bounded(2, film.frames - 10);
        player->jump(frame, film.rate);
        const double jumped = player->secondsTo(film.code(frame));
        if (jumped < 0.0 || (!stepBack && !add(times, jumped))) {
            return {};
        }
        if (stepBack) {
            // Past the few frames that a jump keeps behind its target.
            double stepped = 0.0;
            for (int step = 1; step <= 5; ++step) {
                player->stepBackward();
                stepped = player->secondsTo(film.code(frame - step));
                if (stepped < 0.0) {
                    return {};
                }
                times.add(stepped * msPerSecond);
            }
        }
    }
    return times;
}

Times timeLongJumps(Make make, const Film& film)
{
    return timeJumps(make, film, jumps, false);
}

Times timeStepsOutside(Make make, const Film& film)
{
    return timeJumps(make, film, stepsOutside, true);
}

using Time = Times (*)(Make, const Film&);

void compare(benchmark::State& state, Time time, const Film& film, const std::string& aim)
{
    for ([[maybe_unused]] auto iteration : state) {
        const Times own = time(makeVantor, film);
        const Times other = own ? time(makeMpv, film) : Times();
        if (!own || !other) {
            state.SkipWithError(own ? "mpv does not show the picture asked for"
                                    : "the picture asked for is not shown");
            return;
        }
        state.SetIterationTime(own->median() / msPerSecond);
        state.counters["Ratio to mpv" + aim] = own->median() / other->median();
        state.counters["Vantor, ms, median"] = own->median();
        state.counters["mpv, ms, median"] = other->median();
    }
}

void add(const std::string& what, Time time, const Film& film, const std::string& aim = {})
{
    benchmark::RegisterBenchmark((what + "/" + film.clip).c_str(), compare, time, film, aim)
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

} // namespace

void registerComparison()
{
    for (const Film& film : { smallFilm, ordinaryFilm }) {
        add("launch", timeLaunches, film);
        add("open", timeOpens, film);
        add("step forward", timeForwardSteps, film, ", inside the cache");
        add("step backward", timeBackwardSteps, film, ", inside the cache");
    }
    add("step out of cache", timeStepsOutside, longFilm);
    add("jump", timeLongJumps, longFilm);
}
