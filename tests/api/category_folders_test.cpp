// Folders of a category: adding, selecting, marking deleted, removing.
#include "api/category_exports.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

class CategoryFolders : public CategoryExports {};
INSTANTIATE_TEST_SUITE_P(, CategoryFolders, ::testing::ValuesIn(Categories()), CategoryName);

TEST_P(CategoryFolders, AddFolder_NewFolder_InsertsSelectedRowWithFlagOne)
{
    const Folder folder("C:\\Music", 7, 1'234'567'890'123, 9'876'543'210'987, 1);
    EXPECT_EQ(call.AddFolder(W(kImei), &folder), 0);
    EXPECT_EQ(folders("[PhoneID], [Path], [Count], [Size], [TotalSize], [Selected], [Deleted], [Flag], [Sized]"),
              "1|C:\\Music|7|1234567890123|9876543210987|1|0|1|1");
    EXPECT_TRUE(IsNow(folders("[AddTime]"))) << folders("[AddTime]");
    EXPECT_THAT(trace.take(), ElementsAre(enter("AddFolder", "IMEI: 351111, Path: C:\\Music")));
}

TEST_P(CategoryFolders, AddFolder_KnownFolder_RefreshesFiguresAndKeepsSelectionFlagAndAddTime)
{
    givenFolder("C:\\Music", /*flag=*/0, /*deleted=*/1, /*selected=*/0);
    const Folder folder("C:\\Music", 9, 90, 900, 0);
    EXPECT_EQ(call.AddFolder(W(kImei), &folder), 0);
    EXPECT_EQ(folders("*"), "1|C:\\Music|9|90|900|0|0|0|2024-01-01 00:00:00|0");
    EXPECT_THAT(trace.take(), ElementsAre(enter("AddFolder", "IMEI: 351111, Path: C:\\Music")));
}

TEST_P(CategoryFolders, AddFolder_SelectedAndDeletedOfTheRecord_AreNotTaken)
{
    Folder folder("C:\\Music");
    folder.Selected = 0;
    folder.Deleted = 1;
    folder.RowId = 77;
    folder.AddTime = Date(1999, 1, 1);
    EXPECT_EQ(call.AddFolder(W(kImei), &folder), 0);
    EXPECT_EQ(folders("ROWID, [Selected], [Deleted]"), "1|1|0");
    EXPECT_TRUE(IsNow(folders("[AddTime]")));
}

TEST_P(CategoryFolders, AddFolder_NegativeFigures_AreStored)
{
    const Folder folder("C:\\Music", -1, -2, INT64_MIN, -3);
    EXPECT_EQ(call.AddFolder(W(kImei), &folder), 0);
    EXPECT_EQ(folders("[Count], [Size], [TotalSize], [Sized]"), "-1|-2|-9223372036854775808|-3");
}

TEST_P(CategoryFolders, AddFolder_OtherPhonesFolder_IsLeftAlone)
{
    givenFolder("C:\\Music");
    givenPhone("352222");
    const Folder folder("C:\\Music", 9);
    EXPECT_EQ(call.AddFolder(W("352222"), &folder), 0);
    EXPECT_EQ(folders("[PhoneID], [Count]"), "1|3\n2|9");
}

TEST_P(CategoryFolders, AddFolder_AnyCategory_RaisesTheMusicFlag)
{
    MainFolderList changes = {};
    const Folder folder("C:\\Music");
    EXPECT_EQ(call.AddFolder(W(kImei), &folder), 0);
    EXPECT_EQ(lib.DB_LIB_MainFoldersChanged(&changes), 0);
    EXPECT_EQ(ToString(changes), "1000|0|0|<null>|1\n1100|0|0|<null>|0\n1400|0|0|<null>|0\n1900|0|0|<null>|0");
}

TEST_P(CategoryFolders, AddFolder_UnknownPhone_FailsWithoutFlag)
{
    MainFolderList changes = {};
    const Folder folder("C:\\Music");
    EXPECT_EQ(call.AddFolder(W("999"), &folder), 1);
    EXPECT_EQ(folders("*"), "");
    EXPECT_THAT(trace.take(), ElementsAre(enter("AddFolder", "IMEI: 999, Path: C:\\Music")));
    EXPECT_EQ(lib.DB_LIB_MainFoldersChanged(&changes), 0);
    EXPECT_EQ(changes.Items[0].Changed, 0);
}

