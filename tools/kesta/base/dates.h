// Points in local time as the books keep them: whole seconds since 30 December 1899 00:00.
#pragma once

#include <kesta_db/kesta_db.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kesta {

using LocalTime = std::int64_t;

/// Nothing gives the null date.
[[nodiscard]] DateValue ToDateValue(std::optional<LocalTime> time);
/// Nothing for an invalid or null date.
[[nodiscard]] std::optional<LocalTime> FromDateValue(const DateValue& date);
/// "2026-01-31 23:59:58"
[[nodiscard]] std::string FormatLocalTime(LocalTime time);
/// "2026-01-31", or with the time of day after a blank or T: "2026-01-31 23:59", "2026-01-31 23:59:58". Nothing for any
/// other text and for a day that there is not, or that the books cannot hold.
[[nodiscard]] std::optional<LocalTime> ParseLocalTime(std::string_view text);
/// A moment given in UTC as the books would keep it; nothing when it lies outside the years that they can hold.
[[nodiscard]] std::optional<LocalTime> BooksTime(std::int64_t utcSeconds);

}  // namespace kesta
