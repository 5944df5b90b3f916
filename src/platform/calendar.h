// Dates as the system knows them. A day number counts days since 30 December 1899 00:00 local time, the fraction being
// the time of day; it runs forward in the day for negative numbers too.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kesta_db/kesta_db.h"

namespace kesta::platform {

struct CalendarTime {
    int year;  // 100 to 9999
    int month;
    int day;
    int hour;
    int minute;
    int second;
};

/// Splits a day number, rounded to the second. False outside of the years 100 to 9999 and for what is not a number.
bool SplitDate(double days, CalendarTime& time) noexcept;

/// False for a time that is in no calendar.
bool JoinDate(const CalendarTime& time, double& days) noexcept;

/// Local calendar time of seconds since 1970.
bool LocalTime(int64_t seconds, CalendarTime& time) noexcept;

enum class DateParse { kValid, kTypeMismatch, kFailure };

/// Parses a date as the user writes it, zero-terminated.
DateParse ParseDate(const DbChar* text, double& days) noexcept;

/// Writes the date in the user's own format, terminated; returns the length, 0 when the date cannot be written.
size_t LocaleDate(double days, DbChar* out, size_t room) noexcept;

}  // namespace kesta::platform
