#include "benchmarks.h"
#include "processfigures.h"
#include "rig.h"
#include "videoframecache.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QThread>

#include <benchmark/benchmark.h>

using processfigures::processorSeconds;
using processfigures::residentBytes;

namespace {

constexpr char clip[] = "h264-1080p";
constexpr int64_t pictureBytes = int64_t{ 1920 } * 1080 * 3;
constexpr int measureSeconds = 5;
constexpr qint64 idleMs = 2000; // with a full cache, before anything is measured
constexpr qint64 patienceMs = 30000;
constexpr unsigned long pollMs = 50;
constexpr double bytesPerMegabyte = 1e6;

double cacheBudget()
{
    VideoFrameCache cache;
    cache.setCacheSize(Rig::cacheBytes, pictureBytes, Rig::trailingShare);
    return static_cast<double>(cache.capacity()) * static_cast<double>(pictureBytes);
}

// True once the player holds a full cache and has rested for a while; it starts paused, on the
// first picture.
bool awaitIdle(const QProcess& player)
{
    double before = 0.0;
    QElapsedTimer total;
    QElapsedTimer unchanged;
    total.start();
    unchanged.start();
    while (total.elapsed() < patienceMs) {
        const double bytes = residentBytes(player.processId());
        if (bytes < cacheBudget() || bytes - before > bytesPerMegabyte) {
            unchanged.restart();
            before = bytes;
        } else if (unchanged.elapsed() >= idleMs) {
            return true;
        }
        QThread::msleep(pollMs);
    }
    return false;
}

// The player itself, with its window, left alone.
void idle(benchmark::State& state)
{
    QProcess player;
    player.setStandardOutputFile(QProcess::nullDevice());
    player.setStandardErrorFile(QProcess::nullDevice());
    player.start(QStringLiteral(VANTOR_PROGRAM), { QString::fromStdString(clipPath(clip)) });
    if (!player.waitForStarted() || !awaitIdle(player)) {
        state.SkipWithError("the player does not come to rest with a full cache");
        player.kill();
        player.waitForFinished();
        return;
    }
    for ([[maybe_unused]] auto iteration : state) {
        const double before = processorSeconds(player.processId());
        QThread::sleep(measureSeconds);
        const double used = processorSeconds(player.processId()) - before;
        const double resident = residentBytes(player.processId());
        state.SetIterationTime(measureSeconds);
        state.counters["processor, % of a core"] = 100.0 * used / measureSeconds;
        state.counters["memory, MB"] = resident / bytesPerMegabyte;
        state.counters["memory over the cache, MB"] = (resident - cacheBudget()) / bytesPerMegabyte;
    }
    player.terminate();
    player.waitForFinished();
}

} // namespace

void registerIdling()
{
    benchmark::RegisterBenchmark((std::string("paused/") + clip).c_str(), idle)
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}
