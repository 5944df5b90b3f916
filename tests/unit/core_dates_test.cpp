// Dates and their stored form.
#include "core/dates.h"

#include <ctime>
#include <limits>

#include "support/dates.h"
#include "unit/module_under_test.h"

namespace kesta {
namespace {

using test::Date;
using test::W;

/// By value: a reference to the field would not be aligned as compilers expect.
double DaysOf(const DateValue& date)
{
    return date.Days;
}

std::string Formatted(const DateValue& date)
{
    return std::string(FormatDateTime(date).view());
}

TEST(Dates, FormatDateTime_EveryStatus_HasItsText)
{
    EXPECT_EQ(Formatted(Date(2024, 2, 29, 1, 2, 3)), "2024-02-29 01:02:03");
    EXPECT_EQ(Formatted({45351.5, kDateInvalid}), "Invalid DateTime");
    EXPECT_EQ(Formatted({45351.5, kDateNull}), "");
    EXPECT_EQ(Formatted({std::numeric_limits<double>::quiet_NaN(), kDateNull}), "");
    EXPECT_EQ(Formatted({std::numeric_limits<double>::quiet_NaN(), kDateValid}), "Invalid DateTime");
    EXPECT_EQ(Formatted({1e18, kDateValid}), "Invalid DateTime");
    EXPECT_EQ(Formatted({-1e18, kDateValid}), "Invalid DateTime");
}

TEST(Dates, FormatDateTime_EverySecondOfADay_IsExact)
{
    for (int second = 0; second < 86400; ++second) {
        char expected[32];
        std::snprintf(expected, sizeof expected, "2024-02-29 %02d:%02d:%02d", second / 3600, second / 60 % 60,
                      second % 60);
        ASSERT_EQ(Formatted(Date(2024, 2, 29, 0, 0, second)), expected);
    }
}

TEST(Dates, ParseStoredDate_StoredForm_IsRead)
{
    for (const char* text : {"2024-02-29 12:34:56", "0100-01-01 00:00:00", "9999-12-31 23:59:59", "1899-12-30 00:00:00",
                             "1899-12-29 18:00:00", "1600-02-29 00:00:01"}) {
        DateValue date = {-7.0, kDateNull};
        EXPECT_TRUE(ParseStoredDate(text, date)) << text;
        EXPECT_EQ(test::DateText(date), text);
        EXPECT_EQ(Formatted(date), text);
    }
}

TEST(Dates, ParseStoredDate_AnyOtherText_IsRefusedAndLeavesTheDate)
{
    for (const char* text : {"",
                             "2024-02-29",
                             "12:34:56",
                             "2024-02-29 12:34:5",
                             "2024-02-29 12:34:567",
                             "2024-02-29T12:34:56",
                             "2024-02-29!12:34:56",
                             "2024/02/29 12:34:56",
                             "2023-02-29 12:34:56",
                             "2024-13-01 00:00:00",
                             "2024-00-10 00:00:00",
                             "2024-01-00 00:00:00",
                             "2024-01-32 00:00:00",
                             "2024-01-01 24:00:00",
                             "2024-01-01 00:60:00",
                             "2024-01-01 00:00:60",
                             "0099-12-31 23:59:59",
                             "0000-01-01 00:00:00",
                             "-024-02-29 12:34:56",
                             "2024-02-29 12:34:5x",
                             "Invalid DateTime---",
                             " 024-02-29 12:34:56"}) {
        DateValue date = {-7.0, kDateNull};
        EXPECT_FALSE(ParseStoredDate(text, date)) << text;
        EXPECT_EQ(DaysOf(date), -7.0);
        EXPECT_EQ(date.Status, kDateNull);
    }
}

TEST(Dates, ParseStoredDate_NeighboursOfTheDigits_AreNone)
{
    const std::string valid = "2011-11-11 11:11:11";
    for (size_t place = 0; place < valid.size(); ++place) {
        std::string others = {'/', ':', '\0', '\x7F'};
        for (int byte = 0x80; byte <= 0xFF; ++byte) {
            others += static_cast<char>(byte);
        }
        for (const char other : others) {
            std::string text = valid;
            text[place] = other;
            DateValue date = {};
            EXPECT_EQ(ParseStoredDate(text, date), text == valid) << place << ": " << static_cast<int>(other);
        }
    }
    for (const char* text :
         {"20:0-01-01 00:00:00", "2024-0:-01 00:00:00", "2024-01-0: 00:00:00", "2024-01-01 0::00:00",
          "2024-01-01 00:0::00", "2024-01-01 00:00:0:", "2024-1/-01 00:00:00", "2024-01-1/ 00:00:00",
          "2024-01-01 1/:00:00", "2024-01-01 00:1/:00", "2024-01-01 00:00:1/", "2024-01-01 00:00:/:"}) {
        DateValue date = {};
        EXPECT_FALSE(ParseStoredDate(text, date)) << text;
    }
}

TEST(Dates, ParseDateTime_StoredForm_IsRead)
{
    const DateValue date = ParseDateTime(W("2024-02-29 12:34:56"));
    EXPECT_EQ(test::DateText(date), "2024-02-29 12:34:56");
    EXPECT_EQ(test::DateText(ParseDateTime(W("2024-02-29"))), "2024-02-29 00:00:00");
    EXPECT_EQ(test::DateText(ParseDateTime(W("12:34:56"))), "1899-12-30 12:34:56");
}

TEST(Dates, ParseDateTime_NoDate_IsZeroAndInvalid)
{
    for (const char* text : {"", "today", "Invalid DateTime", "2024-02-30 00:00:00x"}) {
        const DateValue date = ParseDateTime(W(text));
        EXPECT_EQ(DaysOf(date), 0.0) << text;
        EXPECT_EQ(date.Status, kDateInvalid) << text;
    }
    const DateValue none = ParseDateTime(nullptr);
    EXPECT_EQ(DaysOf(none), 0.0);
    EXPECT_EQ(none.Status, kDateInvalid);
}

TEST(Dates, DateFromTime_Seconds_AreLocalTime)
{
    for (const int64_t seconds :
         {int64_t{0}, int64_t{86399}, int64_t{951'782'400}, int64_t{1'709'210'096}, int64_t{4'102'444'799}}) {
        const auto moment = static_cast<time_t>(seconds);
        if (static_cast<int64_t>(moment) != seconds) {
            continue;  // a time_t of 32 bits ends in 2038
        }
        const std::tm* local = std::localtime(&moment);
        ASSERT_NE(local, nullptr);
        char expected[32];
        std::strftime(expected, sizeof expected, "%Y-%m-%d %H:%M:%S", local);
        EXPECT_EQ(Formatted(DateFromTime(seconds)), expected);
    }
}

TEST(Dates, DateFromTime_NoCalendarTime_IsInvalid)
{
    for (const int64_t seconds :
         {std::numeric_limits<int64_t>::max(), std::numeric_limits<int64_t>::min(), int64_t{400'000'000'000}}) {
        EXPECT_EQ(DateFromTime(seconds).Status, kDateInvalid) << seconds;
    }
}

TEST(Dates, Now_AsksTheSystemsClock)
{
    const ReplacedServices services;
    platform::services.now = []() noexcept { return int64_t{1'709'210'096}; };
    EXPECT_EQ(Formatted(Now()), Formatted(DateFromTime(1'709'210'096)));
}

}  // namespace
}  // namespace kesta