TEST_P(CategoryFolders, AddFolder_BothStatementsFail_StillSucceedsSilentlyAndRaisesTheFlag)
{
    MainFolderList changes = {};
    const Folder folder("C:\\Music");
    changeSchema("DROP TABLE " + folderTable());
    EXPECT_EQ(call.AddFolder(W(kImei), &folder), 0);
    EXPECT_THAT(trace.take(), ElementsAre(enter("AddFolder", "IMEI: 351111, Path: C:\\Music")));
    EXPECT_EQ(lib.DB_LIB_MainFoldersChanged(&changes), 0);
    EXPECT_EQ(changes.Items[0].Changed, 1);
}

TEST_P(CategoryFolders, AddFolder_UpdateFails_InsertIsTriedAllTheSame)
{
    sql.exec("CREATE TRIGGER refuse BEFORE UPDATE ON " + folderTable() + " BEGIN SELECT RAISE(ABORT, 'no'); END");
    givenFolder("C:\\Music");
    const Folder known("C:\\Music", 9);
    const Folder fresh("C:\\More", 5);
    EXPECT_EQ(call.AddFolder(W(kImei), &known), 0);
    EXPECT_EQ(call.AddFolder(W(kImei), &fresh), 0);
    EXPECT_EQ(folders("[Path], [Count]"), "C:\\More|5\nC:\\Music|3");
}

TEST_P(CategoryFolders, ClearAll_SeveralFolders_MarksAllButThoseAtFourAndKeepsTheFiles)
{
    givenFolder("C:\\A", 0);
    givenFolder("C:\\B", 1, /*deleted=*/4);
    givenFolder("C:\\C", 4, /*deleted=*/1);
    givenFolder("C:\\D", 1, /*deleted=*/7);
    givenFile("C:\\A\\1", "C:\\A");
    EXPECT_EQ(call.ClearAll(W(kImei)), 0);
    EXPECT_EQ(folders("[Path], [Deleted], [Flag]"), "C:\\A|1|0\nC:\\B|4|1\nC:\\C|1|4\nC:\\D|1|1");
    EXPECT_EQ(files(), "1|C:\\A\\1|C:\\A|P:/given|2024-01-01 10:20:30");
    EXPECT_THAT(trace.take(), ElementsAre(enter("ClearAll", "IMEI: 351111")));
}

TEST_P(CategoryFolders, ClearAll_OtherPhone_IsLeftAlone)
{
    givenFolder("C:\\A");
    givenPhone("352222");
    EXPECT_EQ(call.ClearAll(W("352222")), 0);
    EXPECT_EQ(folders("[Deleted]"), "0");
}

TEST_P(CategoryFolders, ClearAll_UnknownPhone_FailsWithoutErrorLine)
{
    givenFolder("C:\\A");
    EXPECT_EQ(call.ClearAll(W("999")), 1);
    EXPECT_EQ(folders("[Deleted]"), "0");
    EXPECT_THAT(trace.take(), ElementsAre(enter("ClearAll", "IMEI: 999")));
}

TEST_P(CategoryFolders, ClearAll_UpdateFails_TracesPositionTwo)
{
    changeSchema("DROP TABLE " + folderTable());
    EXPECT_EQ(call.ClearAll(W(kImei)), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(enter("ClearAll", "IMEI: 351111"), "Error in DB_INTERNAL_SetFoldersState(), position 2."));
}

TEST_P(CategoryFolders, IsFolderSelected_StoredValue_IsReturnedAsItIs)
{
    givenFolder("C:\\A", 1, 0, /*selected=*/0);
    givenFolder("C:\\B", 1, 0, /*selected=*/1);
    givenFolder("C:\\C", 1, 0, /*selected=*/5);
    EXPECT_EQ(call.IsFolderSelected(W(kImei), W("C:\\A")), 0);
    EXPECT_EQ(call.IsFolderSelected(W(kImei), W("C:\\B")), 1);
    EXPECT_EQ(call.IsFolderSelected(W(kImei), W("C:\\C")), 5);
    EXPECT_THAT(trace.take(), ElementsAre(enter("IsFolderSelected", "IMEI: 351111, Path: C:\\A"),
                                          enter("IsFolderSelected", "IMEI: 351111, Path: C:\\B"),
                                          enter("IsFolderSelected", "IMEI: 351111, Path: C:\\C")));
}

