// What a category hands out: its lists of folders and files, and single folders.
#include "api/category_exports.h"

namespace kesta::test {
namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;

class CategoryLists : public CategoryExports {
protected:
    /// Replaces the view of the files by another one.
    void givenFileView(const std::string& select)
    {
        changeSchema("DROP VIEW " + fileView() + "; CREATE VIEW " + fileView() + " AS " + select);
    }
};
INSTANTIATE_TEST_SUITE_P(, CategoryLists, ::testing::ValuesIn(Categories()), CategoryName);

TEST_P(CategoryLists, GetFolders_SeveralFolders_AreListedInTheOrderOfTheirAdding)
{
    givenFolder("C:\\C", 1, 0, 1, "2024-03-01 00:00:00");
    givenFolder("C:\\B", 0, 1, 0, "2024-01-01 00:00:01");
    givenFolder("C:\\A", 4, 0, 1, "2024-02-01 23:59:59");
    FolderList list = {};
    EXPECT_EQ(call.GetFolders(W(kImei), &list), 0);
    EXPECT_EQ(ToString(list),
              "C:\\B|3|30|300|0|1|2024-01-01 00:00:01|1\n"
              "C:\\A|3|30|300|1|0|2024-02-01 23:59:59|1\n"
              "C:\\C|3|30|300|1|0|2024-03-01 00:00:00|1");
    EXPECT_EQ(list.Items[0].RowId, 2);
    EXPECT_EQ(list.Items[1].RowId, 3);
    EXPECT_EQ(list.Items[2].RowId, 1);
    EXPECT_THAT(trace.take(), ElementsAre(enter("GetFolders", "IMEI: 351111"), "Memory NEW.", "Memory NEW.",
                                          "Memory NEW.", "Memory NEW."));
}

TEST_P(CategoryLists, GetFolders_RowNumberBeyond31Bits_IsReadWhole)
{
    givenFolder("C:\\A");
    sql.exec("UPDATE " + folderTable() + " SET ROWID = 5000000000");
    FolderList list = {};
    ASSERT_EQ(call.GetFolders(W(kImei), &list), 0);
    ASSERT_EQ(list.Count, 1);
    EXPECT_EQ(list.Items[0].RowId, 5'000'000'000);
}

TEST_P(CategoryLists, GetFolders_PhoneWithoutFolders_IsEmptyAndSucceeds)
{
    FolderList list = {};
    EXPECT_EQ(call.GetFolders(W(kImei), &list), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre(enter("GetFolders", "IMEI: 351111")));
}

TEST_P(CategoryLists, GetFolders_RecordHoldingAList_IsEmptiedBeforeTheEntryLine)
{
    givenFolder("C:\\A");
    givenFolder("C:\\B");
    FolderList list = {};
    ASSERT_EQ(call.GetFolders(W(kImei), &list), 0);
    trace.take();
    EXPECT_EQ(call.GetFolders(W("999"), &list), 1);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(),
                ElementsAre("Memory DELETE.", "Memory DELETE.", "Memory DELETE.", enter("GetFolders", "IMEI: 999")));
}

TEST_P(CategoryLists, GetFolders_CountFails_TracesNothing)
{
    changeSchema("DROP TABLE " + folderTable());
    FolderList list = {};
    EXPECT_EQ(call.GetFolders(W(kImei), &list), 1);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre(enter("GetFolders", "IMEI: 351111")));
}

TEST_P(CategoryLists, GetFolders_RowQueryFails_TracesPositionOneAndKeepsTheEmptyArray)
{
    givenFolder("C:\\A");
    changeSchema("DROP VIEW " + folderView() + "; ALTER TABLE " + folderTable() +
                 " RENAME COLUMN [TotalSize] TO [Elsewhere]");
    FolderList list = {};
    EXPECT_EQ(call.GetFolders(W(kImei), &list), 1);
    EXPECT_EQ(list.Count, 0);
    EXPECT_NE(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre(enter("GetFolders", "IMEI: 351111"), "Memory NEW.",
                                          "Error in DB_INTERNAL_GetFolders(), position 1."));
    EXPECT_EQ(call.GetFolders(W("999"), &list), 1);
    EXPECT_THAT(trace.take(), ElementsAre("Memory DELETE.", enter("GetFolders", "IMEI: 999")));
}

