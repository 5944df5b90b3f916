#include "core/dates.h"

#include <algorithm>

#include "platform/calendar.h"
#include "platform/services.h"

namespace kesta {
namespace {

constexpr std::string_view kStoredForm = "0000-00-00 00:00:00";

void WriteTwo(char* out, int value)
{
    const auto number = static_cast<unsigned>(value);  // cheaper to divide
    out[0] = static_cast<char>('0' + number / 10);
    out[1] = static_cast<char>('0' + number % 10);
}

/// Reads digits at fixed places and remembers whether anything else was among them.
class DigitReader {
public:
    explicit DigitReader(const char* text) : text_(text) {}
    int two(size_t place)
    {
        const int tens = text_[place] - '0';
        const int ones = text_[place + 1] - '0';
        others_ |= tens | (9 - tens) | ones | (9 - ones);  // negative if one of them is
        return tens * 10 + ones;
    }
    void skip(size_t place, char expected) { others_ |= text_[place] == expected ? 0 : -1; }
    [[nodiscard]] bool sound() const { return others_ >= 0; }

private:
    const char* text_;
    int others_ = 0;
};

}  // namespace

DateText FormatDateTime(const DateValue& date) noexcept
{
    DateText result;
    if (date.Status == kDateNull) {
        return result;
    }
    platform::CalendarTime time = {};
    if (date.Status == kDateInvalid || !platform::SplitDate(date.Days, time)) {
        result.length_ = kInvalidDate.copy(result.text_, kInvalidDate.size());
        return result;
    }
    result.length_ = kStoredForm.copy(result.text_, kStoredForm.size());
    char* text = result.text_;
    WriteTwo(text, time.year / 100);
    WriteTwo(text + 2, time.year % 100);
    WriteTwo(text + 5, time.month);
    WriteTwo(text + 8, time.day);
    WriteTwo(text + 11, time.hour);
    WriteTwo(text + 14, time.minute);
    WriteTwo(text + 17, time.second);
    return result;
}

DateValue ParseDateTime(const DbChar* text) noexcept
{
    static constexpr DbChar kEmpty[] = {0};
    double days = 0.0;
    switch (platform::ParseDate(text != nullptr ? text : kEmpty, days)) {
        case platform::DateParse::kValid:
            return {days, kDateValid};
        case platform::DateParse::kTypeMismatch:
            return {0.0, kDateInvalid};
        default:
            return {-1.0, kDateInvalid};
    }
}

bool ParseStoredDate(std::string_view text, DateValue& date) noexcept
{
    if (text.size() != kStoredForm.size()) {
        return false;
    }
    DigitReader digits(text.data());
    const platform::CalendarTime time = {digits.two(0) * 100 + digits.two(2),
                                         digits.two(5),
                                         digits.two(8),
                                         digits.two(11),
                                         digits.two(14),
                                         digits.two(17)};
    digits.skip(4, '-');
    digits.skip(7, '-');
    digits.skip(10, ' ');
    digits.skip(13, ':');
    digits.skip(16, ':');
    if (!digits.sound()) {
        return false;
    }
    double days = 0.0;
    if (time.year < 100 || !platform::JoinDate(time, days)) {
        return false;
    }
    date = {days, kDateValid};
    return true;
}

DateValue DateFromTime(int64_t seconds) noexcept
{
    platform::CalendarTime time = {};
    double days = 0.0;
    if (!platform::LocalTime(seconds, time) || !platform::JoinDate(time, days)) {
        return {0.0, kDateInvalid};
    }
    return {days, kDateValid};
}

DateValue Now() noexcept
{
    return DateFromTime(platform::services.now());
}

}  // namespace kesta
