// DB_LIB_SetPhoneSetting, DB_LIB_GetPhoneSetting and DB_LIB_GetAllPhones.
#include "api/given.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

/// A full record, every field of its own value.
struct FullSetting {
    Text imei{kImei}, name{"N'ame"}, photo{"C:\\Ph"}, doc{"C:\\Do"}, mac{"00:11"}, period{"last"}, contactFolder{"cf"},
        calendarFolder{"kf"}, contactProfile{"cp"}, calendarProfile{"\xF0\x9F\x93\x85"};
    PhoneSettingRecord record = {imei.get(),
                                 name.get(),
                                 photo.get(),
                                 doc.get(),
                                 mac.get(),
                                 11,
                                 12,
                                 13,
                                 14,
                                 15,
                                 16,
                                 17,
                                 18,
                                 period.get(),
                                 Date(2024, 2, 29, 1, 2, 3),
                                 Date(1899, 12, 29, 6),
                                 19,
                                 20,
                                 21,
                                 22,
                                 23,
                                 24,
                                 25,
                                 26,
                                 27,
                                 contactFolder.get(),
                                 calendarFolder.get(),
                                 contactProfile.get(),
                                 calendarProfile.get()};
};

class PhoneSettings : public OpenDatabase {
protected:
    PhoneSettings() { givenPhone(); }

    /// The columns that SetPhoneSetting writes, in the order of the record.
    [[nodiscard]] std::string settings() const
    {
        return sql.text(
            "SELECT [IMEI], [Name], [PhotoPath], [DocPath], [WifiMAC], [AutoSync], [AutoBackup], [AllowWifi], "
            "[ContactPreferSide], [CalendarPreferSide], [ContactPim], [CalPim], [CalPeriod], [CalPeriodStr], "
            "[CalStart], [CalEnd], [BookMarkType], [SyncDocFromFolder], [SyncDocFromPhone], [SyncPhotoFromFolder], "
            "[SyncPhotoFromPhone], [SyncMusicFromFolder], [SyncMusicFromPlayer], [SyncMusicAll], [NeedMount], "
            "[ContactFolderId], [CalendarFolderId], [ContactProfile], [CalendarProfile] FROM tPhone ORDER BY [ID]");
    }
};

constexpr char kFullRow[] =
    "351111|N'ame|C:\\Ph|C:\\Do|00:11|11|12|13|14|15|16|17|18|last|2024-02-29 01:02:03|1899-12-29 06:00:00|19|20|21|22|"
    "23|24|25|26|1|cf|kf|cp|\xF0\x9F\x93\x85";

TEST_F(PhoneSettings, SetPhoneSetting_FullRecord_WritesEveryColumnButNeedMount)
{
    const FullSetting full;
    EXPECT_EQ(lib.DB_LIB_SetPhoneSetting(&full.record), 0);
    EXPECT_EQ(settings(), kFullRow);
    EXPECT_EQ(sql.text("SELECT [IMEI2], [LastTime], [ErrCode], [SDType], [SDOldType], [ContactName], [CalendarName] "
                       "FROM tPhone"),
              "351111|<null>|0|0|0|<null>|<null>");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_SetPhoneSetting().", "Exit DB_LIB_SetPhoneSetting() with 0."));
}

TEST_F(PhoneSettings, SetPhoneSetting_AllTextsNull_ChangesOnlyTheEighteenFixedColumns)
{
    const FullSetting full;
    ASSERT_EQ(lib.DB_LIB_SetPhoneSetting(&full.record), 0);
    Text imei(kImei);
    PhoneSettingRecord record = {};
    record.IMEI = imei.get();
    record.CalStart = NullDate();
    record.CalEnd = InvalidDate();
    EXPECT_EQ(lib.DB_LIB_SetPhoneSetting(&record), 0);
    EXPECT_EQ(settings(),
              "351111|N'ame|C:\\Ph|C:\\Do|00:11|0|0|0|0|0|0|0|0|last||Invalid DateTime|0|0|0|0|0|0|0|0|1|cf|kf|cp|"
              "\xF0\x9F\x93\x85");
}

TEST_F(PhoneSettings, SetPhoneSetting_EmptyTexts_EmptyTheirColumns)
{
    FullSetting full;
    ASSERT_EQ(lib.DB_LIB_SetPhoneSetting(&full.record), 0);
    Text empty("");
    for (DbChar** text : {&full.record.Name, &full.record.PhotoPath, &full.record.DocPath, &full.record.WifiMAC,
                          &full.record.CalPeriodStr, &full.record.ContactFolderId, &full.record.CalendarFolderId,
                          &full.record.ContactProfile, &full.record.CalendarProfile}) {
        *text = empty.get();
    }
    EXPECT_EQ(lib.DB_LIB_SetPhoneSetting(&full.record), 0);
    EXPECT_EQ(settings(),
              "351111|||||11|12|13|14|15|16|17|18||2024-02-29 01:02:03|1899-12-29 06:00:00|19|20|21|22|23|24|25|26|1|"
              "|||");
}

