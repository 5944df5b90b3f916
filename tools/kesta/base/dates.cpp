#include "base/dates.h"

#include <fmt/format.h>

#include <charconv>
#include <chrono>
#include <cmath>

namespace kesta {
namespace {

constexpr int64_t kSecondsPerDay = 86400;
constexpr int64_t kFirstDay = -657434;  // 1 January 100
constexpr int64_t kLastDay = 2958465;   // 31 December 9999

struct DayAndTime {
    int64_t day;
    int64_t seconds;
};

DayAndTime Split(LocalTime time)
{
    const int64_t day = time / kSecondsPerDay - (time % kSecondsPerDay < 0 ? 1 : 0);
    return {day, time - day * kSecondsPerDay};
}

// Takes so many digits off the text; std::nullopt when it begins with anything else.
std::optional<unsigned> TakeDigits(std::string_view& text, size_t count)
{
    if (text.size() < count) {
        return std::nullopt;
    }
    unsigned number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + count, number);
    if (error != std::errc() || stop != text.data() + count) {
        return std::nullopt;
    }
    text.remove_prefix(count);
    return number;
}

bool TakeOne(std::string_view& text, std::string_view choice)
{
    if (text.empty() || choice.find(text.front()) == std::string_view::npos) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

// The time of day in seconds; std::nullopt when the text is no time to its end.
std::optional<int64_t> ParseTimeOfDay(std::string_view text)
{
    const auto hour = TakeDigits(text, 2);
    if (!hour || !TakeOne(text, ":")) {
        return std::nullopt;
    }
    const auto minute = TakeDigits(text, 2);
    std::optional<unsigned> second = 0u;
    if (TakeOne(text, ":")) {
        second = TakeDigits(text, 2);
    }
    if (!minute || !second || !text.empty() || *hour > 23 || *minute > 59 || *second > 59) {
        return std::nullopt;
    }
    return *hour * 3600 + *minute * 60 + *second;
}

}  // namespace

DateValue ToDateValue(std::optional<LocalTime> time)
{
    if (!time) {
        return {0.0, kDateNull};
    }
    const auto [day, seconds] = Split(*time);
    const double fraction = static_cast<double>(seconds) / kSecondsPerDay;
    // The fraction runs forward in the day also where the day number is negative.
    const auto days = static_cast<double>(day);
    return {day < 0 ? days - fraction : days + fraction, kDateValid};
}

std::optional<LocalTime> FromDateValue(const DateValue& date)
{
    if (date.Status != kDateValid || !std::isfinite(date.Days) || std::fabs(date.Days) > 3e6) {
        return std::nullopt;
    }
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

std::optional<LocalTime> ParseLocalTime(std::string_view text)
{
    using namespace std::chrono;
    const auto yearNumber = TakeDigits(text, 4);
    if (!yearNumber || !TakeOne(text, "-")) {
        return std::nullopt;
    }
    const auto monthNumber = TakeDigits(text, 2);
    if (!monthNumber || !TakeOne(text, "-")) {
        return std::nullopt;
    }
    const auto dayNumber = TakeDigits(text, 2);
    std::optional<int64_t> seconds = 0;
    if (TakeOne(text, " T")) {
        seconds = ParseTimeOfDay(text);
    } else if (!text.empty()) {
        return std::nullopt;
    }
    if (!dayNumber || !seconds) {
        return std::nullopt;
    }
    const year_month_day date(year(static_cast<int>(*yearNumber)), month(*monthNumber), day(*dayNumber));
    if (!date.ok()) {
        return std::nullopt;
    }
    const int64_t days = (sys_days(date) - sys_days(year(1899) / December / 30)).count();
    if (days < kFirstDay || days > kLastDay) {
        return std::nullopt;
    }
    return days * kSecondsPerDay + *seconds;
}

bool IsStorable(LocalTime time)
{
    const int64_t day = Split(time).day;
    return day >= kFirstDay && day <= kLastDay;
}

}  // namespace kesta
