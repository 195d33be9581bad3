#pragma once

#include <benchmark/benchmark.h>
#include <chrono>
#include <string>
#include <vector>

/// Measured values of one quantity.
class Samples {
public:
    void add(double value) { m_values.push_back(value); }

    /// The value that `share` (0 to 1) of the samples do not exceed; 0.5 is the median. 0 without
    /// samples.
    [[nodiscard]] double percentile(double share) const;
    [[nodiscard]] double sum() const;
    [[nodiscard]] double median() const { return percentile(0.5); }

    /// Reports the median and the 99th percentile.
    void reportSpread(benchmark::State& state, const std::string& quantity) const;

private:
    std::vector<double> m_values;
};

/// Wall time since it was made, and the processor time that the whole process has used meanwhile,
/// in seconds.
class Stopwatch {
public:
    Stopwatch();
    [[nodiscard]] double wall() const;
    [[nodiscard]] double processor() const;

private:
    const std::chrono::steady_clock::time_point m_start;
    const double m_processorStart;
};