TEST_P(CategoryLists, GetFolders_SortingTheRowsFails_GivesTheStepsCode)
{
    givenFolder("C:\\A", 1, 0, 1, "2024-01-01 00:00:00");
    givenFolder("C:\\B", 1, 0, 1, "2024-01-02 00:00:00");
    changeSchema(
        "DROP VIEW " + folderView() + "; ALTER TABLE " + folderTable() + " RENAME TO kept; CREATE VIEW " +
        folderTable() +
        " AS SELECT rowid AS ROWID, [PhoneID], CASE WHEN [Path] = 'C:\\B' THEN zeroblob(2000000000) ELSE [Path] "
        "END AS [Path], [Count], [Size], [TotalSize], [Selected], [Deleted], [Flag], [AddTime], [Sized] FROM kept");
    FolderList list = {};
    EXPECT_EQ(call.GetFolders(W(kImei), &list), 18);
    EXPECT_EQ(list.Count, 0);
    EXPECT_THAT(trace.take(), ElementsAre(enter("GetFolders", "IMEI: 351111"), "Memory NEW."));
}

TEST_P(CategoryLists, GetFolders_OddValues_AreReadAsNumbersAndInvalidDates)
{
    sql.exec("INSERT INTO " + folderTable() +
             " VALUES (1, x'41', 'many', '12abc', 1e300, 1.9, 'x', 0, 'today', 4294967297)");
    FolderList list = {};
    EXPECT_EQ(call.GetFolders(W(kImei), &list), 0);
    EXPECT_EQ(ToString(list), "A|0|12|9223372036854775807|1|0|<invalid>|1");
    EXPECT_EQ(DaysOf(list.Items[0].AddTime), 0.0);
}

TEST_P(CategoryLists, GetFolder_KnownFolder_FillsAllButAddTime)
{
    givenFolder("C:\\A", 0, 1, 0);
    FolderRecord folder = {};
    folder.AddTime = Date(1999, 1, 1);
    EXPECT_EQ(call.GetFolder(W(kImei), W("C:\\A"), &folder), 0);
    EXPECT_EQ(ToString(folder), "C:\\A|3|30|300|0|1|1999-01-01 00:00:00|1");
    EXPECT_EQ(folder.RowId, 1);
    EXPECT_THAT(trace.take(), ElementsAre(enter("GetFolder", "IMEI: 351111, Path: C:\\A"), "Memory NEW."));
}

TEST_P(CategoryLists, GetFolder_UnknownFolder_FreesThePathAndZeroesTheCountersOnly)
{
    givenFolder("C:\\A", 0, 1, 1);
    FolderRecord folder = {};
    ASSERT_EQ(call.GetFolder(W(kImei), W("C:\\A"), &folder), 0);
    folder.AddTime = Date(1999, 1, 1);
    folder.Reserved = 55;
    trace.take();
    EXPECT_EQ(call.GetFolder(W(kImei), W("C:\\B"), &folder), 1);
    EXPECT_EQ(ToString(folder), "<null>|0|0|0|1|1|1999-01-01 00:00:00|0");
    EXPECT_EQ(folder.RowId, 1);
    EXPECT_EQ(folder.Reserved, 55);
    EXPECT_THAT(trace.take(), ElementsAre("Memory DELETE.", enter("GetFolder", "IMEI: 351111, Path: C:\\B")));
}

TEST_P(CategoryLists, GetFolder_UnknownPhone_Fails)
{
    givenFolder("C:\\A");
    FolderRecord folder = {};
    folder.Count = 9;
    EXPECT_EQ(call.GetFolder(W("999"), W("C:\\A"), &folder), 1);
    EXPECT_EQ(folder.Count, 0);
    EXPECT_THAT(trace.take(), ElementsAre(enter("GetFolder", "IMEI: 999, Path: C:\\A")));
}

