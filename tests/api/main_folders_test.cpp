// DB_LIB_*: main folders, their statistics and their change flags.
#include "api/given.h"

namespace kesta::test {
namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;

constexpr char kSeeds[] =
    "1000|music|0|0|\n1100|gallery|0|0|\n1400|document|0|0|\n1500|people|0|0|\n1600|calendar|0|0|\n"
    "1900|web bookmark|0|0|\n2200|Map|0|0|";

class MainFolders : public OpenDatabase {
protected:
    [[nodiscard]] std::string rows() const { return sql.text("SELECT * FROM tLibMainFolder ORDER BY [ID]"); }
    [[nodiscard]] std::string music() const { return sql.text("SELECT * FROM tLibMainFolder WHERE [ID] = 1000"); }
};

TEST_F(MainFolders, UpdateMainFolderInfo_AllFields_WritesThemToItsFolderOnly)
{
    Text setting("it's \xF0\x9F\x8E\xB5");
    const MainFolderRecord folder = {1000, 12, 5'000'000'000, setting.get(), 0};
    EXPECT_EQ(lib.DB_LIB_UpdateMainFolderInfo(&folder), 0);
    EXPECT_EQ(music(), "1000|music|12|5000000000|it's \xF0\x9F\x8E\xB5");
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tLibMainFolder WHERE [Number] = 0 AND [Size] = 0 AND [Setting] = ''"),
              "6");
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_LIB_UpdateMainFolderInfo().", "Exit DB_LIB_UpdateMainFolderInfo() with 0."));
}

TEST_F(MainFolders, UpdateMainFolderInfo_EachSubsetOfFields_LeavesTheOthers)
{
    struct Case {
        int32_t number;
        int64_t size;
        const char* setting;
        const char* row;
    };
    for (const Case& each :
         {Case{7, -1, nullptr, "1000|music|7|20|old"}, Case{-1, 7, nullptr, "1000|music|10|7|old"},
          Case{-1, -1, "new", "1000|music|10|20|new"}, Case{7, 8, "", "1000|music|7|8|old"},
          Case{7, INT64_MIN, "new", "1000|music|7|20|new"}, Case{INT32_MIN, 8, "new", "1000|music|10|8|new"},
          Case{0, 0, nullptr, "1000|music|0|0|old"},
          Case{INT32_MAX, INT64_MAX, nullptr, "1000|music|2147483647|9223372036854775807|old"}}) {
        sql.exec("UPDATE tLibMainFolder SET [Number] = 10, [Size] = 20, [Setting] = 'old' WHERE [ID] = 1000");
        Text setting(each.setting != nullptr ? each.setting : "");
        const MainFolderRecord folder = {1000, each.number, each.size,
                                         each.setting != nullptr ? setting.get() : nullptr, 0};
        EXPECT_EQ(lib.DB_LIB_UpdateMainFolderInfo(&folder), 0);
        EXPECT_EQ(music(), each.row);
    }
}

TEST_F(MainFolders, UpdateMainFolderInfo_NothingToWrite_FailsWithoutStatement)
{
    Text empty("");
    for (DbChar* setting : {static_cast<DbChar*>(nullptr), empty.get()}) {
        const MainFolderRecord folder = {1000, -1, -1, setting, 1};
        EXPECT_EQ(lib.DB_LIB_UpdateMainFolderInfo(&folder), 1);
        EXPECT_EQ(rows(), kSeeds);
        EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_UpdateMainFolderInfo().",
                                              "Error in DB_INTERNAL_LIB_UpdateMainFolderInfo(), position 1.",
                                              "Exit DB_LIB_UpdateMainFolderInfo() with 1."));
    }
}

TEST_F(MainFolders, UpdateMainFolderInfo_UnknownFolder_SucceedsWithoutChange)
{
    const MainFolderRecord folder = {1234, 1, 2, nullptr, 0};
    EXPECT_EQ(lib.DB_LIB_UpdateMainFolderInfo(&folder), 0);
    EXPECT_EQ(rows(), kSeeds);
}