TEST_P(CategoryFolders, IsFolderSelected_UnknownFolderOrPhone_IsOne)
{
    givenFolder("C:\\A", 1, 0, /*selected=*/0);
    EXPECT_EQ(call.IsFolderSelected(W(kImei), W("C:\\B")), 1);
    EXPECT_EQ(call.IsFolderSelected(W("999"), W("C:\\A")), 1);
    EXPECT_THAT(trace.take(), ElementsAre(enter("IsFolderSelected", "IMEI: 351111, Path: C:\\B"),
                                          enter("IsFolderSelected", "IMEI: 999, Path: C:\\A")));
}

TEST_P(CategoryFolders, IsFolderSelected_QueryFails_IsOneWithPositionOne)
{
    changeSchema("DROP VIEW " + folderView());
    EXPECT_EQ(call.IsFolderSelected(W(kImei), W("C:\\A")), 1);
    EXPECT_THAT(trace.take(), ElementsAre(enter("IsFolderSelected", "IMEI: 351111, Path: C:\\A"),
                                          "Error in DB_INTERNAL_IsFolderSelected(), position 1."));
}

TEST_P(CategoryFolders, SetFolderSelected_KnownFolder_StoresTheValue)
{
    givenFolder("C:\\A");
    givenFolder("C:\\B");
    EXPECT_EQ(call.SetFolderSelected(W(kImei), W("C:\\A"), 0), 0);
    EXPECT_EQ(folders("[Path], [Selected]"), "C:\\A|0\nC:\\B|1");
    EXPECT_EQ(call.SetFolderSelected(W(kImei), W("C:\\A"), -7), 0);
    EXPECT_EQ(folders("[Path], [Selected]"), "C:\\A|-7\nC:\\B|1");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetFolderSelected", "IMEI: 351111, Path: C:\\A, Selected: 0"),
                                          enter("SetFolderSelected", "IMEI: 351111, Path: C:\\A, Selected: -7")));
}

TEST_P(CategoryFolders, SetFolderSelected_UnknownFolder_SucceedsWithoutRow)
{
    EXPECT_EQ(call.SetFolderSelected(W(kImei), W("C:\\A"), 1), 0);
    EXPECT_EQ(folders("*"), "");
}

TEST_P(CategoryFolders, SetFolderSelected_UnknownPhone_FailsWithoutErrorLine)
{
    givenFolder("C:\\A");
    EXPECT_EQ(call.SetFolderSelected(W("999"), W("C:\\A"), 0), 1);
    EXPECT_EQ(folders("[Selected]"), "1");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetFolderSelected", "IMEI: 999, Path: C:\\A, Selected: 0")));
}

TEST_P(CategoryFolders, SetFolderSelected_UpdateFails_TracesPositionTwo)
{
    sql.exec("CREATE TRIGGER refuse BEFORE UPDATE ON " + folderTable() + " BEGIN SELECT RAISE(ABORT, 'no'); END");
    givenFolder("C:\\A");
    EXPECT_EQ(call.SetFolderSelected(W(kImei), W("C:\\A"), 0), 1);
    EXPECT_EQ(folders("[Selected]"), "1");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetFolderSelected", "IMEI: 351111, Path: C:\\A, Selected: 0"),
                                          "Error in DB_INTERNAL_SetFolderSelected(), position 2."));
}

TEST_P(CategoryFolders, IsFolderDeleted_LiveDeletedOrUnknownFolder_StillAnswersOne)
{
    givenFolder("C:\\Live", 0, /*deleted=*/0);
    givenFolder("C:\\Gone", 0, /*deleted=*/1);
    for (const char* path : {"C:\\Live", "C:\\Gone", "C:\\Unknown"}) {
        EXPECT_EQ(call.IsFolderDeleted(W(kImei), W(path)), 1);
        EXPECT_THAT(trace.take(), ElementsAre(enter("IsFolderDeleted", std::string("IMEI: 351111, Path: ") + path),
                                              "Error in DB_INTERNAL_IsFolderDeleted(), position 1."));
    }
}

TEST_P(CategoryFolders, IsFolderDeleted_ViewWithTheColumnItNames_AnswersFromTheRow)
{
    givenFolder("C:\\Live", 0, /*deleted=*/0);
    changeSchema("DROP VIEW " + folderView() + "; CREATE VIEW " + folderView() +
                 " AS SELECT IMEI, [Path] AS [Name], [Deleted] FROM tPhone, " + folderTable() +
                 " WHERE [ID] = [PhoneID]");
    EXPECT_EQ(call.IsFolderDeleted(W(kImei), W("C:\\Live")), 0);
    EXPECT_EQ(call.IsFolderDeleted(W(kImei), W("C:\\Unknown")), 1);
    EXPECT_THAT(trace.take(), ElementsAre(enter("IsFolderDeleted", "IMEI: 351111, Path: C:\\Live"),
                                          enter("IsFolderDeleted", "IMEI: 351111, Path: C:\\Unknown")));
}

