#include "state/run_history.h"

#include <algorithm>

#include "state/state_file.h"

namespace kesta {
namespace {

using nlohmann::json;

constexpr size_t kMostRuns = 20;
constexpr size_t kMostFailures = 50;  // of one run

// No IMEI holds a blank, so that this is no other file's name.
std::string FileOf(const std::string& imei)
{
    return "runs of " + imei + ".json";
}

nlohmann::ordered_json ToJson(const RunRecord& run)
{
    return {{"time", ToNumber(run.time)}, {"code", run.code},        {"reason", run.reason}, {"added", run.added},
            {"updated", run.updated},     {"removed", run.removed},  {"failed", run.failed}, {"deferred", run.deferred},
            {"unchanged", run.unchanged}, {"failures", run.failures}};
}

RunRecord FromJson(const json& value)
{
    RunRecord run;
    run.time = FromNumber(value.at("time").get<int64_t>());
    run.code = value.at("code").get<int>();
    run.reason = value.at("reason").get<std::string>();
    run.added = value.at("added").get<size_t>();
    run.updated = value.at("updated").get<size_t>();
    run.removed = value.at("removed").get<size_t>();
    run.unchanged = value.at("unchanged").get<size_t>();
    run.failed = value.at("failed").get<size_t>();
    run.deferred = value.at("deferred").get<size_t>();
    run.failures = value.at("failures").get<std::vector<std::pair<std::string, std::string>>>();
    return run;
}

}  // namespace

std::vector<RunRecord> ReadRuns(const std::string& imei)
{
    json state;
    std::vector<RunRecord> runs;
    if (!ReadStateFile(FileOf(imei), imei, state).ok() || state.is_null()) {
        return runs;
    }
    try {
        for (const json& run : state.at("runs")) {
            runs.push_back(FromJson(run));
        }
    } catch (const json::exception&) {
        runs.clear();
    }
    return runs;
}

os::Status AddRun(const std::string& imei, RunRecord run)
{
    run.failures.resize(std::min(run.failures.size(), kMostFailures));
    std::vector<RunRecord> runs = ReadRuns(imei);
    runs.insert(runs.begin(), std::move(run));
    runs.resize(std::min(runs.size(), kMostRuns));
    nlohmann::ordered_json all = nlohmann::ordered_json::array();
    for (const RunRecord& one : runs) {
        all.push_back(ToJson(one));
    }
    // Only a report reads it: it is not worth a wait for the disk.
    return WriteStateFile(FileOf(imei), imei, {{"runs", std::move(all)}}, StateFlush::kNothing);
}

}  // namespace kesta
