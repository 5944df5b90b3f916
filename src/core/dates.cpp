#include "core/dates.h"

#include <bit>
#include <cstdint>
#include <cstring>

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

/// Eight characters of a date in its stored form, from kPlace on, read at once: a list has two dates in a row.
template <size_t kPlace>
class DateBlock {
public:
    explicit DateBlock(std::string_view text)
    {
        std::memcpy(&digits_, text.data() + kPlace, sizeof digits_);
        constexpr uint64_t kForm = form();  // Clang 14 takes no consteval function of a template
        digits_ ^= kForm;
    }

    /// Whether there are digits, and between them what the form has there.
    [[nodiscard]] bool isWellFormed() const
    {
        constexpr uint64_t kBeyondNine = kEach * (0x80 - 10);  // sets the high bit of what is 10 or more
        constexpr uint64_t kSeparators = separators();
        return ((digits_ | (digits_ + kBeyondNine)) & kEach * 0x80) == 0 && (digits_ & kSeparators) == 0;
    }

    /// The number that two digits of the text make.
    [[nodiscard]] int two(size_t place) const
    {
        static_assert(std::endian::native == std::endian::little);
        return static_cast<int>((digits_ * 10 + (digits_ >> 8)) >> 8 * (place - kPlace) & 0xFF);
    }

private:
    static constexpr uint64_t kEach = 0x0101010101010101;

    static constexpr uint64_t form()
    {
        uint64_t form = 0;
        for (size_t i = 0; i < sizeof form; ++i) {
            form |= static_cast<uint64_t>(kStoredForm[kPlace + i]) << 8 * i;
        }
        return form;
    }
    static constexpr uint64_t separators()
    {
        uint64_t separators = 0;
        for (size_t i = 0; i < sizeof separators; ++i) {
            separators |= (kStoredForm[kPlace + i] == '0' ? uint64_t{0} : uint64_t{0xFF}) << 8 * i;
        }
        return separators;
    }

    uint64_t digits_;  // 0 to 9 where there are digits, 0 in between
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
    const DateBlock<0> day(text);      // YYYY-MM-
    const DateBlock<8> hour(text);     // DD HH:MM
    const DateBlock<11> second(text);  // HH:MM:SS
    if (!day.isWellFormed() || !hour.isWellFormed() || !second.isWellFormed()) {
        return false;
    }
    const platform::CalendarTime time = {
        day.two(0) * 100 + day.two(2), day.two(5), hour.two(8), hour.two(11), hour.two(14), second.two(17)};
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