TEST_F(PhoneSettings, SetPhoneSetting_OtherPhone_IsLeftAlone)
{
    givenPhone("352222");
    const FullSetting full;
    EXPECT_EQ(lib.DB_LIB_SetPhoneSetting(&full.record), 0);
    EXPECT_EQ(sql.text("SELECT [Name], [AutoSync] FROM tPhone WHERE [IMEI] = '352222'"), "Ann's phone|0");
}

TEST_F(PhoneSettings, SetPhoneSetting_UnknownOrNullImei_SucceedsWithoutChange)
{
    FullSetting full;
    Text unknown("999");
    for (DbChar* imei : {unknown.get(), static_cast<DbChar*>(nullptr)}) {
        full.record.IMEI = imei;
        EXPECT_EQ(lib.DB_LIB_SetPhoneSetting(&full.record), 0);
        EXPECT_EQ(sql.text("SELECT [Name], [AutoSync] FROM tPhone"), "Ann's phone|0");
    }
}

TEST_F(PhoneSettings, SetPhoneSetting_ImeiWithApostrophe_IsEscapedHere)
{
    sql.exec("INSERT INTO tPhone ([IMEI]) VALUES ('it''s')");
    FullSetting full;
    Text imei("it's");
    full.record.IMEI = imei.get();
    EXPECT_EQ(lib.DB_LIB_SetPhoneSetting(&full.record), 0);
    EXPECT_EQ(sql.text("SELECT [AutoSync] FROM tPhone ORDER BY [ID]"), "0\n11");
}

TEST_F(PhoneSettings, SetPhoneSetting_UpdateFails_TracesPositionOne)
{
    sql.exec("CREATE TRIGGER refuse BEFORE UPDATE ON tPhone BEGIN SELECT RAISE(ABORT, 'no'); END");
    const FullSetting full;
    EXPECT_EQ(lib.DB_LIB_SetPhoneSetting(&full.record), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_LIB_SetPhoneSetting().", "Error in DB_LIB_SetPhoneSetting(), position 1.",
                            "Exit DB_LIB_SetPhoneSetting() with 1."));
}

TEST_F(PhoneSettings, GetPhoneSetting_FullRow_FillsEveryField)
{
    const FullSetting full;
    ASSERT_EQ(lib.DB_LIB_SetPhoneSetting(&full.record), 0);
    sql.exec("UPDATE tPhone SET [NeedMount] = 9");
    trace.take();
    PhoneSettingRecord record = {};
    EXPECT_EQ(lib.DB_LIB_GetPhoneSetting(W(kImei), &record), 0);
    EXPECT_EQ(ToString(record),
              "351111|N'ame|C:\\Ph|C:\\Do|00:11|11|12|13|14|15|16|17|18|last|2024-02-29 01:02:03|1899-12-29 06:00:00|"
              "19|20|21|22|23|24|25|26|9|cf|kf|cp|\xF0\x9F\x93\x85");
    EXPECT_EQ(trace.take(),
              std::vector<std::string>({"Enter DB_LIB_GetPhoneSetting().", "Memory NEW.", "Memory NEW.", "Memory NEW.",
                                        "Memory NEW.", "Memory NEW.", "Memory NEW.", "Memory NEW.", "Memory NEW.",
                                        "Memory NEW.", "Memory NEW.", "Exit DB_LIB_GetPhoneSetting() with 0."}));
}

TEST_F(PhoneSettings, GetPhoneSetting_NewPhone_HasDefaultsNullTextsAndInvalidDates)
{
    PhoneSettingRecord record = {};
    EXPECT_EQ(lib.DB_LIB_GetPhoneSetting(W(kImei), &record), 0);
    EXPECT_EQ(ToString(record),
              "351111|Ann's phone|<null>|<null>|<null>|0|0|1|2|2|0|0|0|<null>|<invalid>|<invalid>|1|0|1|0|1|0|0|1|1|"
              "<null>|<null>|<null>|<null>");
    EXPECT_EQ(DaysOf(record.CalStart), 0.0);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_GetPhoneSetting().", "Memory NEW.", "Memory NEW.",
                                          "Exit DB_LIB_GetPhoneSetting() with 0."));
}

