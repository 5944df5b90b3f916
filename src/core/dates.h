// DateValue: days since 30 December 1899 and a status, and its text in the database.
#pragma once

#include <cstdint>
#include <string_view>

#include "kesta_db/kesta_db.h"

namespace kesta {

inline constexpr std::string_view kInvalidDate = "Invalid DateTime";

/// The text of a date, "YYYY-MM-DD HH:MM:SS", kept in place.
class DateText {
public:
    [[nodiscard]] std::string_view view() const { return {text_, length_}; }

private:
    friend DateText FormatDateTime(const DateValue& date) noexcept;
    char text_[20];
    size_t length_ = 0;
};

/// The empty text for a null date, kInvalidDate for an invalid one or one that is in no calendar.
DateText FormatDateTime(const DateValue& date) noexcept;

/// Parses a zero-terminated text as the user writes dates; null is taken as empty.
/// What is not a date gives 0.0 and invalid, any other failure -1.0 and invalid.
DateValue ParseDateTime(const DbChar* text) noexcept;

/// Reads "YYYY-MM-DD HH:MM:SS", the form in which dates are stored; false for any other text.
bool ParseStoredDate(std::string_view text, DateValue& date) noexcept;

/// Local time of seconds since 1970.
DateValue DateFromTime(int64_t seconds) noexcept;

DateValue Now() noexcept;

}  // namespace kesta
