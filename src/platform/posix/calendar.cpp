#include "platform/calendar.h"

#include <locale.h>

#include <chrono>
#include <cmath>
#include <ctime>
#include <cuchar>

namespace kesta::platform {
namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr sys_days kDayZero = std::chrono::year(1899) / 12 / 30;
constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;
constexpr int kFirstDay = (sys_days(std::chrono::year(kFirstYear) / 1 / 1) - kDayZero).count();
constexpr int kLastDay = (sys_days(std::chrono::year(kLastYear) / 12 / 31) - kDayZero).count();
constexpr int kSecondsPerDay = 86400;

/// Reads `count` digits; -1 when something else is among them.
int Digits(const DbChar*& text, int count) noexcept
{
    int value = 0;
    for (; count > 0; --count, ++text) {
        if (*text < u'0' || *text > u'9') {
            return -1;
        }
        value = value * 10 + (*text - u'0');
    }
    return value;
}

bool Skip(const DbChar*& text, DbChar expected) noexcept
{
    if (*text != expected) {
        return false;
    }
    ++text;
    return true;
}

/// How the user writes times; as in C when the system lacks the locale that is asked for.
locale_t UsersLocale() noexcept
{
    constexpr int kParts = LC_TIME_MASK | LC_CTYPE_MASK;
    const locale_t users = newlocale(kParts, "", nullptr);
    return users != nullptr ? users : newlocale(kParts, "C", nullptr);
}

/// "YYYY-MM-DD"
bool ParseDay(const DbChar*& text, CalendarTime& time) noexcept
{
    return (time.year = Digits(text, 4)) >= 0 && Skip(text, u'-') && (time.month = Digits(text, 2)) >= 0 &&
           Skip(text, u'-') && (time.day = Digits(text, 2)) >= 0;
}

/// "HH:MM:SS"
bool ParseTimeOfDay(const DbChar*& text, CalendarTime& time) noexcept
{
    return (time.hour = Digits(text, 2)) >= 0 && Skip(text, u':') && (time.minute = Digits(text, 2)) >= 0 &&
           Skip(text, u':') && (time.second = Digits(text, 2)) >= 0;
}

bool ParseCalendarTime(const DbChar* text, CalendarTime& time) noexcept
{
    const DbChar* rest = text;
    if (ParseDay(rest, time)) {
        return *rest == 0 || (Skip(rest, u' ') && ParseTimeOfDay(rest, time) && *rest == 0);
    }
    rest = text;
    time = {1899, 12, 30, 0, 0, 0};  // a time alone lies in day zero
    return ParseTimeOfDay(rest, time) && *rest == 0;
}

/// Converts text in the character set of `users` for as long as it fits and is valid; terminates it.
size_t WideFromLocale(locale_t users, const char* text, size_t length, DbChar* out, size_t room) noexcept
{
    if (room == 0) {
        return 0;
    }
    const locale_t callers = uselocale(users);
    const char* const end = text + length;
    mbstate_t state = {};
    size_t written = 0;
    while (text < end && written + 1 < room) {
        const size_t taken = std::mbrtoc16(out + written, text, static_cast<size_t>(end - text), &state);
        if (taken == 0 || taken == static_cast<size_t>(-1) || taken == static_cast<size_t>(-2)) {
            break;
        }
        if (taken != static_cast<size_t>(-3)) {
            text += taken;  // -3: the second half of a surrogate pair
        }
        ++written;
    }
    out[written] = 0;
    uselocale(callers);
    return written;
}

}  // namespace

bool SplitDate(double days, CalendarTime& time) noexcept
{
    if (!(days > kFirstDay - 1.0 && days < kLastDay + 1.0)) {
        return false;
    }
    const double whole = std::trunc(days);
    int day = static_cast<int>(whole);
    int second = static_cast<int>(std::floor(std::abs(days - whole) * kSecondsPerDay + 0.5));
    if (second == kSecondsPerDay) {
        second = 0;
        ++day;
    }
    if (day > kLastDay) {
        return false;
    }
    const year_month_day date(kDayZero + std::chrono::days(day));
    time = {static_cast<int>(date.year()),
            static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())),
            second / 3600,
            second / 60 % 60,
            second % 60};
    return true;
}

bool JoinDate(const CalendarTime& time, double& days) noexcept
{
    // The calendar's own types would cut larger numbers.
    if (time.year < kFirstYear || time.year > kLastYear || time.month < 1 || time.month > 12) {
        return false;
    }
    if (time.day < 1 || time.day > 31) {
        return false;
    }
    const year_month_day date(std::chrono::year(time.year), std::chrono::month(static_cast<unsigned>(time.month)),
                              std::chrono::day(static_cast<unsigned>(time.day)));
    if (time.day > 28 && !date.ok()) {
        return false;
    }
    if (time.hour < 0 || time.hour > 23 || time.minute < 0 || time.minute > 59 || time.second < 0 || time.second > 59) {
        return false;
    }
    const auto whole = static_cast<double>((sys_days(date) - kDayZero).count());
    const double fraction = (time.hour * 3600 + time.minute * 60 + time.second) / double{kSecondsPerDay};
    days = whole < 0 ? whole - fraction : whole + fraction;
    return true;
}

bool LocalTime(int64_t seconds, CalendarTime& time) noexcept
{
    const time_t moment = seconds;
    std::tm local = {};
    if (localtime_r(&moment, &local) == nullptr) {
        return false;
    }
    // A leap second has no place in a day of 86,400 seconds.
    const int second = local.tm_sec > 59 ? 59 : local.tm_sec;
    time = {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, second};
    return true;
}

DateParse ParseDate(const DbChar* text, double& days) noexcept
{
    CalendarTime time = {};
    return ParseCalendarTime(text, time) && JoinDate(time, days) ? DateParse::kValid : DateParse::kTypeMismatch;
}

size_t LocaleDate(double days, DbChar* out, size_t room) noexcept
{
    CalendarTime time = {};
    if (!SplitDate(days, time)) {
        return 0;
    }
    std::tm fields = {};
    fields.tm_year = time.year - 1900;
    fields.tm_mon = time.month - 1;
    fields.tm_mday = time.day;
    fields.tm_hour = time.hour;
    fields.tm_min = time.minute;
    fields.tm_sec = time.second;
    fields.tm_isdst = -1;
    const std::chrono::year year(time.year);
    const sys_days day = year / time.month / time.day;
    fields.tm_wday = static_cast<int>(std::chrono::weekday(day).c_encoding());
    fields.tm_yday = static_cast<int>((day - sys_days(year / 1 / 1)).count());
    const locale_t users = UsersLocale();
    if (users == nullptr) {
        return 0;
    }
    char text[256];
    const size_t length = strftime_l(text, sizeof text, "%x %X", &fields, users);
    const size_t written = WideFromLocale(users, text, length, out, room);
    freelocale(users);
    return written;
}

}  // namespace kesta::platform
