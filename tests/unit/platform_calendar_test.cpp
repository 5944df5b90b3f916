#include "platform/calendar.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <string>

#include "support/dates.h"
#include "support/text.h"

namespace kesta::platform {

static bool operator==(const CalendarTime& a, const CalendarTime& b)
{
    return a.year == b.year && a.month == b.month && a.day == b.day && a.hour == b.hour && a.minute == b.minute &&
           a.second == b.second;
}

static void PrintTo(const CalendarTime& time, std::ostream* out)
{
    *out << time.year << '-' << time.month << '-' << time.day << ' ' << time.hour << ':' << time.minute << ':'
         << time.second;
}

namespace {

using test::Date;
using test::kHalfSecond;
using test::Text;

constexpr double kSecond = 1.0 / 86400;

struct Split {
    double days;
    CalendarTime expected;
};

class SplitDateTable : public ::testing::TestWithParam<Split> {};

TEST_P(SplitDateTable, GivesTheCalendarTime)
{
    CalendarTime time = {};
    ASSERT_TRUE(SplitDate(GetParam().days, time)) << GetParam().days;
    EXPECT_EQ(time, GetParam().expected) << GetParam().days;
}

INSTANTIATE_TEST_SUITE_P(WholeAndNegativeDays, SplitDateTable,
                         ::testing::Values(Split{0.0, {1899, 12, 30, 0, 0, 0}}, Split{1.5, {1899, 12, 31, 12, 0, 0}},
                                           Split{-1.0, {1899, 12, 29, 0, 0, 0}}, Split{-1.25, {1899, 12, 29, 6, 0, 0}},
                                           Split{-0.75, {1899, 12, 30, 18, 0, 0}},
                                           Split{45351.524259259259, {2024, 2, 29, 12, 34, 56}}));

INSTANTIATE_TEST_SUITE_P(RoundsToTheSecond, SplitDateTable,
                         ::testing::Values(Split{45351 + 0.4 * kSecond, {2024, 2, 29, 0, 0, 0}},
                                           Split{45351 + 0.6 * kSecond, {2024, 2, 29, 0, 0, 1}},
                                           Split{45351 + 59.6 * kSecond, {2024, 2, 29, 0, 1, 0}},
                                           Split{45351 + 3599.6 * kSecond, {2024, 2, 29, 1, 0, 0}},
                                           Split{45351 + 86399.6 * kSecond, {2024, 3, 1, 0, 0, 0}},
                                           Split{45291 + 86399.6 * kSecond, {2024, 1, 1, 0, 0, 0}},
                                           Split{1.0 / 256, {1899, 12, 30, 0, 5, 38}},  // 337.5 seconds
                                           Split{-2 - 86399.6 * kSecond, {1899, 12, 29, 0, 0, 0}}));

INSTANTIATE_TEST_SUITE_P(FirstAndLastYear, SplitDateTable,
                         ::testing::Values(Split{-657434.0, {100, 1, 1, 0, 0, 0}},
                                           Split{-657434.5, {100, 1, 1, 12, 0, 0}},
                                           Split{-657434 - 86399.6 * kSecond, {100, 1, 2, 0, 0, 0}},
                                           Split{2958465.0, {9999, 12, 31, 0, 0, 0}},
                                           Split{2958465 + 86399.4 * kSecond, {9999, 12, 31, 23, 59, 59}}));

TEST(SplitDate, OutsideOfTheYearsOrNoNumber_False)
{
    using Limits = std::numeric_limits<double>;
    for (const double days : {-657435.0, -657436.0, -1e300, 2958466.0, 2958465 + 86399.6 * kSecond, 3e6, 1e300,
                              Limits::quiet_NaN(), -Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()}) {
        CalendarTime time = {};
        EXPECT_FALSE(SplitDate(days, time)) << days;
    }
}

TEST(JoinDate, KnownDays)
{
    const std::array<Split, 7> table = {{{0.0, {1899, 12, 30, 0, 0, 0}},
                                         {-1.25, {1899, 12, 29, 6, 0, 0}},
                                         {0.75, {1899, 12, 30, 18, 0, 0}},
                                         {45351.524259259259, {2024, 2, 29, 12, 34, 56}},
                                         {36585.0, {2000, 2, 29, 0, 0, 0}},
                                         {-657434.0, {100, 1, 1, 0, 0, 0}},
                                         {2958465.999988426, {9999, 12, 31, 23, 59, 59}}}};
    for (const auto& [expected, time] : table) {
        double days = 0.0;
        ASSERT_TRUE(JoinDate(time, days)) << expected;
        EXPECT_NEAR(days, expected, kHalfSecond / 100);
    }
}

TEST(JoinDate, NotInTheCalendar_False)
{
    const CalendarTime table[] = {
        {2024, 2, 30, 0, 0, 0}, {2023, 2, 29, 0, 0, 0},  {1900, 2, 29, 0, 0, 0},  {2024, 4, 31, 0, 0, 0},
        {2024, 0, 1, 0, 0, 0},  {2024, 13, 1, 0, 0, 0},  {2024, -1, 1, 0, 0, 0},  {2024, 1, 0, 0, 0, 0},
        {2024, 1, 32, 0, 0, 0}, {2024, 1, -1, 0, 0, 0},  {2024, 1, 1, 24, 0, 0},  {2024, 1, 1, -1, 0, 0},
        {2024, 1, 1, 0, 60, 0}, {2024, 1, 1, 0, -1, 0},  {2024, 1, 1, 0, 0, 60},  {2024, 1, 1, 0, 0, -1},
        {99, 12, 31, 0, 0, 0},  {10000, 1, 1, 0, 0, 0},  {0, 1, 1, 0, 0, 0},      {-1, 1, 1, 0, 0, 0},
        {67560, 1, 1, 0, 0, 0}, {2024, 258, 1, 0, 0, 0}, {2024, 1, 257, 0, 0, 0}, {2024, 1, 1, 65536, 0, 0}};
    for (const CalendarTime& time : table) {
        double days = 0.0;
        EXPECT_FALSE(JoinDate(time, days)) << ::testing::PrintToString(time);
    }
}

TEST(JoinDate, SplitAgain_GivesTheSameTime_InAllYears)
{
    for (int day = -657434; day <= 2958465; day += 97) {
        const double number = day < 0 ? day - 86399 * kSecond : day + 86399 * kSecond;
        CalendarTime time = {};
        ASSERT_TRUE(SplitDate(number, time)) << number;
        double joined = 0.0;
        ASSERT_TRUE(JoinDate(time, joined)) << number;
        ASSERT_NEAR(joined, number, kHalfSecond / 100);
        ASSERT_EQ(time.hour * 3600 + time.minute * 60 + time.second, 86399) << number;
    }
}

class LocalTimeTest : public ::testing::Test {
protected:
    static void useZone(const char* zone)
    {
        static std::string variable;  // some systems keep the pointer
        variable = std::string("TZ=") + zone;
        putenv(variable.data());
        tzset();
    }
};

TEST_F(LocalTimeTest, IsInTheUsersTimeZone)
{
    useZone("KST-9");
    CalendarTime time = {};
    ASSERT_TRUE(LocalTime(0, time));
    EXPECT_EQ(time, (CalendarTime{1970, 1, 1, 9, 0, 0}));
    ASSERT_TRUE(LocalTime(1709210096, time));
    EXPECT_EQ(time, (CalendarTime{2024, 2, 29, 21, 34, 56}));
}

TEST_F(LocalTimeTest, NoSuchMoment_False)
{
    CalendarTime time = {};
    EXPECT_FALSE(LocalTime(std::numeric_limits<int64_t>::max(), time));
}

struct Parsed {
    const char* text;
    DateValue expected;
};

void PrintTo(const Parsed& parsed, std::ostream* out)
{
    *out << parsed.text;
}

class ParseDateTable : public ::testing::TestWithParam<Parsed> {};

TEST_P(ParseDateTable, GivesTheDay)
{
    double days = -77.0;
    ASSERT_EQ(ParseDate(Text(GetParam().text), days), DateParse::kValid) << GetParam().text;
    EXPECT_NEAR(days, GetParam().expected.Days, kHalfSecond / 100) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(WhatTheDatabaseHolds, ParseDateTable,
                         ::testing::Values(Parsed{"2024-02-29 12:34:56", Date(2024, 2, 29, 12, 34, 56)},
                                           Parsed{"1970-01-01 00:00:00", Date(1970, 1, 1)},
                                           Parsed{"1899-12-29 06:00:00", {-1.25, kDateValid}},
                                           Parsed{"0100-01-01 00:00:00", Date(100, 1, 1)},
                                           Parsed{"9999-12-31 23:59:59", Date(9999, 12, 31, 23, 59, 59)},
                                           Parsed{"2024-02-29", Date(2024, 2, 29)},
                                           Parsed{"12:34:56", {45296.0 / 86400, kDateValid}}));

TEST(ParseDate, NoDate_TypeMismatch)
{
    for (const char* text : {"", "garbage", "Invalid DateTime", "2024-02-30 00:00:00", "2023-02-29 00:00:00",
                             "2024-01-01 24:00:00", "2024-01-01 12:60:00", "2024-01-01 23:59:60",
                             "10000-01-01 00:00:00", "2024-02-29T12:34:56", "2024-02-29 12:34:56 tomorrow", "-"}) {
        double days = 0.0;
        EXPECT_EQ(ParseDate(Text(text), days), DateParse::kTypeMismatch) << text;
    }
}

TEST(LocaleDate, WritesAndTerminates)
{
    std::array<DbChar, 64> text;
    text.fill(u'#');
    const size_t length = LocaleDate(45351.5, text.data(), text.size());
    ASSERT_GT(length, 8u);
    ASSERT_LT(length, text.size());
    EXPECT_EQ(text[length], 0);
    EXPECT_THAT(test::Utf8(text.data()), ::testing::HasSubstr("29"));
}

TEST(LocaleDate, LittleRoom_CutsAndTerminates)
{
    std::array<DbChar, 8> text;
    text.fill(u'#');
    EXPECT_EQ(LocaleDate(45351.5, text.data(), 5), 4u);
    EXPECT_EQ(text[4], 0);
    EXPECT_EQ(text[5], u'#');
}

TEST(LocaleDate, NoDate_Nothing)
{
    std::array<DbChar, 64> text = {};
    for (const double days : {std::numeric_limits<double>::quiet_NaN(), -657435.0, 2958466.0}) {
        EXPECT_EQ(LocaleDate(days, text.data(), text.size()), 0u) << days;
    }
}

}  // namespace
}  // namespace kesta::platform
