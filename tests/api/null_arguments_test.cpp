// Null pointers: a missing record, list or out pointer fails by the way of an exception; a missing text is a text.
#include "api/category_exports.h"

namespace kesta::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

class NullArguments : public OpenDatabase {
protected:
    NullArguments() { givenPhone(); }

    /// The call failed with the line of an exception under the export's own name, and the database works on.
    void expectException(const std::string& name, int32_t result)
    {
        SCOPED_TRACE(name);
        EXPECT_EQ(result, 1);
        const std::vector<std::string> lines = trace.take();
        EXPECT_THAT(lines, Contains("An exception occured in " + name + "().").Times(1));
        EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W("")), 1);
        trace.take();
    }
};

TEST_F(NullArguments, LibraryExports_NullRecordListOrOutPointer_TraceAnException)
{
    int32_t number = 0;
    expectException("DB_LIB_UpdateMainFolderInfo", lib.DB_LIB_UpdateMainFolderInfo(nullptr));
    expectException("DB_LIB_GetAllMainFolders", lib.DB_LIB_GetAllMainFolders(nullptr));
    expectException("DB_LIB_MainFoldersChanged", lib.DB_LIB_MainFoldersChanged(nullptr));
    expectException("DB_LIB_SetPhoneSetting", lib.DB_LIB_SetPhoneSetting(nullptr));
    expectException("DB_LIB_GetPhoneSetting", lib.DB_LIB_GetPhoneSetting(W(kImei), nullptr));
    expectException("DB_LIB_GetAllPhones", lib.DB_LIB_GetAllPhones(nullptr));
    expectException("DB_LIB_SetLastSyncTime", lib.DB_LIB_SetLastSyncTime(W(kImei), nullptr, 1, 1));
    expectException("DB_LIB_GetLastSyncTime", lib.DB_LIB_GetLastSyncTime(W(kImei), nullptr));
    expectException("DB_LIB_GetSDType", lib.DB_LIB_GetSDType(W(kImei), nullptr, &number));
    expectException("DB_LIB_GetSDType", lib.DB_LIB_GetSDType(W(kImei), &number, nullptr));
}

