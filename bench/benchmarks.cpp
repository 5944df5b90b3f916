// Times of the library's main operations beside their floors. Options are those of Google Benchmark, and
// --disk=FOLDER: where "disk" lies, by default the system's folder for temporary files.
#include <benchmark/benchmark.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include "operations.h"
#include "ratio_table.h"

namespace kesta::bench {
namespace {

/// Scenes take long to make: one that is asked for again is still there.
class SceneKeeper {
public:
    const Scene& get(const std::filesystem::path& place, size_t files, Letters letters)
    {
        const std::string name = place.string() + std::to_string(files) + (letters == Letters::kAscii ? "a" : "b");
        std::unique_ptr<Scene>& scene = scenes_[name];
        if (scene == nullptr) scene = std::make_unique<Scene>(place, files, letters);
        return *scene;
    }

private:
    std::map<std::string, std::unique_ptr<Scene>> scenes_;
};

struct Case {
    const OperationTraits* traits;
    std::filesystem::path place;
    size_t files;
    Letters letters;
    Side side;
};

void Run(benchmark::State& state, SceneKeeper& scenes, const Case& self)
{
    const std::unique_ptr<Work> work =
        MakeWork(scenes.get(self.place, self.files, self.letters), *self.traits, self.side);
    if (!self.traits->writes) work->run(0);  // fills the page cache
    size_t i = 0;
    for (auto _ : state) work->run(i++);
    work->undo();
    if (self.traits->operation == Operation::kListAll) {
        state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(self.files));
    }
}

void Register(SceneKeeper& scenes, const char* placeName, const Case& both)
{
    for (const Side side : {Side::kLibrary, Side::kFloor}) {
        Case self = both;
        self.side = side;
        const std::string name = std::string(self.traits->name) + "/" + placeName + "/" +
                                 (self.letters == Letters::kAscii ? "" : "non-ascii/") + std::to_string(self.files) +
                                 (side == Side::kLibrary ? "/library" : "/floor");
        auto* registered = benchmark::RegisterBenchmark(
            name.c_str(), [&scenes, self](benchmark::State& state) { Run(state, scenes, self); });
        registered->UseRealTime()->Repetitions(5);
        // The books grow with each of them, so that both sides must do it equally often.
        if (self.traits->writes) registered->Iterations(static_cast<benchmark::IterationCount>(self.traits->perRun));
    }
}

void RegisterAll(SceneKeeper& scenes, const std::filesystem::path& disk)
{
    const std::filesystem::path memory = "/dev/shm";
    for (const OperationTraits& traits : kOperations) {
        for (const size_t files : {size_t{1'000}, size_t{10'000}, size_t{100'000}}) {
            Register(scenes, "shm", {&traits, memory, files, Letters::kAscii, {}});
            if (traits.writes) Register(scenes, "disk", {&traits, disk, files, Letters::kAscii, {}});
        }
        Register(scenes, "shm", {&traits, memory, 10'000, Letters::kAny, {}});
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
    SceneKeeper scenes;
    RegisterAll(scenes, disk);
    RatioTable table;
    benchmark::RunSpecifiedBenchmarks(&table);
    table.printTable();
    return 0;
}
