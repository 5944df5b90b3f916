#include "formats/timestamp.h"

#include <chrono>

#include "formats/ascii.h"

namespace kesta::formats {
namespace {

/// Takes exactly so many digits off the text.
std::optional<int> TakeNumber(std::string_view& text, size_t digits)
{
    if (text.size() < digits) {
        return {};
    }
    int number = 0;
    for (size_t i = 0; i < digits; ++i) {
        if (!IsDigit(text[i])) {
            return {};
        }
        number = number * 10 + (text[i] - '0');
    }
    text.remove_prefix(digits);
    return number;
}

bool Take(std::string_view& text, char c)
{
    if (text.empty() || ToUpper(text.front()) != c) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

std::optional<int64_t> TakeDate(std::string_view& text)
{
    const auto year = TakeNumber(text, 4);
    if (!year) {
        return {};
    }
    Take(text, '-');
    const auto month = TakeNumber(text, 2);
    Take(text, '-');
    const auto day = TakeNumber(text, 2);
    if (!month || !day) {
        return {};
    }
    const std::chrono::year_month_day date{std::chrono::year{*year}, std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day))};
    if (!date.ok()) {
        return {};
    }
    return std::chrono::seconds(std::chrono::sys_days(date).time_since_epoch()).count();
}

std::optional<int64_t> TakeTimeOfDay(std::string_view& text)
{
    const auto hour = TakeNumber(text, 2);
    Take(text, ':');
    const auto minute = TakeNumber(text, 2);
    if (!hour || !minute) {
        return {};
    }
    Take(text, ':');
    const auto second = TakeNumber(text, 2);
    if (*hour > 23 || *minute > 59 || second.value_or(0) > 60) {
        return {};
    }
    if (Take(text, '.') || Take(text, ',')) {
        while (!text.empty() && IsDigit(text.front())) {
            text.remove_prefix(1);
        }
    }
    return *hour * 3600 + *minute * 60 + second.value_or(0);
}

/// Seconds east of Greenwich.
std::optional<int64_t> TakeZone(std::string_view& text)
{
    if (text.empty() || Take(text, 'Z')) {
        return 0;
    }
    const bool east = text.front() == '+';
    if (!east && text.front() != '-') {
        return {};
    }
    text.remove_prefix(1);
    const auto hours = TakeNumber(text, 2);
    if (!hours) {
        return {};
    }
    Take(text, ':');
    const int minutes = TakeNumber(text, 2).value_or(0);
    if (*hours > 23 || minutes > 59) {
        return {};
    }
    return (east ? 1 : -1) * (*hours * 3600 + minutes * 60);
}

}  // namespace

std::optional<int64_t> ParseTimestamp(std::string_view text)
{
    text = Trimmed(text);
    const auto date = TakeDate(text);
    if (!date || text.empty()) {
        return date;
    }
    if (!Take(text, 'T') && !Take(text, ' ')) {
        return {};
    }
    const auto time = TakeTimeOfDay(text);
    if (!time) {
        return {};
    }
    const auto zone = TakeZone(text);
    if (!zone || !text.empty()) {
        return {};
    }
    return *date + *time - *zone;
}

}  // namespace kesta::formats
