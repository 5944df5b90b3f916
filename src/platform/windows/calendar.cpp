#include "platform/calendar.h"

// clang-format off
#include <windows.h>
#include <oleauto.h>
// clang-format on

#include <chrono>
#include <ctime>

namespace kesta::platform {
namespace {

using std::chrono::year_month_day;

constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;

// What a day number lies between so that its day, not its rounded time, is of these years.
constexpr double kBeforeFirstDay = -657435.0;
constexpr double kAfterLastDay = 2958466.0;

/// False for what is not a number, too.
bool IsInCalendar(double days) noexcept
{
    return days > kBeforeFirstDay && days < kAfterLastDay;
}

bool IsValid(const CalendarTime& time) noexcept
{
    // The calendar's own types would cut larger numbers.
    if (time.year < kFirstYear || time.year > kLastYear || time.month < 1 || time.month > 12) return false;
    if (time.day < 1 || time.day > 31) return false;
    const year_month_day date(std::chrono::year(time.year), std::chrono::month(static_cast<unsigned>(time.month)),
                              std::chrono::day(static_cast<unsigned>(time.day)));
    return date.ok() && time.hour >= 0 && time.hour <= 23 && time.minute >= 0 && time.minute <= 59 &&
           time.second >= 0 && time.second <= 59;
}

}  // namespace

bool SplitDate(double days, CalendarTime& time) noexcept
{
    UDATE date = {};
    if (!IsInCalendar(days) || VarUdateFromDate(days, 0, &date) != S_OK) return false;
    const SYSTEMTIME& split = date.st;
    if (split.wYear > kLastYear) return false;  // rounded up past the last second
    time = {split.wYear, split.wMonth, split.wDay, split.wHour, split.wMinute, split.wSecond};
    return true;
}

bool JoinDate(const CalendarTime& time, double& days) noexcept
{
    // The system would roll 30 February over into March.
    if (!IsValid(time)) return false;
    SYSTEMTIME fields = {};
    fields.wYear = static_cast<WORD>(time.year);
    fields.wMonth = static_cast<WORD>(time.month);
    fields.wDay = static_cast<WORD>(time.day);
    fields.wHour = static_cast<WORD>(time.hour);
    fields.wMinute = static_cast<WORD>(time.minute);
    fields.wSecond = static_cast<WORD>(time.second);
    return SystemTimeToVariantTime(&fields, &days) != FALSE;
}

bool LocalTime(int64_t seconds, CalendarTime& time) noexcept
{
    const __time64_t moment = seconds;
    std::tm local = {};
    if (_localtime64_s(&local, &moment) != 0) return false;
    time = {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
    return true;
}

DateParse ParseDate(const DbChar* text, double& days) noexcept
{
    DATE parsed = 0.0;
    // The system only reads the text; its declaration does not say so.
    const HRESULT result = VarDateFromStr(const_cast<DbChar*>(text), LOCALE_USER_DEFAULT, 0, &parsed);
    if (result == DISP_E_TYPEMISMATCH) return DateParse::kTypeMismatch;
    if (FAILED(result)) return DateParse::kFailure;
    days = parsed;
    return DateParse::kValid;
}

size_t LocaleDate(double days, DbChar* out, size_t room) noexcept
{
    BSTR text = nullptr;
    if (room == 0 || !IsInCalendar(days)) return 0;
    if (VarBstrFromDate(days, LOCALE_USER_DEFAULT, 0, &text) != S_OK) return 0;
    size_t length = 0;
    for (; length + 1 < room && text[length] != 0; ++length) out[length] = text[length];
    out[length] = 0;
    SysFreeString(text);
    return length;
}

}  // namespace kesta::platform