TEST_F(MainFolders, UpdateMainFolderInfo_UpdateFails_TracesPositionTwo)
{
    sql.exec("CREATE TRIGGER refuse BEFORE UPDATE ON tLibMainFolder BEGIN SELECT RAISE(ABORT, 'no'); END");
    const MainFolderRecord folder = {1000, 1, 2, nullptr, 0};
    EXPECT_EQ(lib.DB_LIB_UpdateMainFolderInfo(&folder), 1);
    EXPECT_EQ(rows(), kSeeds);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_UpdateMainFolderInfo().",
                                          "Error in DB_INTERNAL_LIB_UpdateMainFolderInfo(), position 2.",
                                          "Exit DB_LIB_UpdateMainFolderInfo() with 1."));
}

TEST_F(MainFolders, RefreshStatistics_FreshDatabase_FailsFourTimesAndChangesNothing)
{
    EXPECT_EQ(lib.DB_LIB_RefreshStatistics(), 1);
    EXPECT_EQ(rows(), kSeeds);
    const char* const failure = "Error in DB_INTERNAL_LIB_RefreshStatistic(), position 1.";
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_RefreshStatistics().", failure, failure, failure, failure,
                                          "Exit DB_LIB_RefreshStatistics() with 1."));
}

TEST_F(MainFolders, RefreshStatistics_AllTablesThere_WritesCountsAndSizes)
{
    sql.exec(
        "CREATE TABLE tMusicFiles ([Size]); INSERT INTO tMusicFiles VALUES (5000000000), (7);"
        "CREATE TABLE tMediaFiles ([Size]);"
        "CREATE TABLE tDocuments ([Size]); INSERT INTO tDocuments VALUES (1), (NULL), (3);"
        "CREATE TABLE tWebBookmarks ([Size]); INSERT INTO tWebBookmarks VALUES (99);"
        "UPDATE tLibMainFolder SET [Number] = 77, [Size] = 88, [Setting] = 'kept'");
    EXPECT_EQ(lib.DB_LIB_RefreshStatistics(), 0);
    EXPECT_EQ(rows(),
              "1000|music|2|5000000007|kept\n1100|gallery|0|0|kept\n1400|document|3|4|kept\n1500|people|77|88|kept\n"
              "1600|calendar|77|88|kept\n1900|web bookmark|1|0|kept\n2200|Map|77|88|kept");
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_LIB_RefreshStatistics().", "Exit DB_LIB_RefreshStatistics() with 0."));
}

TEST_F(MainFolders, RefreshStatistics_OneTableMissing_RefreshesTheOthersAndFails)
{
    sql.exec(
        "CREATE TABLE tMusicFiles ([Size]); INSERT INTO tMusicFiles VALUES (1);"
        "CREATE TABLE tDocuments ([Size]); INSERT INTO tDocuments VALUES (2);"
        "CREATE TABLE tWebBookmarks ([Size]); INSERT INTO tWebBookmarks VALUES (3);");
    EXPECT_EQ(lib.DB_LIB_RefreshStatistics(), 1);
    EXPECT_EQ(sql.text("SELECT [ID], [Number], [Size] FROM tLibMainFolder WHERE [Number] > 0 ORDER BY [ID]"),
              "1000|1|1\n1400|1|2\n1900|1|0");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_RefreshStatistics().",
                                          "Error in DB_INTERNAL_LIB_RefreshStatistic(), position 1.",
                                          "Exit DB_LIB_RefreshStatistics() with 1."));
}

TEST_F(MainFolders, RefreshStatistics_UpdateRefused_FailsUnderTheUpdatesName)
{
    sql.exec(
        "CREATE TABLE tMusicFiles ([Size]); CREATE TABLE tMediaFiles ([Size]); CREATE TABLE tDocuments ([Size]);"
        "CREATE TABLE tWebBookmarks ([Size]);"
        "CREATE TRIGGER refuse BEFORE UPDATE ON tLibMainFolder WHEN OLD.[ID] = 1100 "
        "BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(lib.DB_LIB_RefreshStatistics(), 1);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_RefreshStatistics().",
                                          "Error in DB_INTERNAL_LIB_UpdateMainFolderInfo(), position 2.",
                                          "Exit DB_LIB_RefreshStatistics() with 1."));
}