TEST_P(CategoryFolders, SetDeletedFolder_WhateverItsFlag_RemovesRowAndFiles)
{
    for (const int flag : {0, 1, 3, 4}) {
        givenFolder("C:\\A", flag);
        givenFolder("C:\\B", flag);
        givenFile("C:\\A\\1", "C:\\A");
        givenFile("C:\\A\\2", "C:\\A");
        givenFile("C:\\B\\1", "C:\\B");
        EXPECT_EQ(call.SetDeletedFolder(W(kImei), W("C:\\A")), 0);
        EXPECT_EQ(folders("[Path]"), "C:\\B");
        EXPECT_EQ(files(), "1|C:\\B\\1|C:\\B|P:/given|2024-01-01 10:20:30");
        EXPECT_THAT(trace.take(), ElementsAre(enter("SetDeletedFolder", "IMEI: 351111, Path: C:\\A")));
        sql.exec("DELETE FROM " + folderTable() + "; DELETE FROM " + fileTable());
    }
}

TEST_P(CategoryFolders, SetDeletedFolder_UnknownFolder_RemovesItsFilesAndSucceeds)
{
    givenFile("C:\\A\\1", "C:\\A");
    EXPECT_EQ(call.SetDeletedFolder(W(kImei), W("C:\\A")), 0);
    EXPECT_EQ(files(), "");
}

TEST_P(CategoryFolders, SetDeletedFolder_OtherPhone_IsLeftAlone)
{
    givenFolder("C:\\A");
    givenFile("C:\\A\\1", "C:\\A");
    givenPhone("352222");
    EXPECT_EQ(call.SetDeletedFolder(W("352222"), W("C:\\A")), 0);
    EXPECT_EQ(folders("[Path]"), "C:\\A");
    EXPECT_EQ(files(), "1|C:\\A\\1|C:\\A|P:/given|2024-01-01 10:20:30");
}

TEST_P(CategoryFolders, SetDeletedFolder_UnknownPhone_Fails)
{
    givenFolder("C:\\A");
    EXPECT_EQ(call.SetDeletedFolder(W("999"), W("C:\\A")), 1);
    EXPECT_EQ(folders("[Path]"), "C:\\A");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetDeletedFolder", "IMEI: 999, Path: C:\\A")));
}

TEST_P(CategoryFolders, SetDeletedFolder_FolderCannotBeRemoved_RemovesTheFilesAndSucceeds)
{
    givenFolder("C:\\A");
    givenFile("C:\\A\\1", "C:\\A");
    sql.exec("CREATE TRIGGER refuse BEFORE DELETE ON " + folderTable() + " BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(call.SetDeletedFolder(W(kImei), W("C:\\A")), 0);
    EXPECT_EQ(folders("[Path]"), "C:\\A");
    EXPECT_EQ(files(), "");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetDeletedFolder", "IMEI: 351111, Path: C:\\A"),
                                          "Error in DB_INTERNAL_SetDeletedFolder(), position 1."));
}

TEST_P(CategoryFolders, SetDeletedFolder_FilesCannotBeRemoved_FailsWithTheFolderGone)
{
    givenFolder("C:\\A");
    givenFile("C:\\A\\1", "C:\\A");
    sql.exec("CREATE TRIGGER refuse BEFORE DELETE ON " + fileTable() + " BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(call.SetDeletedFolder(W(kImei), W("C:\\A")), 1);
    EXPECT_EQ(folders("[Path]"), "");
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetDeletedFolder", "IMEI: 351111, Path: C:\\A"),
                                          "Error in DB_INTERNAL_SetDeletedFolder(), position 1."));
}

TEST_P(CategoryFolders, SetDeletedFolder_NothingCanBeRemoved_TracesPositionOneTwice)
{
    changeSchema("DROP TABLE " + folderTable() + "; DROP TABLE " + fileTable());
    EXPECT_EQ(call.SetDeletedFolder(W(kImei), W("C:\\A")), 1);
    EXPECT_THAT(trace.take(), ElementsAre(enter("SetDeletedFolder", "IMEI: 351111, Path: C:\\A"),
                                          "Error in DB_INTERNAL_SetDeletedFolder(), position 1.",
                                          "Error in DB_INTERNAL_SetDeletedFolder(), position 1."));
}

}  // namespace
}  // namespace kesta::test
