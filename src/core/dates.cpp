#include "core/dates.h"

#include <algorithm>

#include "platform/calendar.h"
#include "platform/services.h"

namespace kesta {
namespace {

constexpr std::string_view kStoredForm = "0000-00-00 00:00:00";  // a 0 stands for any digit

void WriteDigits(char* out, int value, int digits)
{
    for (int i = digits; i-- > 0; value /= 10) out[i] = static_cast<char>('0' + value % 10);
}

constexpr bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

int ReadDigits(const char* text, int digits)
{
    int value = 0;
    for (int i = 0; i < digits; ++i) value = value * 10 + (text[i] - '0');
    return value;
}

}  // namespace

DateText FormatDateTime(const DateValue& date) noexcept
{
    DateText result;
    if (date.Status == kDateNull) return result;
    platform::CalendarTime time = {};
    if (date.Status == kDateInvalid || !platform::SplitDate(date.Days, time)) {
        result.length_ = kInvalidDate.copy(result.text_, kInvalidDate.size());
        return result;
    }
    result.length_ = kStoredForm.copy(result.text_, kStoredForm.size());
    char* text = result.text_;
    WriteDigits(text, time.year, 4);
    WriteDigits(text + 5, time.month, 2);
    WriteDigits(text + 8, time.day, 2);
    WriteDigits(text + 11, time.hour, 2);
    WriteDigits(text + 14, time.minute, 2);
    WriteDigits(text + 17, time.second, 2);
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
    if (text.size() != kStoredForm.size()) return false;
    for (size_t i = 0; i < text.size(); ++i) {
        if (kStoredForm[i] == '0' ? !IsDigit(text[i]) : text[i] != kStoredForm[i]) return false;
    }
    const char* digits = text.data();
    const platform::CalendarTime time = {ReadDigits(digits, 4),      ReadDigits(digits + 5, 2),
                                         ReadDigits(digits + 8, 2),  ReadDigits(digits + 11, 2),
                                         ReadDigits(digits + 14, 2), ReadDigits(digits + 17, 2)};
    double days = 0.0;
    if (time.year < 100 || !platform::JoinDate(time, days)) return false;
    date = {days, kDateValid};
    return true;
}

DateValue DateFromTime(int64_t seconds) noexcept
{
    platform::CalendarTime time = {};
    double days = 0.0;
    if (!platform::LocalTime(seconds, time) || !platform::JoinDate(time, days)) return {0.0, kDateInvalid};
    return {days, kDateValid};
}

DateValue Now() noexcept
{
    return DateFromTime(platform::services.now());
}

}  // namespace kesta
