// Text and dates at the client's edges.
#include "base/text.h"

#include <gtest/gtest.h>
#include <kesta_db/cpp/base.hpp>

#include "base/dates.h"
#include "os/local_time.h"

namespace kesta {
namespace {

using kesta_db::detail::FromDateValue;
using kesta_db::detail::Text;
using kesta_db::detail::ToDateValue;
using kesta_db::detail::Utf8;

kesta_db::detail::Utf16 Units(std::initializer_list<unsigned> units)
{
    kesta_db::detail::Utf16 text;
    for (const unsigned unit : units) {
        text += static_cast<DbChar>(unit);
    }
    return text;
}

TEST(TextTest, Text_ConvertsEveryLength)
{
    EXPECT_EQ(Text(""), Units({}));
    EXPECT_EQ(Text("a\u00e4\u20ac\U0001F600"), Units({'a', 0xE4, 0x20AC, 0xD83D, 0xDE00}));
    EXPECT_EQ(Text("\uFFFF\U00010000\U0010FFFF"), Units({0xFFFF, 0xD800, 0xDC00, 0xDBFF, 0xDFFF}));
}

TEST(TextTest, Text_RefusesWhatIsNotUtf8)
{
    for (const char* text :
         {"\x80", "\xff", "\xc3", "\xc0\x80", "\xc1\xbf", "\xe0\x80\x80", "\xed\xa0\x80", "\xed\xbf\xbf",
          "\xf0\x80\x80\x80", "\xf4\x90\x80\x80", "\xf5\x80\x80\x80", "\xe2\x82", "\xe2\x28\xa1"}) {
        EXPECT_THROW((void)Text(text), kesta_db::Error) << Printable(text);
        EXPECT_FALSE(IsValidUtf8(text)) << Printable(text);
    }
    EXPECT_THROW((void)Text(std::string_view("a\0b", 3)), kesta_db::Error);
}

TEST(TextTest, Utf8_ReplacesLoneSurrogates)
{
    EXPECT_EQ(Utf8(nullptr), "");
    EXPECT_EQ(Utf8(Units({'a', 0xE4, 0x20AC, 0xD83D, 0xDE00}).c_str()), "a\u00e4\u20ac\U0001F600");
    EXPECT_EQ(Utf8(Units({0xD83D, 'a', 0xDE00, 0xD83D}).c_str()), "\uFFFDa\uFFFD\uFFFD");
}

TEST(TextTest, Printable_ShowsWhatATerminalWouldObey)
{
    EXPECT_EQ(Printable("plain \u00e4 \U0001F600"), "plain \u00e4 \U0001F600");
    EXPECT_EQ(Printable("\x1b[31m\n\t\x7f"), "\\u001b[31m\\u000a\\u0009\\u007f");
    EXPECT_EQ(Printable("\u009b\u202e\u2066"), "\\u009b\\u202e\\u2066");
    EXPECT_EQ(Printable("\xff\xc3"), "\\xff\\xc3");
}

TEST(TextTest, DisplayWidth_CountsColumns)
{
    EXPECT_EQ(DisplayWidth("abc"), 3u);
    EXPECT_EQ(DisplayWidth("\u65e5\u672c"), 4u);
    EXPECT_EQ(DisplayWidth("e\u0301"), 1u);
    EXPECT_EQ(DisplayWidth("\U0001F600"), 2u);
}

TEST(DatesTest, DateValue_KeepsSecondsBothWays)
{
    const std::pair<int64_t, double> table[] = {{0, 0.0},
                                                {86400, 1.0},
                                                {86400 + 21600, 1.25},
                                                {-86400, -1.0},
                                                {-86400 + 21600, -1.25},  // the fraction runs forward in the day
                                                {-1, -1.0 - 86399.0 / 86400}};
    for (const auto& [time, days] : table) {
        const DateValue value = ToDateValue(FromNumber(time));
        EXPECT_DOUBLE_EQ(value.Days, days);
        EXPECT_EQ(value.Status, kDateValid);
        EXPECT_EQ(FromDateValue(value), FromNumber(time));
    }
    for (int64_t time = 3'900'000'000; time < 3'900'000'000 + 100'000; time += 7) {
        ASSERT_EQ(FromDateValue(ToDateValue(FromNumber(time))), FromNumber(time));
    }
    EXPECT_EQ(ToDateValue(std::nullopt).Status, kDateNull);
    EXPECT_FALSE(FromDateValue({1.0, kDateInvalid}));
    EXPECT_FALSE(FromDateValue({1e300, kDateValid}));
}

TEST(DatesTest, FormatLocalTime_WritesTheCalendar)
{
    EXPECT_EQ(FormatLocalTime(FromNumber(0)), "1899-12-30 00:00:00");
    EXPECT_EQ(FormatLocalTime(FromNumber(2 * 86400 + 3661)), "1900-01-01 01:01:01");
    EXPECT_EQ(FormatLocalTime(FromNumber(-1)), "1899-12-29 23:59:59");
    EXPECT_EQ(FormatLocalTime(FromNumber(45658LL * 86400)), "2025-01-01 00:00:00");
}

TEST(DatesTest, ToLocalTime_KnowsItsYears)
{
    const auto time = os::ToLocalTime(1'000'000'000);  // 9 September 2001, 01:46:40 UTC
    ASSERT_TRUE(time);
    EXPECT_LE(std::abs(ToNumber(*time) - (37143LL * 86400 + 6400)), 15 * 3600) << "no time zone is further away";
    EXPECT_FALSE(os::ToLocalTime(400'000'000'000));
    EXPECT_FALSE(os::ToLocalTime(-70'000'000'000));
}

}  // namespace
}  // namespace kesta
