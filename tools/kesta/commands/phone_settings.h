// The settings of a phone by name: how they are shown, and how the user's text becomes a value.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "database/setting_table.h"

namespace kesta {

/// Null for an unknown name.
[[nodiscard]] const Setting* FindSetting(std::string_view name);
/// "yes", "2", "2026-01-31 00:00:00"; empty for a text or date that is not set.
[[nodiscard]] std::string ShowSetting(const PhoneSettings& settings, const Setting& setting);
/// Why the text is no value of this setting; empty when it is and has been taken.
[[nodiscard]] std::string TakeSetting(PhoneSettings& settings, const Setting& setting, const std::string& text);

/// yes, no, true, false, on, off, 1 and 0, in either case; std::nullopt for anything else.
[[nodiscard]] std::optional<bool> ParseTruth(std::string_view text);
/// Those of the names that somebody who wrote this may have meant, the nearest first.
[[nodiscard]] std::vector<std::string> NearNames(std::string_view written, std::span<const std::string> names);

}  // namespace kesta
