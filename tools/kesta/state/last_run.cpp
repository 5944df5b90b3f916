#include "state/last_run.h"

#include "state/state_file.h"

namespace kesta {
namespace {

std::string FileOf(const std::string& imei)
{
    return imei + ".json";
}

}  // namespace

os::Status SaveLastRun(const std::string& imei, const LastRun& run)
{
    // Nothing depends on it: a state file about another run counts as none.
    return WriteStateFile(FileOf(imei), imei,
                          {{"time", FormatLocalTime(run.time)}, {"code", run.code}, {"reason", run.reason}},
                          StateFlush::kNothing);
}

std::optional<LastRun> LoadLastRun(const std::string& imei, LocalTime time)
{
    nlohmann::json state;
    if (!ReadStateFile(FileOf(imei), imei, state).ok() || state.is_null()) {
        return std::nullopt;
    }
    try {
        if (state.at("time") != FormatLocalTime(time)) {
            return std::nullopt;
        }
        return LastRun{time, state.at("code").get<int>(), state.at("reason").get<std::string>()};
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;  // Anybody may have damaged it.
    }
}

}  // namespace kesta
