// How the commands that show the database writes JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>

#include "database/database.h"

namespace kesta {

using Json = nlohmann::ordered_json;

/// "2026-01-31 23:59:58", or null.
[[nodiscard]] Json TimeJson(const std::optional<LocalTime>& time);
[[nodiscard]] Json SettingsJson(const PhoneSettings& settings);
/// Whether each main folder is selected for the phone.
[[nodiscard]] Json MainFoldersJson(const Database& database, const std::string& imei);
[[nodiscard]] Json FileJson(const RecordedFile& file, const char* nameOfBase);
void PrintJson(const Json& json);

}  // namespace kesta
