// Times of the library's main operations beside their baselines. Options are those of Google Benchmark, and
// --disk=FOLDER: where "disk" lies, by default the system's folder for temporary files.
#include <benchmark/benchmark.h>

#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "operations.h"
#include "ratio_table.h"

namespace kesta::bench {
namespace {

/// Data sets take long to make: one that is asked for again is still there.
class DataSets {
public:
    const DataSet& get(const std::filesystem::path& place, Family family, size_t entries, Letters letters)
    {
        std::unique_ptr<DataSet>& dataSet = dataSets_[{place, family, entries, letters}];
        if (dataSet == nullptr) {
            dataSet = std::make_unique<DataSet>(place, family, entries, letters);
        }
        return *dataSet;
    }

private:
    std::map<std::tuple<std::filesystem::path, Family, size_t, Letters>, std::unique_ptr<DataSet>> dataSets_;
};

struct Case {
    const OperationTraits* traits;
    std::filesystem::path place;
    size_t entries;
    Letters letters;
    Side side;
};

void Run(benchmark::State& state, DataSets& dataSets, const Case& self)
{
    const std::unique_ptr<BenchmarkCase> benchmarkCase =
        MakeCase(dataSets.get(self.place, self.traits->family, self.entries, self.letters), *self.traits, self.side);
    if (!self.traits->writes()) {
        benchmarkCase->run(0);  // fills the page cache
    }
    size_t i = 0;
    for (auto _ : state) {
        benchmarkCase->run(i++);
    }
    benchmarkCase->undo();
    if (self.traits->kind == Kind::kList) {
        state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(self.entries));
    }
}

void Register(DataSets& dataSets, const char* placeName, const Case& both)
{
    for (const Side side : {Side::kLibrary, Side::kBaseline}) {
        Case self = both;
        self.side = side;
        const std::string name = std::string(self.traits->name) + "/" + placeName + "/" +
                                 (self.letters == Letters::kAscii ? "" : "non-ascii/") + std::to_string(self.entries) +
                                 (side == Side::kLibrary ? "/library" : "/baseline");
        auto* registered = benchmark::RegisterBenchmark(
            name.c_str(), [&dataSets, self](benchmark::State& state) { Run(state, dataSets, self); });
        registered->UseRealTime()->Repetitions(5);
        // The database grows with each of them, so that both sides must do it equally often.
        if (self.traits->writes()) {
            registered->Iterations(static_cast<benchmark::IterationCount>(self.traits->perRun));
        }
    }
}

std::vector<size_t> SizesOf(Family family)
{
    switch (family) {
        case Family::kMedia:
            return {1'000, 10'000, 100'000};
        case Family::kPlaylists:
            return {1'000};
        case Family::kBookmarks:
            return {1'000, 10'000};
        default:
            return {10'000};
    }
}

void RegisterAll(DataSets& dataSets, const std::filesystem::path& disk)
{
    const std::filesystem::path memory = "/dev/shm";
    for (const OperationTraits& traits : kOperations) {
        for (const size_t entries : SizesOf(traits.family)) {
            Register(dataSets, "shm", {&traits, memory, entries, Letters::kAscii, {}});
            // A log is saved in as many transactions as it has entries: on a disk that is a matter of minutes.
            if (traits.writes() && traits.operation != Operation::kSavePimLog) {
                Register(dataSets, "disk", {&traits, disk, entries, Letters::kAscii, {}});
            }
        }
        const size_t entries = traits.family == Family::kPlaylists ? 1'000 : 10'000;
        Register(dataSets, "shm", {&traits, memory, entries, Letters::kAny, {}});
    }
}

}  // namespace
}  // namespace kesta::bench

int main(int argc, char** argv)
{
    using namespace kesta::bench;
    benchmark::Initialize(&argc, argv);
    std::filesystem::path disk = std::filesystem::temp_directory_path();
    constexpr std::string_view kDisk = "--disk=";
    if (argc == 2 && std::string_view(argv[1]).starts_with(kDisk)) {
        disk = argv[1] + kDisk.size();
    } else if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    DataSets dataSets;
    RegisterAll(dataSets, disk);
    RatioTable table;
    benchmark::RunSpecifiedBenchmarks(&table);
    table.printTable();
    return 0;
}