TEST_F(MainFolders, RefreshStatistics_CountingFails_SkipsThatFolder)
{
    // SUM over two numbers overflows: the query ends with an error instead of a row, which has no line of its own.
    sql.exec(
        "CREATE TABLE tMusicFiles ([Size]); INSERT INTO tMusicFiles VALUES (9223372036854775807), (1);"
        "CREATE TABLE tMediaFiles ([Size]); CREATE TABLE tDocuments ([Size]); CREATE TABLE tWebBookmarks ([Size]);"
        "UPDATE tLibMainFolder SET [Number] = 7 WHERE [ID] = 1000");
    EXPECT_EQ(lib.DB_LIB_RefreshStatistics(), 1);
    EXPECT_EQ(music(), "1000|music|7|0|");
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_LIB_RefreshStatistics().", "Exit DB_LIB_RefreshStatistics() with 1."));
}

TEST_F(MainFolders, GetAllMainFolders_FreshDatabase_ListsTheSevenSeeds)
{
    MainFolderList list = {};
    EXPECT_EQ(lib.DB_LIB_GetAllMainFolders(&list), 0);
    EXPECT_EQ(ToString(list),
              "1000|0|0|<null>|0\n1100|0|0|<null>|0\n1400|0|0|<null>|0\n1500|0|0|<null>|1\n1600|0|0|<null>|1\n"
              "1900|0|0|<null>|0\n2200|0|0|<null>|1");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_GetAllMainFolders().", "Memory NEW.",
                                          "Exit DB_LIB_GetAllMainFolders() with 0."));
}

TEST_F(MainFolders, GetAllMainFolders_ValuesAndSettings_AreReadAndFreedWithTheList)
{
    sql.exec(
        "DELETE FROM tLibMainFolder WHERE [ID] > 1100; UPDATE tLibMainFolder SET [Number] = 3, [Size] = 5000000000, "
        "[Setting] = 'it''s' WHERE [ID] = 1000; UPDATE tLibMainFolder SET [Setting] = NULL WHERE [ID] = 1100; "
        "INSERT INTO tLibMainFolder VALUES (-5, 'own', -1, -2, 'x')");
    MainFolderList list = {};
    EXPECT_EQ(lib.DB_LIB_GetAllMainFolders(&list), 0);
    EXPECT_EQ(ToString(list), "-5|-1|-2|x|1\n1000|3|5000000000|it's|0\n1100|0|0|<null>|0");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_GetAllMainFolders().", "Memory NEW.", "Memory NEW.",
                                          "Memory NEW.", "Exit DB_LIB_GetAllMainFolders() with 0."));
    sql.exec("DELETE FROM tLibMainFolder");
    EXPECT_EQ(lib.DB_LIB_GetAllMainFolders(&list), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_GetAllMainFolders().", "Memory DELETE.", "Memory DELETE.",
                                          "Memory DELETE.", "Exit DB_LIB_GetAllMainFolders() with 0."));
}

TEST_F(MainFolders, GetAllMainFolders_CountFails_TracesPositionOne)
{
    changeSchema("DROP TABLE tLibMainFolder");
    MainFolderList list = {};
    EXPECT_EQ(lib.DB_LIB_GetAllMainFolders(&list), 1);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_GetAllMainFolders().",
                                          "Error in DB_INTERNAL_LIB_GetAllMainFolders(), position 1.",
                                          "Exit DB_LIB_GetAllMainFolders() with 1."));
}

TEST_F(MainFolders, GetAllMainFolders_RowQueryFails_TracesPositionTwoAndKeepsTheEmptyArray)
{
    changeSchema("ALTER TABLE tLibMainFolder RENAME COLUMN [Setting] TO [Elsewhere]");
    MainFolderList list = {};
    EXPECT_EQ(lib.DB_LIB_GetAllMainFolders(&list), 1);
    EXPECT_EQ(list.Count, 0);
    EXPECT_NE(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_GetAllMainFolders().", "Memory NEW.",
                                          "Error in DB_INTERNAL_LIB_GetAllMainFolders(), position 2.",
                                          "Exit DB_LIB_GetAllMainFolders() with 1."));
    sql.exec("DELETE FROM tLibMainFolder");
    EXPECT_EQ(lib.DB_LIB_GetAllMainFolders(&list), 0);
    EXPECT_EQ(list.Items, nullptr);
}

