// Points in time as vCard and iCalendar write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kesta::formats {

/// Seconds since 1970 in UTC from "20240229T123456Z", "2024-02-29T12:34:56.5+01:00", a date alone, and mixtures of
/// the two spellings. A time without a zone is taken for UTC: such times are only compared with one another.
[[nodiscard]] std::optional<int64_t> ParseTimestamp(std::string_view text);

}  // namespace kesta::formats
