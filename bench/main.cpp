#include "benchmarks.h"
#include "soundserver.h"
#include "tablereporter.h"

#include <QApplication>

std::string clipPath(const std::string& name)
{
    const std::string path = BENCH_CLIPS "/" + name;
    return name.find('.') == std::string::npos ? path + ".mp4" : path;
}

int main(int argc, char* argv[])
{
    const SoundServer soundServer; // the player is measured with a sound device, heard by nobody
    const QApplication application(argc, argv);
    registerDecoding();
    registerInteraction();
    registerIdling();
    registerHeldKey();
    registerComparison();
    registerPlaying();
    registerGrowth();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    TableReporter reporter;
    const size_t run = benchmark::RunSpecifiedBenchmarks(&reporter);
    return run > 0 && !reporter.hasFailures() ? 0 : 1;
}
