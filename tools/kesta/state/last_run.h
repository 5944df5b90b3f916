// How the last run of each phone ended. The database takes a run's error code but has no way to give it back, so the
// client keeps a state file of its own beside it.
#pragma once

#include <optional>
#include <string>

#include "base/dates.h"
#include "os/status.h"

namespace kesta {

struct LastRun {
    LocalTime time;
    int code = 0;
    std::string reason;  // empty when the run went well
};

os::Status SaveLastRun(const std::string& imei, const LastRun& run);
/// std::nullopt if there is no state file, or none about the run that ended at this time.
[[nodiscard]] std::optional<LastRun> LoadLastRun(const std::string& imei, LocalTime time);

}  // namespace kesta
