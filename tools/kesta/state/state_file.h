// What the client keeps of each phone on the PC, beside the database: JSON objects that say which phone they are about.
//
//     nlohmann::json state;
//     if (ReadStateFile(imei + ".json", imei, state).ok() && !state.is_null()) ...
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "os/status.h"

namespace kesta {

/// Where they lie. Empty when there is no folder for application data.
[[nodiscard]] std::string StateFolder();

/// Leaves state null when there is no such file, or only one about another phone: file systems that ignore case mix up
/// names. Fails for a file that cannot be read or is damaged.
os::Status ReadStateFile(const std::string& name, const std::string& imei, nlohmann::json& state);
/// What of a state file survives a power failure from now on. Without its name it may be the one before.
enum class StateFlush { kAll, kContents, kNothing };

/// Replaces the file. The phone is added to what it says.
os::Status WriteStateFile(const std::string& name, const std::string& imei, nlohmann::ordered_json state,
                          StateFlush flush = StateFlush::kAll);
/// What all files hold whose names begin so, without those that cannot be read or are damaged. Each says by "imei"
/// which phone it is about.
[[nodiscard]] std::vector<nlohmann::json> ReadStateFiles(std::string_view prefix);
/// It is no failure when there is none.
os::Status RemoveStateFile(const std::string& name);

}  // namespace kesta
