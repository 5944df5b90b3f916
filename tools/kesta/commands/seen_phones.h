// The phones that are where they were last seen.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "state/seen_phone.h"

namespace kesta {

/// All of them, or the one with the IMEI. Throws when none is there.
[[nodiscard]] std::vector<SeenPhone> PhonesInPlace(const std::optional<std::string>& imei);

/// The folder that is given, else that of the one phone in place. Throws when there are several.
[[nodiscard]] std::string FolderOfPhone(const std::string& given, const std::optional<std::string>& imei);

}  // namespace kesta
