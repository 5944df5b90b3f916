#include "sync/deletion_guard.h"

#include <algorithm>

#include "state/state_file.h"

namespace kesta {
namespace {

std::string FileOf(const std::string& imei)
{
    return imei + ".deferred.json";
}

// What earlier clients have written instead.
std::string FormerFileOf(const std::string& imei)
{
    return imei + ".held-back.json";
}

}  // namespace

DeletionGuard::DeletionGuard(const std::string& imei, bool force) : imei_(imei), force_(force)
{
    // Anybody may have damaged it: it counts as none then.
    nlohmann::json state;
    if (!ReadStateFile(FileOf(imei), imei, state).ok()) {
        return;
    }
    if (state.is_null() && !ReadStateFile(FormerFileOf(imei), imei, state).ok()) {
        return;
    }
    if (!state.contains("recorded") || !state["recorded"].is_object()) {
        return;
    }
    for (const auto& [what, recorded] : state["recorded"].items()) {
        if (recorded.is_number_unsigned()) {
            recordedBefore_.emplace(what, recorded.get<size_t>());
        }
    }
}

bool DeletionGuard::defers(const std::string& what, size_t removals, size_t recorded)
{
    const auto before = recordedBefore_.find(what);
    if (before != recordedBefore_.end()) {
        recorded = std::min(recorded, before->second);
    }
    const bool areTooMany = removals * 2 > recorded && !force_;
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
    if (!hasChanged_ || imei_.empty()) {
        return;
    }
    hasChanged_ = false;
    os::Status status = recordedBefore_.empty() ? RemoveStateFile(FileOf(imei_))
                                                : WriteStateFile(FileOf(imei_), imei_, {{"recorded", recordedBefore_}});
    if (status.ok()) {
        status = RemoveStateFile(FormerFileOf(imei_));
    }
    if (!status.ok()) {
        report.note("what is deferred cannot be noted for the next run: " + status.text());
    }
}

}  // namespace kesta
