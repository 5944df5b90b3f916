// Runs the benchmarked loops for callgrind, which counts instructions within them only. Each loop ends with a dump that
// bears its name: "<operation> <side> <entries> <times> <goal>".
//
//   kesta_instructions ENTRIES...
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>

#include "operations.h"

namespace kesta::bench {
namespace {

/// Once round before counting, so that what happens only the first time does not count.
void WarmUp(BenchmarkCase& benchmarkCase, const OperationTraits& traits)
{
    benchmarkCase.run(0);
    if (!traits.writes()) {
        return;
    }
    benchmarkCase.undo();
}

void Count(const DataSet& dataSet, const OperationTraits& traits, Side side)
{
    const std::unique_ptr<BenchmarkCase> benchmarkCase = MakeCase(dataSet, traits, side);
    WarmUp(*benchmarkCase, traits);
    const size_t times = traits.perRun < 100 ? traits.perRun : 100;
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    CALLGRIND_TOGGLE_COLLECT;
    for (size_t i = 0; i < times; ++i) {
        benchmarkCase->run(i);
    }
    CALLGRIND_TOGGLE_COLLECT;
    const double goal = traits.goal + (dataSet.letters() == Letters::kAscii ? 0.0 : 0.05);
    char name[128];
    std::snprintf(name, sizeof name, "%s%s %s %zu %zu %.2f", traits.name,
                  dataSet.letters() == Letters::kAscii ? "" : "/non-ascii",
                  side == Side::kLibrary ? "library" : "baseline", dataSet.entries(), times, goal);
    CALLGRIND_DUMP_STATS_AT(name);
    CALLGRIND_STOP_INSTRUMENTATION;
    benchmarkCase->undo();
}

void CountAll(size_t entries, Letters letters)
{
    for (const Family family : kFamilies) {
        const DataSet dataSet("/dev/shm", family, entries, letters);
        for (const OperationTraits& traits : kOperations) {
            if (traits.family != family) {
                continue;
            }
            for (const Side side : {Side::kLibrary, Side::kBaseline}) {
                Count(dataSet, traits, side);
            }
        }
    }
}

}  // namespace
}  // namespace kesta::bench

int main(int argc, char** argv)
{
    using namespace kesta::bench;
    if (argc < 2 || RUNNING_ON_VALGRIND == 0) {
        std::fprintf(stderr, "usage: bench/instructions.sh [BUILD-FOLDER [ENTRIES...]]\n");
        return 2;
    }
    for (int i = 1; i < argc; ++i) {
        for (const Letters letters : {Letters::kAscii, Letters::kAny}) {
            CountAll(std::strtoul(argv[i], nullptr, 10), letters);
        }
    }
    return 0;
}
