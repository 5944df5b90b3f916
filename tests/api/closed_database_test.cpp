// Every export while the database is not open: its preset result, its lines, and what becomes of its outputs.
#include "api/category_exports.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

/// "Enter", with arguments if any, and "Exit".
std::vector<std::string> Lines(const std::string& name, const std::string& arguments, const std::string& exit)
{
    return {"Enter " + name + "(" + arguments + ").", "Exit " + name + "() with " + exit + "."};
}

TEST_F(ClosedDatabase, Open_StillInTheWay_Gives8398)
{
    EXPECT_EQ(lib.DB_Open(), 8398);
    EXPECT_EQ(trace.take(), Lines("DB_Open", "", "8398"));
}

TEST_F(ClosedDatabase, Open_WayCleared_OpensAndEveryExportWorks)
{
    std::filesystem::remove(data.databasePath());
    EXPECT_EQ(lib.DB_Open(), 0);
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W(kName)), 1);
}

TEST_F(ClosedDatabase, MainFolders_AllExports_GiveOne)
{
    const MainFolderRecord folder = {1000, 1, 1, nullptr, 0};
    MainFolderList list = {};
    EXPECT_EQ(lib.DB_LIB_UpdateMainFolderInfo(&folder), 1);
    EXPECT_EQ(trace.take(), Lines("DB_LIB_UpdateMainFolderInfo", "", "1"));
    EXPECT_EQ(lib.DB_LIB_RefreshStatistics(), 1);
    EXPECT_EQ(trace.take(), Lines("DB_LIB_RefreshStatistics", "", "1"));
    EXPECT_EQ(lib.DB_LIB_GetAllMainFolders(&list), 1);
    EXPECT_EQ(trace.take(), Lines("DB_LIB_GetAllMainFolders", "", "1"));
    list.Count = 77;
    EXPECT_EQ(lib.DB_LIB_MainFoldersChanged(&list), 1);
    EXPECT_EQ(list.Count, 77);
    EXPECT_THAT(trace.take(), ElementsAre());
}

TEST_F(ClosedDatabase, Phones_AllExports_GiveTheirPresets)
{
    PhoneSettingRecord phone = {};
    PhoneList list = {};
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("1"), W("n")), -1);
    EXPECT_EQ(trace.take(), Lines("DB_LIB_PhoneDetected", "IMEI: 1, Name: n", "PhoneID = -1"));
    EXPECT_EQ(lib.DB_LIB_SetPhoneSetting(&phone), 1);
    EXPECT_EQ(trace.take(), Lines("DB_LIB_SetPhoneSetting", "", "1"));
    phone.AutoSync = 7;
    phone.CalStart = NullDate();
    EXPECT_EQ(lib.DB_LIB_GetPhoneSetting(W("1"), &phone), 1);
    EXPECT_EQ(phone.AutoSync, 0);
    EXPECT_EQ(DateText(phone.CalStart), "1899-12-30 00:00:00");
    EXPECT_EQ(trace.take(), Lines("DB_LIB_GetPhoneSetting", "", "1"));
    list.Count = 77;
    EXPECT_EQ(lib.DB_LIB_GetAllPhones(&list), 1);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(trace.take(), Lines("DB_LIB_GetAllPhones", "", "1"));
}

TEST_F(ClosedDatabase, SyncState_AllExports_GiveTheirPresets)
{
    DateValue time = Date(2024, 1, 1);
    const DateValue none = NullDate();
    int32_t type = 77;
    int32_t oldType = 88;
    EXPECT_EQ(lib.DB_LIB_IsFolderSelected(W("1"), 1000), 1);
    EXPECT_EQ(trace.take(), Lines("DB_LIB_IsFolderSelected", "IMEI: 1, FolderID: 1000", "bSelected = 1"));
    EXPECT_EQ(lib.DB_LIB_SetFolderSelected(W("1"), 1000, 0), 1);
    EXPECT_EQ(trace.take(), Lines("DB_LIB_SetFolderSelected", "IMEI: 1, FolderID: 1000, bSelected: 0", "1"));
    EXPECT_EQ(lib.DB_LIB_SetLastSyncTime(W("1"), &none, 2, 1), 1);
    EXPECT_EQ(trace.take(), Lines("DB_LIB_SetLastSyncTime", "IMEI: 1, LastTime: , iErrCode: 2", "1"));
    EXPECT_EQ(lib.DB_LIB_GetLastSyncTime(W("1"), &time), 1);
    EXPECT_EQ(DateText(time), "2024-01-01 00:00:00");
    EXPECT_EQ(trace.take(), Lines("DB_LIB_GetLastSyncTime", "IMEI: 1", "1"));
    EXPECT_EQ(lib.DB_LIB_SetSDType(W("1"), 2, 3), 1);
    EXPECT_EQ(trace.take(), Lines("DB_LIB_SetSDType", "IMEI: 1, Type: 2, OldType: 3", "1"));
    EXPECT_EQ(lib.DB_LIB_GetSDType(W("1"), &type, &oldType), 1);
    EXPECT_EQ(type, 77);
    EXPECT_EQ(oldType, 88);
    EXPECT_EQ(trace.take(), Lines("DB_LIB_GetSDType", "IMEI: 1", "1"));
    EXPECT_EQ(lib.DB_LIB_ClearSyncHistory(W("1")), 0);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_ClearSyncHistory(IMEI: 1)."));
}