TEST_P(CategoryLists, GetFolder_QueryFails_TracesPositionOne)
{
    changeSchema("DROP TABLE " + folderTable());
    FolderRecord folder = {};
    EXPECT_EQ(call.GetFolder(W(kImei), W("C:\\A"), &folder), 1);
    EXPECT_THAT(trace.take(), ElementsAre(enter("GetFolder", "IMEI: 351111, Path: C:\\A"),
                                          "Error in DB_INTERNAL_GetFolder(), position 1."));
}

TEST_P(CategoryLists, GetSyncedFiles_NoFolder_ListsEveryFileOfThePhone)
{
    givenFile("C:\\A\\1", "C:\\A");
    givenFile("C:\\B\\2", "C:\\B");
    givenPhone("352222");
    const SyncedFile other("C:\\C\\3", "C:\\C", "P:/3");
    ASSERT_EQ(call.SetAddedFile(W("352222"), &other), 0);
    trace.take();
    SyncedFileList list = {};
    EXPECT_EQ(call.GetSyncedFiles(W(kImei), W(""), &list), 0);
    EXPECT_EQ(ToString(list),
              "C:\\A\\1|C:\\A|P:/given|2024-01-01 10:20:30\nC:\\B\\2|C:\\B|P:/given|2024-01-01 10:20:30");
    EXPECT_EQ(call.GetSyncedFiles(W(kImei), W("none"), &list), 0);
    trace.take();
    EXPECT_EQ(call.GetSyncedFiles(W(kImei), nullptr, &list), 0);
    EXPECT_EQ(list.Count, 2);
    EXPECT_THAT(trace.take(),
                ElementsAre(enter("GetSyncedFiles", "IMEI: 351111, Folder: (null)"), "Memory NEW.", "Memory NEW.",
                            "Memory NEW.", "Memory NEW.", "Memory NEW.", "Memory NEW.", "Memory NEW."));
}

TEST_P(CategoryLists, GetSyncedFiles_OneFolder_ListsItsFilesOnly)
{
    givenFile("C:\\A\\1", "C:\\A");
    givenFile("C:\\A\\B\\2", "C:\\A\\B");
    givenFile("C:\\O'Brien\\3", "C:\\O'Brien");
    SyncedFileList list = {};
    EXPECT_EQ(call.GetSyncedFiles(W(kImei), W("C:\\A"), &list), 0);
    EXPECT_EQ(ToString(list), "C:\\A\\1|C:\\A|P:/given|2024-01-01 10:20:30");
    EXPECT_EQ(call.GetSyncedFiles(W(kImei), W("C:\\O'Brien"), &list), 0);
    EXPECT_EQ(ToString(list), "C:\\O'Brien\\3|C:\\O'Brien|P:/given|2024-01-01 10:20:30");
    trace.take();
    EXPECT_EQ(call.GetSyncedFiles(W(kImei), W("C:\\Z"), &list), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre("Memory DELETE.", "Memory DELETE.", "Memory DELETE.", "Memory DELETE.",
                                          enter("GetSyncedFiles", "IMEI: 351111, Folder: C:\\Z")));
}

TEST_P(CategoryLists, GetSyncedFiles_UnknownPhone_IsEmptyAndSucceeds)
{
    givenFile("C:\\A\\1", "C:\\A");
    SyncedFileList list = {};
    EXPECT_EQ(call.GetSyncedFiles(W("999"), W(""), &list), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre(enter("GetSyncedFiles", "IMEI: 999, Folder: ")));
}

TEST_P(CategoryLists, GetSyncedFiles_CountFails_TracesPositionOne)
{
    changeSchema("DROP VIEW " + fileView());
    for (const char* folder : {"", "C:\\A"}) {
        SyncedFileList list = {};
        EXPECT_EQ(call.GetSyncedFiles(W(kImei), W(folder), &list), 1);
        EXPECT_EQ(list.Items, nullptr);
        EXPECT_THAT(trace.take(), ElementsAre(enter("GetSyncedFiles", std::string("IMEI: 351111, Folder: ") + folder),
                                              "Error in DB_INTERNAL_GetSyncedFiles(), position 1."));
    }
}

