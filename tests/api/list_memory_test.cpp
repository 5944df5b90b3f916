// Memory handed out: what is announced with NEW goes with DELETE, and every list is released in full.
#include <set>

#include "api/given.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

std::string Hex(const void* address)
{
    char text[32];
    std::snprintf(text, sizeof text, "%llx", static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(address)));
    return text;
}

std::string New(const void* address)
{
    return "Memory " + Hex(address) + " NEW.";
}

std::string Delete(const void* address)
{
    return "Memory " + Hex(address) + " DELETE.";
}

class ListMemory : public OpenDatabase {
protected:
    ListMemory()
    {
        givenPhone();
        sql.exec(
            "INSERT INTO tMFile VALUES (1, 'p1', 'b1', 'q1', ''), (1, 'p2', '', 'q2', ''), (1, 'p3', 'b3', '', '');"
            "INSERT INTO tMFolder ([PhoneID], [Path], [AddTime]) VALUES (1, 'f1', '1'), (1, 'f2', '2')");
    }

    std::vector<std::string> lines() { return trace.take(Addresses::kKept); }
};

TEST_F(ListMemory, GetSyncedFiles_Filled_TracesTheArrayThenTheTextsInTheOrderOfTheColumns)
{
    SyncedFileList list = {};
    EXPECT_EQ(lib.DB_MUSIC_GetSyncedFiles(W(kImei), nullptr, &list), 0);
    ASSERT_EQ(list.Count, 3);
    const SyncedFileRecord* file = list.Items;
    EXPECT_THAT(lines(),
                ElementsAre("Enter DB_MUSIC_GetSyncedFiles(IMEI: 351111, Folder: (null)).", New(list.Items),
                            New(file[0].Path), New(file[0].BasePath), New(file[0].PhonePath), New(file[1].Path),
                            New(file[1].PhonePath), New(file[2].Path), New(file[2].BasePath)));
}

TEST_F(ListMemory, GetSyncedFiles_Released_TracesTheArrayFirstThenEveryText)
{
    SyncedFileList list = {};
    ASSERT_EQ(lib.DB_MUSIC_GetSyncedFiles(W(kImei), nullptr, &list), 0);
    std::multiset<std::string> texts;
    for (int32_t i = 0; i < list.Count; ++i) {
        for (const DbChar* text : {list.Items[i].Path, list.Items[i].BasePath, list.Items[i].PhonePath}) {
            if (text != nullptr) {
                texts.insert(Delete(text));
            }
        }
    }
    const std::string array = Delete(list.Items);
    lines();
    ASSERT_EQ(lib.DB_MUSIC_GetSyncedFiles(W("999"), nullptr, &list), 0);
    const std::vector<std::string> released = lines();
    ASSERT_EQ(released.size(), texts.size() + 2);
    EXPECT_EQ(released.front(), array);
    EXPECT_EQ(std::multiset<std::string>(released.begin() + 1, released.end() - 1), texts);
    EXPECT_EQ(released.back(), "Enter DB_MUSIC_GetSyncedFiles(IMEI: 999, Folder: (null)).");
}

/// The true number stands with the array, so that a caller's own count does not matter.
TEST_F(ListMemory, GetSyncedFiles_CountChangedByTheCaller_StillReleasesEverything)
{
    for (const int32_t count : {0, 1, 1000000, -1}) {
        SyncedFileList list = {};
        ASSERT_EQ(lib.DB_MUSIC_GetSyncedFiles(W(kImei), nullptr, &list), 0);
        list.Count = count;
        trace.take();
        ASSERT_EQ(lib.DB_MUSIC_GetSyncedFiles(W("999"), nullptr, &list), 0);
        EXPECT_EQ(trace.take().size(), 1u + 7u + 1u);
        EXPECT_EQ(list.Count, 0);
        EXPECT_EQ(list.Items, nullptr);
    }
}

TEST_F(ListMemory, GetFolders_ListOfAnotherCategory_IsReleasedToo)
{
    FolderList list = {};
    ASSERT_EQ(lib.DB_MUSIC_GetFolders(W(kImei), &list), 0);
    trace.take();
    EXPECT_EQ(lib.DB_VIDEO_GetFolders(W(kImei), &list), 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre("Memory DELETE.", "Memory DELETE.", "Memory DELETE.",
                                          "Enter DB_VIDEO_GetFolders(IMEI: 351111)."));
}

TEST_F(ListMemory, MainFolders_TwoExportsOneRecord_ReleaseEachOthersLists)
{
    MainFolderList list = {};
    ASSERT_EQ(lib.DB_LIB_GetAllMainFolders(&list), 0);
    const std::string seven = Delete(list.Items);
    lines();
    ASSERT_EQ(lib.DB_LIB_MainFoldersChanged(&list), 0);
    EXPECT_THAT(lines(), ElementsAre(seven, New(list.Items)));
    const std::string four = Delete(list.Items);
    ASSERT_EQ(lib.DB_LIB_GetAllMainFolders(&list), 0);
    EXPECT_THAT(lines(), ElementsAre("Enter DB_LIB_GetAllMainFolders().", four, New(list.Items),
                                     "Exit DB_LIB_GetAllMainFolders() with 0."));
}