TEST_F(ClosedDatabase, Categories_AllExports_GiveTheirPresetsWithTheEntryLineOnly)
{
    for (const Category& category : Categories()) {
        const CategoryCalls call = category.of(lib);
        const std::string enter = std::string("Enter DB_") + category.family + "_";
        const auto expect = [&](int32_t expected, int32_t result, const std::string& line) {
            EXPECT_EQ(result, expected) << line;
            EXPECT_THAT(trace.take(), ElementsAre(enter + line));
        };
        const Folder folder("p");
        const SyncedFile file("p", "b", "q");
        FolderRecord foundFolder = {};
        SyncedFileRecord foundFile = {};
        FolderList folders = {};
        SyncedFileList files = {};
        foundFolder.Count = folders.Count = files.Count = 77;
        const Text imei = W("1");
        const Text path = W("p");
        expect(1, call.AddFolder(imei, &folder), "AddFolder(IMEI: 1, Path: p).");
        expect(1, call.ClearAll(imei), "ClearAll(IMEI: 1).");
        expect(1, call.GetFolders(imei, &folders), "GetFolders(IMEI: 1).");
        expect(1, call.GetFolder(imei, path, &foundFolder), "GetFolder(IMEI: 1, Path: p).");
        expect(1, call.IsFolderSelected(imei, path), "IsFolderSelected(IMEI: 1, Path: p).");
        expect(1, call.SetFolderSelected(imei, path, 0), "SetFolderSelected(IMEI: 1, Path: p, Selected: 0).");
        expect(1, call.IsFolderDeleted(imei, path), "IsFolderDeleted(IMEI: 1, Path: p).");
        expect(1, call.SetFolderDeleted(imei, path, 1),
               std::string("SetFolderDeleted(IMEI: 1, Path: p, ") + category.deletedArgument + ": 1).");
        expect(0, call.IsSyncedFile(imei, path, &foundFile), "IsSyncedFile(IMEI: 1, Path: p).");
        expect(1, call.GetSyncedFiles(imei, path, &files), "GetSyncedFiles(IMEI: 1, Folder: p).");
        expect(1, call.SetAddedFile(imei, &file), "SetAddedFile(IMEI: 1, Path: p).");
        expect(1, call.SetDeletedFile(imei, &file), "SetDeletedFile(IMEI: 1, Path: p).");
        expect(1, call.SetUpdatedFile(imei, &file), "SetUpdatedFile(IMEI: 1, Path: p).");
        expect(1, call.SetDeletedFolder(imei, path), "SetDeletedFolder(IMEI: 1, Path: p).");
        EXPECT_EQ(foundFolder.Count, 0);
        EXPECT_EQ(folders.Count, 0);
        EXPECT_EQ(files.Count, 0);
        EXPECT_EQ(foundFile.Path, nullptr);
    }
}

TEST_F(ClosedDatabase, MainFoldersChanged_FolderAddedWhileClosed_RaisesNoBookmark)
{
    const Folder folder("p");
    EXPECT_EQ(lib.DB_MUSIC_AddFolder(W("1"), &folder), 1);
    std::filesystem::remove(data.databasePath());
    ASSERT_EQ(lib.DB_Open(), 0);
    MainFolderList list = {};
    EXPECT_EQ(lib.DB_LIB_MainFoldersChanged(&list), 0);
    EXPECT_EQ(list.Items[0].Changed, 0);
}

}  // namespace
}  // namespace kesta::test