// They are looked at before the connection is.
TEST_F(ClosedDatabase, EveryExport_NullRecordListOrOutPointer_TracesAnException)
{
    const Text text = W("p");
    int32_t number = 0;
    const auto expect = [this](const std::string& name, int32_t result) {
        EXPECT_EQ(result, 1) << name;
        EXPECT_THAT(trace.take(), Contains("An exception occured in " + name + "().")) << name;
    };
#define EXPECT_NULL_REFUSED(name, ...) expect(#name, lib.name(__VA_ARGS__))
    EXPECT_NULL_REFUSED(DB_LIB_UpdateMainFolderInfo, nullptr);
    EXPECT_NULL_REFUSED(DB_LIB_GetAllMainFolders, nullptr);
    EXPECT_NULL_REFUSED(DB_LIB_MainFoldersChanged, nullptr);
    EXPECT_NULL_REFUSED(DB_LIB_SetPhoneSetting, nullptr);
    EXPECT_NULL_REFUSED(DB_LIB_GetPhoneSetting, text, nullptr);
    EXPECT_NULL_REFUSED(DB_LIB_GetAllPhones, nullptr);
    EXPECT_NULL_REFUSED(DB_LIB_SetLastSyncTime, text, nullptr, 1, 1);
    EXPECT_NULL_REFUSED(DB_LIB_GetLastSyncTime, text, nullptr);
    EXPECT_NULL_REFUSED(DB_LIB_GetSDType, text, nullptr, &number);
    EXPECT_NULL_REFUSED(DB_LIB_GetSDType, text, &number, nullptr);
    EXPECT_NULL_REFUSED(DB_MUSIC_AddFolder, text, nullptr);
    EXPECT_NULL_REFUSED(DB_MUSIC_GetFolders, text, nullptr);
    EXPECT_NULL_REFUSED(DB_MUSIC_GetFolder, text, text, nullptr);
    EXPECT_NULL_REFUSED(DB_MUSIC_IsSyncedFile, text, text, nullptr);
    EXPECT_NULL_REFUSED(DB_MUSIC_GetSyncedFiles, text, text, nullptr);
    EXPECT_NULL_REFUSED(DB_MUSIC_SetAddedFile, text, nullptr);
    EXPECT_NULL_REFUSED(DB_GALLERY_GetFolders, text, nullptr);
    EXPECT_NULL_REFUSED(DB_PLAYERMUSIC_AddPlaylist, text, nullptr);
    EXPECT_NULL_REFUSED(DB_PLAYERMUSIC_GetPlaylists, text, nullptr);
    EXPECT_NULL_REFUSED(DB_PLAYERMUSIC_SetAddedPlaylist, text, nullptr);
    EXPECT_NULL_REFUSED(DB_PLAYERMUSIC_SetDeletedPlaylist, text, nullptr);
    EXPECT_NULL_REFUSED(DB_PLAYERMUSIC_SetUpdatedPlaylist, text, nullptr);
    EXPECT_NULL_REFUSED(DB_PLAYERMUSIC_GetSyncedFiles, text, text, nullptr);
    EXPECT_NULL_REFUSED(DB_PLAYERMUSIC_GetListFilesname, text, text, nullptr);
    EXPECT_NULL_REFUSED(DB_PLAYERMUSIC_SetListFilesname, text, text, nullptr);
    EXPECT_NULL_REFUSED(DB_BOOKMARK_GetSyncedMarks, text, nullptr);
    EXPECT_NULL_REFUSED(DB_BOOKMARK_GetSyncedMark, text, text, nullptr);
    EXPECT_NULL_REFUSED(DB_BOOKMARK_SetAddedMark, text, nullptr);
    EXPECT_NULL_REFUSED(DB_BOOKMARK_SetUpdatedMark, text, nullptr);
    EXPECT_NULL_REFUSED(DB_BACKUP_AddBackup, text, nullptr);
    EXPECT_NULL_REFUSED(DB_BACKUP_GetAllBackups, nullptr);
    EXPECT_NULL_REFUSED(DB_BACKUP_GetPhoneBackups, text, nullptr);
    EXPECT_NULL_REFUSED(DB_PIMLOG_GetPimProfile, text, nullptr, 1);
    EXPECT_NULL_REFUSED(DB_PIMLOG_ReadLog, text, nullptr);
    EXPECT_NULL_REFUSED(DB_PIMLOG_SaveLog, text, nullptr);
    EXPECT_NULL_REFUSED(DB_PIM_GetFolders, nullptr, text, 1, 1);
    EXPECT_NULL_REFUSED(DB_PIM_AddFolder, nullptr, text);
    EXPECT_NULL_REFUSED(DB_PIM_GetFolder, nullptr, text);
    EXPECT_NULL_REFUSED(DB_PIM_UpdateFolder, nullptr);
    EXPECT_NULL_REFUSED(DB_PIM_GetItems, nullptr, text, 1, 1);
    EXPECT_NULL_REFUSED(DB_PIM_AddItem, nullptr, text);
    EXPECT_NULL_REFUSED(DB_PIM_UpdateItem, nullptr);
    EXPECT_NULL_REFUSED(DB_PIM_GetProfile, nullptr);
    EXPECT_NULL_REFUSED(DB_PIM_SetProfile, nullptr);
#undef EXPECT_NULL_REFUSED
}

TEST_F(NullArguments, LibraryExports_Exception_IsFollowedByTheExitLine)
{
    (void)lib.DB_LIB_GetAllPhones(nullptr);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_LIB_GetAllPhones().", "An exception occured in DB_LIB_GetAllPhones().",
                            "Exit DB_LIB_GetAllPhones() with 1."));
}

TEST_F(NullArguments, SetLastSyncTime_NullTime_WritesNothing)
{
    (void)lib.DB_LIB_SetLastSyncTime(W(kImei), nullptr, 5, 0);
    EXPECT_EQ(sql.text("SELECT [LastTime], [ErrCode], [NeedMount] FROM tPhone"), "<null>|0|1");
}

TEST_F(NullArguments, CategoryExports_NullRecordListOrOutPointer_TraceAnException)
{
    for (const Category& category : Categories()) {
        const CategoryCalls call = category.of(lib);
        const std::string prefix = std::string("DB_") + category.family + "_";
        const Text path = W("p");
        expectException(prefix + "AddFolder", call.AddFolder(W(kImei), nullptr));
        expectException(prefix + "GetFolders", call.GetFolders(W(kImei), nullptr));
        expectException(prefix + "GetFolder", call.GetFolder(W(kImei), path, nullptr));
        expectException(prefix + "IsSyncedFile", call.IsSyncedFile(W(kImei), path, nullptr));
        expectException(prefix + "GetSyncedFiles", call.GetSyncedFiles(W(kImei), path, nullptr));
        expectException(prefix + "SetAddedFile", call.SetAddedFile(W(kImei), nullptr));
        expectException(prefix + "SetDeletedFile", call.SetDeletedFile(W(kImei), nullptr));
        expectException(prefix + "SetUpdatedFile", call.SetUpdatedFile(W(kImei), nullptr));
    }
}

