// The user's time zone: moments in UTC as the database keeps them.
#pragma once

#include <cstdint>
#include <optional>

#include "base/dates.h"

namespace kesta::os {

/// std::nullopt when the system cannot tell the local time, or the database cannot hold it.
[[nodiscard]] std::optional<LocalTime> ToLocalTime(int64_t utcSeconds);

}  // namespace kesta::os
