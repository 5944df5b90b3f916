// The phones that a command is about.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "database/database.h"

namespace kesta {

/// Throws when the database does not know the phone.
[[nodiscard]] PhoneSettings KnownPhone(const Database& database, const std::string& imei);
/// The phone that is named, else all that have not been forgotten.
[[nodiscard]] std::vector<PhoneSettings> ChosenPhones(const Database& database, const std::optional<std::string>& imei);

}  // namespace kesta