TEST_F(NullArguments, ThinExports_NullRecord_EntryOnlyWhereItNeedsNoRecord)
{
    (void)lib.DB_MUSIC_IsSyncedFile(W(kImei), W("p"), nullptr);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_MUSIC_IsSyncedFile(IMEI: 351111, Path: p).",
                                          "An exception occured in DB_MUSIC_IsSyncedFile()."));
    (void)lib.DB_MUSIC_SetAddedFile(W(kImei), nullptr);
    EXPECT_THAT(trace.take(), ElementsAre("An exception occured in DB_MUSIC_SetAddedFile()."));
}

TEST_F(NullArguments, Imei_Null_IsTheTextNull)
{
    ASSERT_EQ(lib.DB_LIB_PhoneDetected(W("(null)"), W("")), 2);
    trace.take();
    EXPECT_EQ(lib.DB_LIB_SetSDType(nullptr, 3, 4), 0);
    EXPECT_EQ(sql.text("SELECT [SDType] FROM tPhone ORDER BY [ID]"), "0\n3");
    EXPECT_EQ(lib.DB_LIB_SetFolderSelected(nullptr, 1000, 1), 0);
    EXPECT_EQ(lib.DB_LIB_IsFolderSelected(nullptr, 1000), 1);
    EXPECT_EQ(sql.text("SELECT [phoneID] FROM tSyncContents WHERE [Selected] = 1"), "2");
    const DateValue time = Date(2024, 1, 1);
    EXPECT_EQ(lib.DB_LIB_SetLastSyncTime(nullptr, &time, 9, 1), 0);
    EXPECT_EQ(sql.text("SELECT [ErrCode] FROM tPhone ORDER BY [ID]"), "0\n9");
    const Folder folder("p");
    EXPECT_EQ(lib.DB_MUSIC_AddFolder(nullptr, &folder), 0);
    EXPECT_EQ(sql.text("SELECT [PhoneID] FROM tMFolder"), "2");
    trace.take();
    EXPECT_EQ(lib.DB_MUSIC_SetFolderSelected(nullptr, W("p"), 0), 0);
    EXPECT_EQ(lib.DB_MUSIC_IsFolderSelected(nullptr, W("p")), 0);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_MUSIC_SetFolderSelected(IMEI: (null), Path: p, Selected: 0).",
                                          "Enter DB_MUSIC_IsFolderSelected(IMEI: (null), Path: p)."));
}

TEST_F(NullArguments, Path_Null_IsTheEmptyTextInStatementsAndNullInLines)
{
    sql.exec("INSERT INTO tMFolder ([PhoneID], [Path], [AddTime]) VALUES (1, '', '')");
    EXPECT_EQ(lib.DB_MUSIC_SetFolderSelected(W(kImei), nullptr, 0), 0);
    EXPECT_EQ(sql.text("SELECT [Selected] FROM tMFolder"), "0");
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_MUSIC_SetFolderSelected(IMEI: 351111, Path: (null), Selected: 0)."));
    EXPECT_EQ(lib.DB_MUSIC_IsFolderSelected(W(kImei), nullptr), 0);
    FolderRecord folder = {};
    EXPECT_EQ(lib.DB_MUSIC_GetFolder(W(kImei), nullptr, &folder), 0);
    EXPECT_EQ(folder.Path, nullptr);
    EXPECT_EQ(folder.RowId, 1);
    EXPECT_EQ(lib.DB_MUSIC_SetFolderDeleted(W(kImei), nullptr, 1), 0);
    EXPECT_EQ(sql.text("SELECT [Deleted] FROM tMFolder"), "1");
    EXPECT_EQ(lib.DB_MUSIC_SetDeletedFolder(W(kImei), nullptr), 0);
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tMFolder"), "0");
    SyncedFileRecord file = {};
    EXPECT_EQ(lib.DB_MUSIC_IsSyncedFile(W(kImei), nullptr, &file), 0);
}

}  // namespace
}  // namespace kesta::test
