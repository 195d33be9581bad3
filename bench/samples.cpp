#include "samples.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <sys/resource.h>

namespace {

double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

double processorSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

} // namespace

double Samples::percentile(double share) const
{
    if (m_values.empty()) {
        return 0.0;
    }
    std::vector<double> sorted = m_values;
    std::sort(sorted.begin(), sorted.end());
    const auto rank = static_cast<size_t>(std::ceil(share * static_cast<double>(sorted.size())));
    return sorted[std::clamp<size_t>(rank, 1, sorted.size()) - 1];
}

double Samples::sum() const
{
    return std::accumulate(m_values.begin(), m_values.end(), 0.0);
}

void Samples::reportSpread(benchmark::State& state, const std::string& quantity) const
{
    state.counters[quantity + ", median"] = median();
    state.counters[quantity + ", p99"] = percentile(0.99);
}

Stopwatch::Stopwatch()
    : m_start(std::chrono::steady_clock::now())
    , m_processorStart(processorSeconds())
{
}

double Stopwatch::wall() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count();
}

double Stopwatch::processor() const
{
    return processorSeconds() - m_processorStart;
}