TEST_P(CategoryLists, GetSyncedFiles_CountYieldsNoRow_IsEmptyAndSucceeds)
{
    givenFile("C:\\A\\1", "C:\\A");
    givenFileView("SELECT IMEI, [BasePath] FROM tPhone, " + fileTable() +
                  " WHERE abs(-9223372036854775807 - [ID]) > 0");
    SyncedFileList list = {};
    EXPECT_EQ(call.GetSyncedFiles(W(kImei), W(""), &list), 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre(enter("GetSyncedFiles", "IMEI: 351111, Folder: ")));
}

TEST_P(CategoryLists, GetSyncedFiles_RowQueryFails_TracesPositionThreeAndKeepsTheEmptyArray)
{
    givenFile("C:\\A\\1", "C:\\A");
    givenFileView("SELECT IMEI, [BasePath] FROM tPhone, " + fileTable() + " WHERE [ID] = [PhoneID]");
    for (const char* folder : {"", "C:\\A"}) {
        SyncedFileList list = {};
        EXPECT_EQ(call.GetSyncedFiles(W(kImei), W(folder), &list), 1);
        EXPECT_EQ(list.Count, 0);
        EXPECT_NE(list.Items, nullptr);
        EXPECT_THAT(trace.take(), ElementsAre(enter("GetSyncedFiles", std::string("IMEI: 351111, Folder: ") + folder),
                                              "Memory NEW.", "Error in DB_INTERNAL_GetSyncedFiles(), position 3."));
        EXPECT_EQ(call.GetSyncedFiles(W(kImei), W("none"), &list), 0);
        EXPECT_THAT(trace.take(), ElementsAre("Memory DELETE.", enter("GetSyncedFiles", "IMEI: 351111, Folder: none")));
    }
}

TEST_P(CategoryLists, GetSyncedFiles_ReadingARowFails_GivesTheStepsCodeAndTheRowsBefore)
{
    givenFile("C:\\A\\1", "C:\\A");
    givenFile("C:\\A\\2", "C:\\A");
    givenFileView(
        "SELECT IMEI, [Path], [BasePath], CASE WHEN [Path] = 'C:\\A\\2' THEN zeroblob(2000000000) ELSE "
        "[PhonePath] END AS [PhonePath], [ModifiedTime] FROM tPhone, " +
        fileTable() + " WHERE [ID] = [PhoneID]");
    SyncedFileList list = {};
    EXPECT_EQ(call.GetSyncedFiles(W(kImei), W(""), &list), 18);
    EXPECT_EQ(ToString(list), "C:\\A\\1|C:\\A|P:/given|2024-01-01 10:20:30");
    EXPECT_THAT(trace.take(), ElementsAre(enter("GetSyncedFiles", "IMEI: 351111, Folder: "), "Memory NEW.",
                                          "Memory NEW.", "Memory NEW.", "Memory NEW."));
}

/// Each query over this view yields another number of rows, so that sooner or later more come than were counted.
TEST_P(CategoryLists, GetSyncedFiles_MoreRowsThanCounted_FillsWhatWasCountedAndGivesTheRowCode)
{
    givenFileView(
        "WITH RECURSIVE some(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM some WHERE n < 20) "
        "SELECT '351111' AS IMEI, 'file ' || n AS [Path], 'C:\\A' AS [BasePath], 'P:/' AS [PhonePath], "
        "'2024-01-01 00:00:00' AS [ModifiedTime] FROM some WHERE random() % 2 = 0");
    SyncedFileList list = {};
    bool moreCame = false;
    for (int i = 0; i < 200 && !moreCame; ++i) {
        const int32_t result = call.GetSyncedFiles(W(kImei), W(i % 2 == 0 ? "" : "C:\\A"), &list);
        ASSERT_THAT(result, AnyOf(0, 100));
        moreCame = result == 100 && list.Count > 0;
    }
    EXPECT_TRUE(moreCame);
    for (int32_t i = 0; i < list.Count; ++i) {
        EXPECT_EQ(Utf8(list.Items[i].BasePath), "C:\\A");
    }
}

}  // namespace
}  // namespace kesta::test