TEST_F(MainFolders, GetAllMainFolders_ReadingARowFails_GivesTheStepsCode)
{
    changeSchema(
        "ALTER TABLE tLibMainFolder RENAME TO kept; CREATE VIEW tLibMainFolder AS SELECT [ID], [Number], [Size], "
        "CASE WHEN [ID] = 1400 THEN zeroblob(2000000000) ELSE [Setting] END AS [Setting] FROM kept");
    MainFolderList list = {};
    EXPECT_EQ(lib.DB_LIB_GetAllMainFolders(&list), 18);
    EXPECT_EQ(ToString(list), "1000|0|0|<null>|0\n1100|0|0|<null>|0");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_GetAllMainFolders().", "Memory NEW.",
                                          "Exit DB_LIB_GetAllMainFolders() with 18."));
}

/// Each query over this view yields another number of rows, so that sooner or later more come than were counted.
TEST_F(MainFolders, GetAllMainFolders_MoreRowsThanCounted_GivesTheRowCode)
{
    changeSchema(
        "DROP TABLE tLibMainFolder; CREATE VIEW tLibMainFolder AS WITH RECURSIVE some(n) AS (SELECT 1 UNION ALL "
        "SELECT n + 1 FROM some WHERE n < 20) SELECT n AS [ID], 1 AS [Number], 2 AS [Size], 's' AS [Setting] FROM some "
        "WHERE random() % 2 = 0");
    MainFolderList list = {};
    bool moreCame = false;
    for (int i = 0; i < 200 && !moreCame; ++i) {
        const int32_t result = lib.DB_LIB_GetAllMainFolders(&list);
        ASSERT_THAT(result, AnyOf(0, 100));
        moreCame = result == 100;
    }
    EXPECT_TRUE(moreCame);
    EXPECT_GT(list.Count, 0);
}

TEST_F(MainFolders, MainFoldersChanged_NothingChanged_FillsFourRecordsWithoutLinesOfItsOwn)
{
    MainFolderList list = {};
    EXPECT_EQ(lib.DB_LIB_MainFoldersChanged(&list), 0);
    EXPECT_EQ(ToString(list), "1000|0|0|<null>|0\n1100|0|0|<null>|0\n1400|0|0|<null>|0\n1900|0|0|<null>|0");
    EXPECT_THAT(trace.take(), ElementsAre("Memory NEW."));
    EXPECT_EQ(lib.DB_LIB_MainFoldersChanged(&list), 0);
    EXPECT_THAT(trace.take(), ElementsAre("Memory DELETE.", "Memory NEW."));
}

TEST_F(MainFolders, MainFoldersChanged_AfterAMusicFolderWasAdded_TellsItOnce)
{
    givenPhone();
    const Folder folder("C:\\A");
    ASSERT_EQ(lib.DB_MUSIC_AddFolder(W(kImei), &folder), 0);
    MainFolderList all = {};
    MainFolderList changes = {};
    for (int i = 0; i < 2; ++i) {  // reading all of them does not reset the flag
        EXPECT_EQ(lib.DB_LIB_GetAllMainFolders(&all), 0);
        EXPECT_EQ(all.Items[0].Changed, 1);
        EXPECT_EQ(all.Items[1].Changed, 0);
    }
    EXPECT_EQ(lib.DB_LIB_MainFoldersChanged(&changes), 0);
    EXPECT_EQ(ToString(changes), "1000|0|0|<null>|1\n1100|0|0|<null>|0\n1400|0|0|<null>|0\n1900|0|0|<null>|0");
    EXPECT_EQ(lib.DB_LIB_MainFoldersChanged(&changes), 0);
    EXPECT_EQ(ToString(changes), "1000|0|0|<null>|0\n1100|0|0|<null>|0\n1400|0|0|<null>|0\n1900|0|0|<null>|0");
    EXPECT_EQ(lib.DB_LIB_GetAllMainFolders(&all), 0);
    EXPECT_EQ(all.Items[0].Changed, 0);
}

TEST_F(MainFolders, MainFoldersChanged_LibraryLoadedAgain_StartsUnchanged)
{
    givenPhone();
    const Folder folder("C:\\A");
    ASSERT_EQ(lib.DB_MUSIC_AddFolder(W(kImei), &folder), 0);
    lib.unload();
    lib.load();
    MainFolderList changes = {};
    EXPECT_EQ(lib.DB_LIB_MainFoldersChanged(&changes), 0);
    EXPECT_EQ(changes.Items[0].Changed, 0);
}

}  // namespace
}  // namespace kesta::test
