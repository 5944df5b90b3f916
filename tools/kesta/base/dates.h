// Points in local time, as texts and as numbers.
#pragma once

#include <kesta_db/cpp/base.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kesta {

using kesta_db::LocalTime;

/// Seconds since 30 December 1899 00:00: as state files have them.
[[nodiscard]] constexpr int64_t ToNumber(LocalTime time)
{
    return (time - LocalTime(kesta_db::kDayZero)).count();
}
[[nodiscard]] constexpr LocalTime FromNumber(int64_t seconds)
{
    return LocalTime(kesta_db::kDayZero) + std::chrono::seconds(seconds);
}
/// "2026-01-31 23:59:58"
[[nodiscard]] std::string FormatLocalTime(LocalTime time);
/// "2026-01-31", or with the time of day after a blank or T: "2026-01-31 23:59", "2026-01-31 23:59:58". std::nullopt
/// for any other text and for a day that there is not, or that the database cannot hold.
[[nodiscard]] std::optional<LocalTime> ParseLocalTime(std::string_view text);
/// Whether it lies in the years 100 to 9999, which the database can hold.
[[nodiscard]] bool IsStorable(LocalTime time);

}  // namespace kesta
