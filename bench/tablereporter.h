#pragma once

#include <benchmark/benchmark.h>

/// Prints one table of every measure: a line for each quantity, with the aim where there is one and
/// whether it is met.
class TableReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;

    /// True when a measure could not be taken.
    [[nodiscard]] bool hasFailures() const { return m_failed; }

private:
    void printLine(const std::string& name, const std::string& quantity, double value);

    bool m_failed = false;
};
