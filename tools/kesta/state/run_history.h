// The last runs of each phone, for kesta report: what they did, what failed, what was deferred.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "base/dates.h"
#include "os/status.h"

namespace kesta {

struct RunRecord {
    LocalTime time;  // of its end
    int code = 0;
    std::string reason;  // empty when the run went well
    size_t added = 0, updated = 0, removed = 0, unchanged = 0, failed = 0, deferred = 0;
    std::vector<std::pair<std::string, std::string>> failures;  // what and why: the first of them
};

/// The latest first. A damaged state file counts as none.
[[nodiscard]] std::vector<RunRecord> ReadRuns(const std::string& imei);
/// Older ones go.
os::Status AddRun(const std::string& imei, RunRecord run);

}  // namespace kesta