TEST_F(PhoneSettings, GetPhoneSetting_UnknownPhone_FreesInTheOrderOfTheFieldsAndZeroesTheRecord)
{
    const FullSetting full;
    ASSERT_EQ(lib.DB_LIB_SetPhoneSetting(&full.record), 0);
    PhoneSettingRecord record = {};
    ASSERT_EQ(lib.DB_LIB_GetPhoneSetting(W(kImei), &record), 0);
    std::vector<std::string> expected;
    for (const DbChar* text :
         {record.IMEI, record.Name, record.PhotoPath, record.DocPath, record.WifiMAC, record.CalPeriodStr,
          record.ContactFolderId, record.CalendarFolderId, record.ContactProfile, record.CalendarProfile}) {
        char address[32];
        std::snprintf(address, sizeof address, "%llx",
                      static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(text)));
        expected.push_back(std::string("Memory ") + address + " DELETE.");
    }
    expected.insert(expected.begin(), "Enter DB_LIB_GetPhoneSetting().");
    expected.push_back("Exit DB_LIB_GetPhoneSetting() with 1.");
    trace.take();
    EXPECT_EQ(lib.DB_LIB_GetPhoneSetting(W("999"), &record), 1);
    EXPECT_EQ(trace.take(Addresses::kKept), expected);
    EXPECT_EQ(ToString(record),
              "<null>|<null>|<null>|<null>|<null>|0|0|0|0|0|0|0|0|<null>|1899-12-30 00:00:00|1899-12-30 00:00:00|0|0|0|"
              "0|0|0|0|0|0|<null>|<null>|<null>|<null>");
}

TEST_F(PhoneSettings, GetPhoneSetting_NullImei_LooksForTheTextNull)
{
    PhoneSettingRecord record = {};
    EXPECT_EQ(lib.DB_LIB_GetPhoneSetting(nullptr, &record), 1);
    sql.exec("INSERT INTO tPhone ([IMEI], [Name]) VALUES ('(null)', 'nobody')");
    EXPECT_EQ(lib.DB_LIB_GetPhoneSetting(nullptr, &record), 0);
    EXPECT_EQ(record.IMEI, nullptr);
    EXPECT_EQ(Utf8(record.Name), "nobody");
}

TEST_F(PhoneSettings, GetPhoneSetting_ImeiWithApostrophe_CannotBeFound)
{
    sql.exec("INSERT INTO tPhone ([IMEI]) VALUES ('it''s')");
    PhoneSettingRecord record = {};
    EXPECT_EQ(lib.DB_LIB_GetPhoneSetting(W("it's"), &record), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_LIB_GetPhoneSetting().", "Error in DB_LIB_GetPhoneSetting(), position 1.",
                            "Exit DB_LIB_GetPhoneSetting() with 1."));
}

TEST_F(PhoneSettings, GetPhoneSetting_QueryFails_TracesPositionOne)
{
    changeSchema("ALTER TABLE tPhone RENAME COLUMN [CalEnd] TO [Elsewhere]");
    PhoneSettingRecord record = {};
    EXPECT_EQ(lib.DB_LIB_GetPhoneSetting(W(kImei), &record), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_LIB_GetPhoneSetting().", "Error in DB_LIB_GetPhoneSetting(), position 1.",
                            "Exit DB_LIB_GetPhoneSetting() with 1."));
}

TEST_F(PhoneSettings, GetAllPhones_SeveralPhones_AreListedWithoutNeedMountAndTheLastFourTexts)
{
    givenPhone("352222");
    const FullSetting full;
    ASSERT_EQ(lib.DB_LIB_SetPhoneSetting(&full.record), 0);
    sql.exec("UPDATE tPhone SET [Name] = '' WHERE [ID] = 2");
    trace.take();
    PhoneList list = {};
    EXPECT_EQ(lib.DB_LIB_GetAllPhones(&list), 0);
    ASSERT_EQ(list.Count, 2);
    EXPECT_EQ(ToString(list.Items[0]),
              "351111|N'ame|C:\\Ph|C:\\Do|00:11|11|12|13|14|15|16|17|18|last|2024-02-29 01:02:03|1899-12-29 06:00:00|"
              "19|20|21|22|23|24|25|26|0|<null>|<null>|<null>|<null>");
    EXPECT_EQ(ToString(list.Items[1]),
              "352222|<null>|<null>|<null>|<null>|0|0|1|2|2|0|0|0|<null>|<invalid>|<invalid>|1|0|1|0|1|0|0|1|0|<null>|"
              "<null>|<null>|<null>");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_GetAllPhones().", "Memory NEW.", "Memory NEW.", "Memory NEW.",
                                          "Memory NEW.", "Memory NEW.", "Memory NEW.", "Memory NEW.", "Memory NEW.",
                                          "Exit DB_LIB_GetAllPhones() with 0."));
}

TEST_F(PhoneSettings, GetAllPhones_NoPhones_EmptiesTheRecord)
{
    PhoneList list = {};
    ASSERT_EQ(lib.DB_LIB_GetAllPhones(&list), 0);
    sql.exec("DELETE FROM tPhone");
    trace.take();
    EXPECT_EQ(lib.DB_LIB_GetAllPhones(&list), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_GetAllPhones().", "Memory DELETE.", "Memory DELETE.",
                                          "Memory DELETE.", "Exit DB_LIB_GetAllPhones() with 0."));
}

