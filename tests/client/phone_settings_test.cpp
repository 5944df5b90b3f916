// Settings by name, dates as the user writes them, and names that are near to one another.
#include "commands/phone_settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "commands/pc_path.h"
#include "os/files.h"

namespace kesta {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(PhoneSettingsTest, ParseLocalTime_TakesDaysAndTimes)
{
    const std::pair<const char*, const char*> table[] = {
        {"2026-01-31", "2026-01-31 00:00:00"},          {"2026-01-31 23:59", "2026-01-31 23:59:00"},
        {"2026-01-31T23:59:58", "2026-01-31 23:59:58"}, {"2024-02-29 00:00:00", "2024-02-29 00:00:00"},
        {"0100-01-01", "0100-01-01 00:00:00"},          {"1899-12-29 06:00", "1899-12-29 06:00:00"},
        {"9999-12-31 23:59:59", "9999-12-31 23:59:59"}};
    for (const auto& [text, shown] : table) {
        const auto time = ParseLocalTime(text);
        ASSERT_TRUE(time) << text;
        EXPECT_EQ(FormatLocalTime(*time), shown);
    }
}

TEST(PhoneSettingsTest, ParseLocalTime_RefusesWhatIsNotADate)
{
    for (const char* text : {"", "2026", "2026-1-31", "2026-02-29", "2026-13-01", "2026-00-10", "0099-12-31",
                             "31.1.2026", "2026-01-31 ", "2026-01-31 24:00", "2026-01-31 12:60", "2026-01-31 12:00:60",
                             "2026-01-31 12", "2026-01-31 12:00:00x", "2026-01-31x", "-026-01-31", "20260131"}) {
        EXPECT_FALSE(ParseLocalTime(text)) << text;
    }
}

TEST(PhoneSettingsTest, TakeSetting_EachKind_TakesWhatShowSettingShows)
{
    PhoneSettings settings;
    const std::pair<const char*, const char*> table[] = {{"wifi_mac", "00:11"},
                                                         {"auto_sync", "yes"},
                                                         {"contact_program", "-2147483648"},
                                                         {"calendar_start", "2026-01-31 18:30:00"}};
    for (const auto& [name, value] : table) {
        const Setting* setting = FindSetting(name);
        ASSERT_NE(setting, nullptr) << name;
        EXPECT_EQ(TakeSetting(settings, *setting, value), "");
        EXPECT_EQ(ShowSetting(settings, *setting), value);
    }
    EXPECT_EQ(TakeSetting(settings, *FindSetting("calendar_start"), ""), "");
    EXPECT_FALSE(settings.calendarStart);
    EXPECT_EQ(TakeSetting(settings, *FindSetting("wifi_mac"), ""), "");
    EXPECT_EQ(settings.wifiMac, "");
}

TEST(PhoneSettingsTest, TakeSetting_WrongValue_SaysWhyAndKeepsTheOldOne)
{
    PhoneSettings settings;
    settings.contactProgram = 7;
    const std::tuple<const char*, const char*, const char*> table[] = {
        {"auto_sync", "maybe", "yes or no"},
        {"auto_sync", "", "yes or no"},
        {"auto_sync", "2", "yes or no"},
        {"contact_program", "", "whole number"},
        {"contact_program", "7x", "whole number"},
        {"contact_program", "2147483648", "whole number"},
        {"calendar_end", "tomorrow", "2026-01-31"},
        {"wifi_mac", "\xff", "not valid text"},
        {"need_mount", "yes", "cannot be changed"}};
    for (const auto& [name, value, why] : table) {
        EXPECT_THAT(TakeSetting(settings, *FindSetting(name), value), HasSubstr(why)) << name << '=' << value;
    }
    EXPECT_EQ(settings.contactProgram, 7);
    EXPECT_EQ(FindSetting("imei"), nullptr);
}

// A line of the table that names another one's member would show and change that one's value.
TEST(PhoneSettingsTest, EachSetting_HasANameAndAValueOfItsOwn)
{
    for (const Setting& taken : kSettings) {
        if (!taken.isWritable) {
            continue;
        }
        PhoneSettings settings;
        const bool isDate = std::holds_alternative<DateSetting>(taken.member);
        const bool isOn = ShowSetting(settings, taken) == "yes" || ShowSetting(settings, taken) == "1";
        EXPECT_EQ(TakeSetting(settings, taken, isDate ? "2026-01-31" : isOn ? "0" : "1"), "") << taken.name;
        for (const Setting& other : kSettings) {
            const bool isUnchanged = ShowSetting(settings, other) == ShowSetting(PhoneSettings(), other);
            EXPECT_EQ(isUnchanged, &other != &taken) << taken.name << ", " << other.name;
            EXPECT_EQ(taken.name == other.name, &other == &taken) << taken.name;
        }
    }
}

TEST(PhoneSettingsTest, ParseTruth_TakesTheUsualWordsInEitherCase)
{
    for (const char* yes : {"yes", "YES", "true", "On", "1"}) {
        EXPECT_EQ(ParseTruth(yes), true) << yes;
    }
    for (const char* no : {"no", "No", "false", "off", "0"}) {
        EXPECT_EQ(ParseTruth(no), false) << no;
    }
    for (const char* neither : {"", "y", "yes ", "10"}) {
        EXPECT_FALSE(ParseTruth(neither)) << neither;
    }
}

TEST(PhoneSettingsTest, NearNames_FindsMistakesAndParts_TheNearestFirst)
{
    const std::vector<std::string> names{"auto_backup", "auto_sync", "sync_music_all"};
    EXPECT_THAT(NearNames("auto_snyc", names), ElementsAre("auto_sync"));
    EXPECT_THAT(NearNames("auto", names), ElementsAre("auto_backup", "auto_sync"));
    EXPECT_THAT(NearNames("brightness", names), IsEmpty());
    EXPECT_THAT(NearNames("", names), IsEmpty());
}

TEST(PcPathTest, LiesIn_GoesByWholeNames)
{
    const std::string folder = os::Join("music", "rock");
    EXPECT_TRUE(os::LiesIn(folder, folder));
    EXPECT_TRUE(os::LiesIn(os::Join(folder, "a.mp3"), folder));
    EXPECT_FALSE(os::LiesIn(folder + "2", folder));
    EXPECT_FALSE(os::LiesIn("music", folder));
}

TEST(PcPathTest, RecordedPath_OfSomethingGone_IsThatOfTheFolderThatIsLeft)
{
    std::string here;
    ASSERT_TRUE(os::CanonicalPath(".", here).ok());
    EXPECT_EQ(RecordedPath("."), here);
    EXPECT_EQ(RecordedPath(os::Join("gone", "a.mp3")), os::Join(os::Join(here, "gone"), "a.mp3"));
    EXPECT_EQ(RecordedPath(os::Join(os::Join("gone", ".."), "b.mp3")), os::Join(here, "b.mp3"));
    EXPECT_EQ(RecordedPath(os::Join("gone", "")), os::Join(here, "gone"));
    EXPECT_TRUE(IsNamed(os::Join(here, "gone"), "gone"));
    EXPECT_FALSE(IsNamed(os::Join(here, "gone"), "here"));
}

}  // namespace
}  // namespace kesta
