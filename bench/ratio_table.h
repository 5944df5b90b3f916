// Prints each benchmark as it ends, and closes with the table that the benchmarks are for: operation by baseline.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace kesta::bench {

class RatioTable : public benchmark::ConsoleReporter {
public:
    RatioTable();
    void ReportRuns(const std::vector<Run>& runs) override;
    /// Names end with "/library" or "/baseline"; times are medians over the repetitions.
    void printTable() const;

private:
    std::map<std::string, std::vector<double>> nanoseconds_;
};

}  // namespace kesta::bench
