// What a phone's syncs remember, for kesta settings: shown, added to and taken out of.
#pragma once

#include <string>
#include <vector>

#include "commands/json.h"
#include "state/sync_sources.h"

namespace kesta {

/// Throws when it cannot be read.
[[nodiscard]] SyncSources RememberedOf(const std::string& imei);
/// Throws when something to drop is not there, or when it cannot be written: then nothing has changed.
void ChangeRemembered(const std::string& imei, const SyncSources& added, const std::vector<std::string>& dropped);

/// A line each: "  music                       /home/me/Music".
[[nodiscard]] std::string DescribeRemembered(const SyncSources& sources);
[[nodiscard]] Json RememberedJson(const SyncSources& sources);

}  // namespace kesta
