#include "last_run.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "names.h"
#include "os/files.h"
#include "os/system.h"

namespace kesta {
namespace {

std::string NotesFolder()
{
    const std::string data = os::DataDirectory();
    if (data.empty()) return {};
    return os::Join(os::Join(os::Join(data, "NORVIK"), "NORVIK Sync"), "Client");
}

std::string NotePath(const std::string& folder, const std::string& imei)
{
    return os::Join(folder, SafeName(imei + ".json"));
}

}  // namespace

os::Status SaveLastRun(const std::string& imei, const LastRun& run)
{
    const std::string folder = NotesFolder();
    if (folder.empty() || !os::MakePrivateDirectories(folder))
        return {os::Failure::kOther, "the folder for application data cannot be made"};
    const nlohmann::ordered_json json{
        {"imei", imei}, {"time", FormatLocalTime(run.time)}, {"code", run.code}, {"reason", run.reason}};
    const std::string path = NotePath(folder, imei);
    constexpr auto kReplace = nlohmann::json::error_handler_t::replace;
    return os::WriteText(path, path + ".new", json.dump(4, ' ', false, kReplace) + "\n");
}

std::optional<LastRun> LoadLastRun(const std::string& imei, LocalTime time)
{
    std::string text;
    if (!os::ReadText(NotePath(NotesFolder(), imei), text).ok()) return std::nullopt;
    const auto json = nlohmann::json::parse(text, nullptr, false);
    if (!json.is_object() || json.value("imei", "") != imei || json.value("time", "") != FormatLocalTime(time))
        return std::nullopt;
    return LastRun{time, json.value("code", 0), json.value("reason", "")};
}

}  // namespace kesta
