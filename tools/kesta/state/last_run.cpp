#include "state/last_run.h"

#include <nlohmann/json.hpp>

#include "base/names.h"
#include "state/client_folder.h"

namespace kesta {
namespace {

std::string StatePath(const std::string& imei)
{
    return os::Join(ClientFolder(), SafeName(imei + ".json"));
}

}  // namespace

os::Status SaveLastRun(const std::string& imei, const LastRun& run)
{
    const nlohmann::ordered_json json{
        {"imei", imei}, {"time", FormatLocalTime(run.time)}, {"code", run.code}, {"reason", run.reason}};
    constexpr auto kReplace = nlohmann::json::error_handler_t::replace;
    return WriteStateFile(StatePath(imei), json.dump(4, ' ', false, kReplace) + "\n");
}

std::optional<LastRun> LoadLastRun(const std::string& imei, LocalTime time)
{
    std::string text;
    if (!os::ReadText(StatePath(imei), text).ok()) return std::nullopt;
    try {
        const auto json = nlohmann::json::parse(text);
        if (json.at("imei") != imei || json.at("time") != FormatLocalTime(time)) return std::nullopt;
        return LastRun{time, json.at("code").get<int>(), json.at("reason").get<std::string>()};
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;  // Anybody may have damaged it.
    }
}

}  // namespace kesta