TEST_F(ListMemory, EveryListExport_UsedAndReleased_LeavesNothingBehind)
{
    sql.exec("UPDATE tLibMainFolder SET [Setting] = 's'; UPDATE tPhone SET [PhotoPath] = 'p', [CalPeriodStr] = 'c'");
    trace.take();
    SyncedFileList files = {};
    FolderList folders = {};
    MainFolderList mainFolders = {};
    PhoneList phones = {};
    PhoneSettingRecord phone = {};
    FolderRecord folder = {};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(lib.DB_MUSIC_GetSyncedFiles(W(kImei), nullptr, &files), 0);
        EXPECT_EQ(lib.DB_MUSIC_GetFolders(W(kImei), &folders), 0);
        EXPECT_EQ(lib.DB_MUSIC_GetFolder(W(kImei), W("f1"), &folder), 0);
        EXPECT_EQ(lib.DB_LIB_GetAllMainFolders(&mainFolders), 0);
        EXPECT_EQ(lib.DB_LIB_GetAllPhones(&phones), 0);
        EXPECT_EQ(lib.DB_LIB_GetPhoneSetting(W(kImei), &phone), 0);
    }
    sql.exec("DELETE FROM tPhone; DELETE FROM tLibMainFolder");
    EXPECT_EQ(lib.DB_MUSIC_GetSyncedFiles(W(kImei), nullptr, &files), 0);
    EXPECT_EQ(lib.DB_MUSIC_GetFolders(W(kImei), &folders), 1);
    EXPECT_EQ(lib.DB_MUSIC_GetFolder(W(kImei), W("f1"), &folder), 1);
    EXPECT_EQ(lib.DB_LIB_GetAllMainFolders(&mainFolders), 0);
    EXPECT_EQ(lib.DB_LIB_GetAllPhones(&phones), 0);
    EXPECT_EQ(lib.DB_LIB_GetPhoneSetting(W(kImei), &phone), 1);

    std::set<std::string> held;
    size_t announced = 0;
    for (const std::string& line : lines()) {
        if (!line.starts_with("Memory ")) {
            continue;
        }
        const size_t end = line.find(' ', 7);
        const std::string address = line.substr(7, end - 7);
        if (line.ends_with(" NEW.")) {
            EXPECT_TRUE(held.insert(address).second) << "announced twice: " << line;
            ++announced;
        } else {
            EXPECT_EQ(held.erase(address), 1u) << "not announced: " << line;
        }
    }
    EXPECT_GT(announced, 60u);
    EXPECT_TRUE(held.empty());
}

TEST_F(ListMemory, GetFolders_NewElements_CarryTheirDefaultsWhereNothingIsRead)
{
    // One row only can be read; the other elements are as they were made.
    changeSchema(
        "DROP VIEW vMFolder; ALTER TABLE tMFolder RENAME TO kept; CREATE VIEW tMFolder AS SELECT 5 AS ROWID, [PhoneID],"
        " [Path], [Count], [Size], [TotalSize], [Selected], [Deleted], zeroblob([rowid] * 2000000000) AS [Flag], "
        "[AddTime] || CASE WHEN [Path] = 'f2' THEN zeroblob(2000000000) ELSE '' END AS [AddTime], [Sized] FROM kept");
    FolderList list = {};
    EXPECT_EQ(lib.DB_MUSIC_GetFolders(W(kImei), &list), 18);
    EXPECT_EQ(list.Count, 0);
    ASSERT_NE(list.Items, nullptr);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(list.Items[i].RowId, -1);
        EXPECT_EQ(list.Items[i].Path, nullptr);
        EXPECT_EQ(list.Items[i].Count, 0);
        EXPECT_EQ(list.Items[i].Size, 0);
        EXPECT_TRUE(IsNow(list.Items[i].AddTime));
    }
}

TEST_F(ListMemory, GetSyncedFiles_ManyRows_AreAllThere)
{
    sql.exec(
        "DELETE FROM tMFile; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 5000) "
        "INSERT INTO tMFile SELECT 1, printf('%05d', i), 'b', 'q', '2024-01-01 00:00:00' FROM n");
    SyncedFileList list = {};
    EXPECT_EQ(lib.DB_MUSIC_GetSyncedFiles(W(kImei), W("b"), &list), 0);
    ASSERT_EQ(list.Count, 5000);
    std::set<std::string> paths;
    for (int32_t i = 0; i < list.Count; ++i) {
        paths.insert(Utf8(list.Items[i].Path));
    }
    EXPECT_EQ(paths.size(), 5000u);
    EXPECT_EQ(*paths.begin(), "00001");
    EXPECT_EQ(*paths.rbegin(), "05000");
    EXPECT_EQ(lib.DB_MUSIC_GetSyncedFiles(W(kImei), W("none"), &list), 0);
}

}  // namespace
}  // namespace kesta::test
