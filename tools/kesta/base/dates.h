// Points in local time as the database keeps them: whole seconds since 30 December 1899 00:00.
#pragma once

#include <kesta_db/kesta_db.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kesta {

using LocalTime = int64_t;

/// std::nullopt gives the null date.
[[nodiscard]] DateValue ToDateValue(std::optional<LocalTime> time);
/// std::nullopt for an invalid or null date.
[[nodiscard]] std::optional<LocalTime> FromDateValue(const DateValue& date);
/// "2026-01-31 23:59:58"
[[nodiscard]] std::string FormatLocalTime(LocalTime time);
/// "2026-01-31", or with the time of day after a blank or T: "2026-01-31 23:59", "2026-01-31 23:59:58". std::nullopt
/// for any other text and for a day that there is not, or that the database cannot hold.
[[nodiscard]] std::optional<LocalTime> ParseLocalTime(std::string_view text);
/// Whether it lies in the years 100 to 9999, which the database can hold.
[[nodiscard]] bool IsStorable(LocalTime time);

}  // namespace kesta
