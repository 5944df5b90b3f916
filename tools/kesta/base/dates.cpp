#include "base/dates.h"

#include <fmt/format.h>

#include <charconv>
#include <chrono>

namespace kesta {
namespace {

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

// std::nullopt when the text is no time of day to its end.
std::optional<std::chrono::seconds> ParseTimeOfDay(std::string_view text)
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
    return std::chrono::hours(*hour) + std::chrono::minutes(*minute) + std::chrono::seconds(*second);
}

}  // namespace

std::string FormatLocalTime(LocalTime time)
{
    using namespace std::chrono;
    const local_days day = std::chrono::floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), clock.hours().count(),
                       clock.minutes().count(), clock.seconds().count());
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
    std::optional<seconds> timeOfDay = 0s;
    if (TakeOne(text, " T")) {
        timeOfDay = ParseTimeOfDay(text);
    } else if (!text.empty()) {
        return std::nullopt;
    }
    if (!dayNumber || !timeOfDay) {
        return std::nullopt;
    }
    const year_month_day date(year(static_cast<int>(*yearNumber)), month(*monthNumber), day(*dayNumber));
    if (!date.ok()) {
        return std::nullopt;
    }
    const LocalTime time = local_days(date) + *timeOfDay;
    return IsStorable(time) ? std::optional(time) : std::nullopt;
}

bool IsStorable(LocalTime time)
{
    using namespace std::chrono;
    return time >= local_days(year(100) / January / 1) && time < local_days(year(10000) / January / 1);
}

}  // namespace kesta
