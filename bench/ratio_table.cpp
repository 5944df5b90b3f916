#include "ratio_table.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace kesta::bench {
namespace {

double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace

RatioTable::RatioTable() : ConsoleReporter(isatty(STDOUT_FILENO) != 0 ? OO_ColorTabular : OO_Tabular)
{
}

void RatioTable::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs) {
        if (run.run_type != Run::RT_Iteration || run.error_occurred) {
            continue;
        }
        const std::string name = run.run_name.function_name;
        nanoseconds_[name].push_back(run.real_accumulated_time / static_cast<double>(run.iterations) * 1e9);
    }
    ConsoleReporter::ReportRuns(runs);
}

void RatioTable::printTable() const
{
    constexpr std::string_view kLibrary = "/library";
    std::printf("\n%-44s %14s %14s %8s\n", "operation (median)", "library ns", "baseline ns", "ratio");
    for (const auto& [name, times] : nanoseconds_) {
        if (!name.ends_with(kLibrary)) {
            continue;
        }
        const std::string operation = name.substr(0, name.size() - kLibrary.size());
        const auto baseline = nanoseconds_.find(operation + "/baseline");
        if (baseline == nanoseconds_.end()) {
            continue;
        }
        const double own = Median(times);
        const double bare = Median(baseline->second);
        std::printf("%-44s %14.0f %14.0f %8.3f\n", operation.c_str(), own, bare, own / bare);
    }
}

}  // namespace kesta::bench
