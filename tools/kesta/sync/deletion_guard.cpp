#include "sync/deletion_guard.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "base/names.h"
#include "state/client_folder.h"

namespace kesta {
namespace {

std::string StatePath(const std::string& imei)
{
    return os::Join(ClientFolder(), SafeName(imei + ".held-back.json"));
}

}  // namespace

DeletionGuard::DeletionGuard(const std::string& imei, bool force) : imei_(imei), force_(force)
{
    std::string text;
    if (!os::ReadText(StatePath(imei), text).ok()) return;
    const auto json = nlohmann::json::parse(text, nullptr, false);
    // Anybody may have damaged it.
    if (!json.is_object() || !json.contains("imei") || json["imei"] != imei || !json.contains("recorded")) return;
    if (!json["recorded"].is_object()) return;
    for (const auto& [what, recorded] : json["recorded"].items())
        if (recorded.is_number_unsigned()) recordedBefore_.emplace(what, recorded.get<std::size_t>());
}

bool DeletionGuard::defers(const std::string& what, std::size_t leaving, std::size_t recorded)
{
    const auto before = recordedBefore_.find(what);
    if (before != recordedBefore_.end()) recorded = std::min(recorded, before->second);
    const bool areTooMany = leaving * 2 > recorded && !force_;
    if (areTooMany && before == recordedBefore_.end()) {
        recordedBefore_.emplace(what, recorded);
        hasChanged_ = true;
    } else if (!areTooMany && before != recordedBefore_.end()) {
        recordedBefore_.erase(before);
        hasChanged_ = true;
    }
    return areTooMany;
}

void DeletionGuard::save(Report& report)
{
    if (!hasChanged_ || imei_.empty()) return;
    hasChanged_ = false;
    os::Status status;
    if (recordedBefore_.empty()) {
        status = os::RemoveFile(StatePath(imei_));
    } else {
        const nlohmann::ordered_json json{{"imei", imei_}, {"recorded", recordedBefore_}};
        constexpr auto kReplace = nlohmann::json::error_handler_t::replace;
        status = WriteStateFile(StatePath(imei_), json.dump(4, ' ', false, kReplace) + "\n");
    }
    if (!status.ok()) report.note("what is deferred cannot be noted for the next run: " + status.text());
}

}  // namespace kesta
