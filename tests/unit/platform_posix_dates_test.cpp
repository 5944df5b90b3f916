// Which dates are read here alone, and how the user's language and zone write them.
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <utility>

#include "platform/calendar.h"
#include "support/data_folder.h"
#include "support/posix/variable.h"
#include "support/text.h"

namespace kesta::platform {
namespace {

namespace fs = std::filesystem;

using test::Variable;

TEST(PosixDates, OnlyTheStoredFormsAreRead)
{
    for (const char* text : {"2024-13-01 00:00:00",
                             "2024-2-9 1:2:3",
                             "24-02-29",
                             "0099-12-31 00:00:00",
                             "2024/02/29",
                             "29.02.2024",
                             "2024-02-29 12:34",
                             "2024-02-29  12:34:56",
                             " 2024-02-29",
                             "2024-02-29 ",
                             "12:34",
                             "2024-02-29 12:34:5x",
                             "２０２４-02-29",
                             "2024",
                             "2024-",
                             "2024-1",
                             "2024-1x-01",
                             "202401-01",
                             "2024-0101",
                             "2024-01 01",
                             "2024-01x01",
                             "2024-01-",
                             "2024-01-x1",
                             "2024-01-1",
                             "2024-01-0:",
                             "2024-02-29 ",
                             "2024-02-29 1",
                             "2024-02-29 12:34",
                             "12",
                             "12:",
                             "12:x4:56",
                             "12:34",
                             "12:34:",
                             "12:34x56",
                             "12:34:5x",
                             "12:34:56 "}) {
        double days = 0.0;
        EXPECT_EQ(ParseDate(test::Text(text), days), DateParse::kTypeMismatch) << text;
    }
}

TEST(PosixDates, LocaleDate_FollowsTheUsersLocale)
{
    const Variable locale("LC_ALL", "C.UTF-8");
    std::array<DbChar, 64> text = {};
    EXPECT_EQ(LocaleDate(45351.5, text.data(), text.size()), 17u);
    EXPECT_EQ(test::Utf8(text.data()), "02/29/24 12:00:00");
}

/// Languages that write dates otherwise than C does, made for these tests where the system has their sources.
class MadeLocale : public ::testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(MadeLocale, LocaleDate_IsWrittenInTheUsersLanguage)
{
    const auto [language, written] = GetParam();
    if (!fs::exists(fs::path("/usr/share/i18n/locales") / language)) {
        GTEST_SKIP() << "no source of " << language << " here";
    }
    const test::DataFolder data;
    const std::string name = std::string(language) + ".UTF-8";
    const fs::path made = data.applicationData() / name;
    ASSERT_EQ(std::system(("localedef -i " + std::string(language) + " -f UTF-8 '" + made.string() + "'").c_str()), 0);
    const Variable place("LOCPATH", made.parent_path().c_str());
    const Variable locale("LC_ALL", name.c_str());
    std::array<DbChar, 64> text = {};
    constexpr double kSunday = 45354.5;
    EXPECT_GT(LocaleDate(kSunday, text.data(), text.size()), 0u);
    EXPECT_EQ(test::Utf8(text.data()), written);
}

INSTANTIATE_TEST_SUITE_P(Languages, MadeLocale,
                         ::testing::Values(std::pair("ja_JP", "2024年03月03日 12時00分00秒"),
                                           std::pair("ar_SA", "الأحد  3 مارس 2024 12:00:00")),
                         [](const auto& language) { return std::string(language.param.first); });

TEST(PosixDates, LeapSecond_IsTheLastOneOfItsMinute)
{
    if (!fs::exists("/usr/share/zoneinfo/right/UTC")) {
        GTEST_SKIP() << "no zone with leap seconds here";
    }
    constexpr int64_t kLastLeapSecond = 1483228826;  // 2016-12-31 23:59:60
    CalendarTime leap = {}, next = {};
    {
        const Variable zone("TZ", "right/UTC");
        tzset();
        EXPECT_TRUE(LocalTime(kLastLeapSecond, leap));
        EXPECT_TRUE(LocalTime(kLastLeapSecond + 1, next));
    }
    tzset();
    EXPECT_EQ(leap.day, 31);
    EXPECT_EQ(leap.minute, 59);
    EXPECT_EQ(leap.second, 59);
    EXPECT_EQ(next.day, 1);
    EXPECT_EQ(next.second, 0);
}

TEST(PosixDates, LocaleDate_OfALocaleThatIsNotInstalled_IsAsInC)
{
    const Variable locale("LC_ALL", "xx_XX.UTF-8");
    std::array<DbChar, 64> text = {};
    EXPECT_EQ(LocaleDate(45351.5, text.data(), text.size()), 17u);
    EXPECT_EQ(test::Utf8(text.data()), "02/29/24 12:00:00");
}

}  // namespace
}  // namespace kesta::platform
