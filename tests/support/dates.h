// Dates in tests, by a calendar of their own.
#pragma once

#include <string>

#include "kesta_db/kesta_db.h"

namespace kesta::test {

/// Half a second, in days: dates that differ by less are the same second.
inline constexpr double kHalfSecond = 0.5 / 86400;

/// A valid date. Any field may lie outside of its usual range and is then carried over.
DateValue Date(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

inline DateValue NullDate()
{
    return {0.0, kDateNull};
}
inline DateValue InvalidDate()
{
    return {0.0, kDateInvalid};
}

/// "2024-02-29 12:34:56", "<null>" or "<invalid>"; rounded to the second.
std::string DateText(const DateValue& date);

/// Whether the date is the present local time, give or take a minute.
bool IsNow(const DateValue& date);

/// Whether the stored text "YYYY-MM-DD HH:MM:SS" is the present local time, give or take a minute.
bool IsNow(const std::string& stored);

}  // namespace kesta::test
