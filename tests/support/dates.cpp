#include "support/dates.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace kesta::test {
namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr sys_days kDayZero = std::chrono::year(1899) / 12 / 30;
constexpr double kMinute = 60.0 / 86400;

/// Days on a line on which time always runs forward; day numbers run forward within a day, whatever their sign.
double OnALine(double dayNumber)
{
    const double whole = std::trunc(dayNumber);
    return whole + std::abs(dayNumber - whole);
}

}  // namespace

DateValue Date(int year, int month, int day, int hour, int minute, int second)
{
    const auto first = sys_days(year_month_day(std::chrono::year(year), std::chrono::month(1), std::chrono::day(1)) +
                                std::chrono::months(month - 1));
    const double whole = static_cast<double>((first + days(day - 1) - kDayZero).count());
    const double line = whole + (hour * 3600 + minute * 60 + second) / 86400.0;
    const double dayOfLine = std::floor(line);
    return {dayOfLine < 0 ? dayOfLine - (line - dayOfLine) : line, kDateValid};
}

std::string DateText(const DateValue& date)
{
    if (date.Status == kDateNull) {
        return "<null>";
    }
    if (date.Status != kDateValid) {
        return "<invalid>";
    }
    const auto seconds = static_cast<int64_t>(std::floor(OnALine(date.Days) * 86400 + 0.5));
    const int64_t day = seconds >= 0 ? seconds / 86400 : (seconds - 86399) / 86400;
    const auto ofDay = static_cast<int>(seconds - day * 86400);
    const year_month_day calendar(kDayZero + days(day));
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(calendar.year()),
                  static_cast<unsigned>(calendar.month()), static_cast<unsigned>(calendar.day()), ofDay / 3600,
                  ofDay / 60 % 60, ofDay % 60);
    return text;
}

bool IsNow(const DateValue& date)
{
    const time_t moment = std::time(nullptr);
    const std::tm* local = std::localtime(&moment);
    const DateValue now =
        Date(local->tm_year + 1900, local->tm_mon + 1, local->tm_mday, local->tm_hour, local->tm_min, local->tm_sec);
    return date.Status == kDateValid && std::abs(date.Days - now.Days) < kMinute;
}

bool IsNow(const std::string& stored)
{
    int field[6] = {};
    int end = 0;
    // The fields' widths are checked by the length, since the conversions would take shorter ones.
    if (std::sscanf(stored.c_str(), "%4d-%2d-%2d %2d:%2d:%2d%n", &field[0], &field[1], &field[2], &field[3], &field[4],
                    &field[5], &end) != 6) {
        return false;
    }
    return end == 19 && stored.size() == 19 && IsNow(Date(field[0], field[1], field[2], field[3], field[4], field[5]));
}

}  // namespace kesta::test