TEST_F(PhoneSettings, GetAllPhones_CountFails_TracesPositionOne)
{
    changeSchema("ALTER TABLE tPhone RENAME TO tElsewhere");
    PhoneList list = {};
    EXPECT_EQ(lib.DB_LIB_GetAllPhones(&list), 1);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_GetAllPhones().", "Error in DB_LIB_GetAllPhones(), position 1.",
                                          "Exit DB_LIB_GetAllPhones() with 1."));
}

TEST_F(PhoneSettings, GetAllPhones_RowQueryFails_TracesPositionThreeAndKeepsTheEmptyArray)
{
    changeSchema("ALTER TABLE tPhone RENAME COLUMN [CalEnd] TO [Elsewhere]");
    PhoneList list = {};
    EXPECT_EQ(lib.DB_LIB_GetAllPhones(&list), 1);
    EXPECT_EQ(list.Count, 0);
    EXPECT_NE(list.Items, nullptr);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_LIB_GetAllPhones().", "Memory NEW.",
                            "Error in DB_LIB_GetAllPhones(), position 3.", "Exit DB_LIB_GetAllPhones() with 1."));
    sql.exec("DELETE FROM tPhone");
    EXPECT_EQ(lib.DB_LIB_GetAllPhones(&list), 0);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_LIB_GetAllPhones().", "Memory DELETE.", "Exit DB_LIB_GetAllPhones() with 0."));
}

TEST_F(PhoneSettings, GetAllPhones_ReadingARowFails_GivesTheStepsCodeAndTheRowsBefore)
{
    givenPhone("352222");
    changeSchema(
        "ALTER TABLE tPhone RENAME TO kept; CREATE VIEW tPhone AS SELECT *, 1 AS more FROM (SELECT [IMEI], "
        "CASE WHEN [ID] = 2 THEN zeroblob(2000000000) ELSE [Name] END AS [Name], [PhotoPath], [DocPath], [WifiMAC], "
        "[AutoSync], [AutoBackup], [AllowWifi], [ContactPreferSide], [CalendarPreferSide], [ContactPim], [CalPim], "
        "[CalPeriod], [CalStart], [CalEnd], [CalPeriodStr], [BookMarkType], [SyncDocFromFolder], [SyncDocFromPhone], "
        "[SyncPhotoFromFolder], [SyncPhotoFromPhone], [SyncMusicFromFolder], [SyncMusicFromPlayer], [SyncMusicAll] "
        "FROM kept)");
    PhoneList list = {};
    EXPECT_EQ(lib.DB_LIB_GetAllPhones(&list), 18);
    ASSERT_EQ(list.Count, 1);
    EXPECT_EQ(Utf8(list.Items[0].IMEI), "351111");
    EXPECT_EQ(trace.take().back(), "Exit DB_LIB_GetAllPhones() with 18.");
}

/// Counting goes over an index that has fallen behind its table, so that one more row comes than was counted.
TEST_F(PhoneSettings, GetAllPhones_MoreRowsThanCounted_FillsWhatWasCountedAndGivesTheRowCode)
{
    sql.exec(
        "PRAGMA writable_schema = ON;"
        "UPDATE sqlite_master SET type = 'none' WHERE name = 'IDX_TPHONE_IMEI';");
    sql.exec(
        "PRAGMA writable_schema = ON;"
        "CREATE TABLE saved AS SELECT rootpage, sql FROM sqlite_master WHERE name = 'IDX_TPHONE_IMEI';"
        "DELETE FROM sqlite_master WHERE name = 'IDX_TPHONE_IMEI'");
    sql.exec("INSERT INTO tPhone ([IMEI], [Name]) VALUES ('352222', 'unseen')");
    sql.exec(
        "PRAGMA writable_schema = ON;"
        "INSERT INTO sqlite_master SELECT 'index', 'IDX_TPHONE_IMEI', 'tPhone', rootpage, sql FROM saved");
    ASSERT_EQ(sql.text("SELECT COUNT(*) FROM tPhone"), "1");
    lib.unload();
    lib.load();
    trace.take();
    PhoneList list = {};
    EXPECT_EQ(lib.DB_LIB_GetAllPhones(&list), 100);
    ASSERT_EQ(list.Count, 1);
    EXPECT_EQ(Utf8(list.Items[0].Name), "Ann's phone");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_GetAllPhones().", "Memory NEW.", "Memory NEW.", "Memory NEW.",
                                          "Exit DB_LIB_GetAllPhones() with 100."));
}

}  // namespace
}  // namespace kesta::test
