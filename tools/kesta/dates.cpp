#include "dates.h"

#include <fmt/format.h>

#include <chrono>
#include <cmath>

#include "os/system.h"

namespace kesta {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;
constexpr std::int64_t kFirstDay = -657434;  // 1 January 100
constexpr std::int64_t kLastDay = 2958465;   // 31 December 9999

struct DayAndTime {
    std::int64_t day;
    std::int64_t seconds;
};

DayAndTime Split(LocalTime time)
{
    const std::int64_t day = time / kSecondsPerDay - (time % kSecondsPerDay < 0 ? 1 : 0);
    return {day, time - day * kSecondsPerDay};
}

}  // namespace

DateValue ToDateValue(std::optional<LocalTime> time)
{
    if (!time) return {0.0, kDateNull};
    const auto [day, seconds] = Split(*time);
    const double fraction = static_cast<double>(seconds) / kSecondsPerDay;
    // The fraction runs forward in the day also where the day number is negative.
    const auto days = static_cast<double>(day);
    return {day < 0 ? days - fraction : days + fraction, kDateValid};
}

std::optional<LocalTime> FromDateValue(const DateValue& date)
{
    if (date.Status != kDateValid || !std::isfinite(date.Days) || std::fabs(date.Days) > 3e6) return std::nullopt;
    const double day = std::trunc(date.Days);
    const double fraction = std::fabs(date.Days - day);
    return static_cast<LocalTime>(day) * kSecondsPerDay + std::llround(fraction * kSecondsPerDay);
}

std::string FormatLocalTime(LocalTime time)
{
    using namespace std::chrono;
    const auto [day, seconds] = Split(time);
    const year_month_day date(sys_days(year(1899) / December / 30) + days(day));
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), seconds / 3600,
                       seconds / 60 % 60, seconds % 60);
}

std::optional<LocalTime> BooksTime(std::int64_t utcSeconds)
{
    const auto time = os::LocalSeconds(utcSeconds);
    if (!time) return std::nullopt;
    const std::int64_t day = Split(*time).day;
    return day >= kFirstDay && day <= kLastDay ? time : std::nullopt;
}

}  // namespace kesta
