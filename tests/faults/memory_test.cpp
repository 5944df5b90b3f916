// Memory runs out at every single allocation of a call: the call fails as documented, nothing leaks, the next one
// works.
#include <chrono>
#include <functional>
#include <future>
#include <set>
#include <string>

#include "core/list.h"
#include "core/text.h"
#include "faults/failing_memory.h"
#include "library/main_folders.h"
#include "library/phone_settings.h"
#include "media/folder_records.h"
#include "media/synced_files.h"
#include "pim/items.h"
#include "platform/named_mutex.h"
#include "support/dates.h"

namespace kesta::test {
namespace {

constexpr int32_t kNoMemory = 7;  // SQLite's code

TEST_F(FailingMemory, GetSyncedFiles_AtEveryAllocation_LeavesAConsistentList)
{
    SyncedFileList list = {};
    atEveryAllocation(
        {0, 1, kNoMemory}, [&] { return DB_MUSIC_GetSyncedFiles(imei, nullptr, &list); },
        [&] {
            EXPECT_LE(list.Count, 2);
            if (list.Items == nullptr) {
                EXPECT_EQ(list.Count, 0);
            }
            for (int32_t i = 0; i < list.Count; ++i) {
                EXPECT_NE(list.Items[i].Path, nullptr);
            }
        });
    EXPECT_EQ(list.Count, 2);
    EmptyList(list);
    EXPECT_EQ(held, 0);
}

TEST_F(FailingMemory, GetSyncedFilesFolderByFolder_AtEveryAllocation_AreThoseOfTheFolderOrFewer)
{
    // Texts that do not fit into a string itself.
    const Text other = W("another folder with a longer name");
    const Text longImei = W("351111000000001234");
    ASSERT_EQ(DB_LIB_PhoneDetected(longImei, W("x")), 2);
    sql.exec(
        "INSERT INTO tMFile VALUES (2, 'a', 'folder', 'q', ''), (2, 'b', 'folder', 'q', ''), "
        "(2, 'c', 'another folder with a longer name', 'q', '')");
    SyncedFileList list = {};
    const auto listed = [&](const Text& of) { return DB_MUSIC_GetSyncedFiles(longImei, of, &list); };
    // From the second listing in a row on, folders are looked up in what a write makes the library forget.
    atEveryAllocation(
        {0, 1, kNoMemory},
        [&] {
            const int32_t first = listed(folder);
            const int32_t second = listed(other);
            const int32_t third = listed(folder);
            return first != 0 ? first : second != 0 ? second : third;
        },
        [&] {
            EXPECT_LE(list.Count, 2);
            EXPECT_EQ(DB_LIB_SetSDType(longImei, 1, 1), 0);
        });
    EXPECT_EQ(list.Count, 2);
    EXPECT_EQ(listed(other), 0);
    EXPECT_EQ(list.Count, 1);
    EmptyList(list);
    EXPECT_EQ(held, 0);
}

TEST_F(FailingMemory, GetFolders_AtEveryAllocation_LeavesAConsistentList)
{
    FolderList list = {};
    atEveryAllocation(
        {0, 1, kNoMemory}, [&] { return DB_MUSIC_GetFolders(imei, &list); }, [&] { EXPECT_LE(list.Count, 2); });
    EXPECT_EQ(list.Count, 2);
    EmptyList(list);
    EXPECT_EQ(held, 0);
}

TEST_F(FailingMemory, GetAllMainFolders_AtEveryAllocation_LeavesAConsistentList)
{
    MainFolderList list = {};
    atEveryAllocation(
        {0, 1, kNoMemory}, [&] { return DB_LIB_GetAllMainFolders(&list); }, [&] { EXPECT_LE(list.Count, 7); });
    EXPECT_EQ(list.Count, 7);
    EmptyList(list);
    EXPECT_EQ(held, 0);
}

TEST_F(FailingMemory, MainFoldersChanged_AtEveryAllocation_FailsWithAnEmptyList)
{
    MainFolderList list = {};
    atEveryAllocation(
        {0, 1}, [&] { return DB_LIB_MainFoldersChanged(&list); },
        [&] { EXPECT_EQ(list.Count, list.Items == nullptr ? 0 : 4); });
    EmptyList(list);
    EXPECT_EQ(held, 0);
}

TEST_F(FailingMemory, GetAllPhones_AtEveryAllocation_LeavesAConsistentList)
{
    PhoneList list = {};
    atEveryAllocation(
        {0, 1, kNoMemory}, [&] { return DB_LIB_GetAllPhones(&list); }, [&] { EXPECT_LE(list.Count, 1); });
    EXPECT_EQ(list.Count, 1);
    EmptyList(list);
    EXPECT_EQ(held, 0);
}

TEST_F(FailingMemory, GetPhoneSetting_AtEveryAllocation_LosesNoText)
{
    PhoneSettingRecord phone = {};
    atEveryAllocation({0, 1}, [&] { return DB_LIB_GetPhoneSetting(imei, &phone); });
    EXPECT_EQ(test::Utf8(phone.ContactFolderId), "f");
    ResetPhoneSetting(phone);
    EXPECT_EQ(held, 0);
}

TEST_F(FailingMemory, GetFolder_AtEveryAllocation_LosesNoText)
{
    FolderRecord found = {};
    atEveryAllocation({0, 1}, [&] { return DB_MUSIC_GetFolder(imei, folder, &found); });
    FreeText(found.Path);
    EXPECT_EQ(held, 0);
}

TEST_F(FailingMemory, IsSyncedFile_AtEveryAllocation_LosesNoText)
{
    SyncedFileRecord found = {};
    const Text path = W("a");
    atEveryAllocation(
        {0, 1}, [&] { return DB_MUSIC_IsSyncedFile(imei, path, &found); },
        [&] {
            for (DbChar** text : {&found.Path, &found.BasePath, &found.PhonePath}) {
                FreeText(*text);
            }
        });
    EXPECT_EQ(held, 0);
}

TEST_F(FailingMemory, SetAddedFile_AtEveryAllocation_GivesItsCode)
{
    Text path = W("new");
    Text base = W("folder");
    const SyncedFileRecord file = {test::Date(2024, 1, 1), path.get(), base.get(), base.get()};
    int32_t last = -1;
    atEveryAllocation(
        {0, 1, kNoMemory}, [&] { return last = DB_MUSIC_SetAddedFile(imei, &file); },
        [&] {
            EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tMFile WHERE [Path] = 'new'"), last == 0 ? "1" : "0");
            sql.exec("DELETE FROM tMFile WHERE [Path] = 'new'");
        });
}

TEST_F(FailingMemory, WritingExports_AtEveryAllocation_FailWithOne)
{
    Text path = W("a");
    const SyncedFileRecord file = {test::Date(2024, 1, 1), path.get(), path.get(), path.get()};
    const MainFolderRecord mainFolder = {1000, 5, 6, nullptr, 0};
    Text imeiOfRecord(kImei);
    PhoneSettingRecord phone = {};
    phone.IMEI = imeiOfRecord.get();
    const DateValue time = test::Date(2024, 1, 1);
    FolderRecord folderRecord = {};
    folderRecord.Path = path.get();
    const std::set<int32_t> results = {0, 1};
    atEveryAllocation(results, [&] { return DB_LIB_UpdateMainFolderInfo(&mainFolder); });
    atEveryAllocation({1}, [&] { return DB_LIB_RefreshStatistics(); });
    atEveryAllocation(results, [&] { return DB_LIB_SetPhoneSetting(&phone); });
    atEveryAllocation(results, [&] { return DB_LIB_SetFolderSelected(imei, 1000, 1); });
    atEveryAllocation(results, [&] { return DB_LIB_SetLastSyncTime(imei, &time, 1, 1); });
    atEveryAllocation(results, [&] { return DB_LIB_SetSDType(imei, 1, 2); });
    atEveryAllocation({0}, [&] { return DB_LIB_ClearSyncHistory(imei); });
    atEveryAllocation(results, [&] { return DB_MUSIC_AddFolder(imei, &folderRecord); });
    atEveryAllocation(results, [&] { return DB_MUSIC_ClearAll(imei); });
    atEveryAllocation(results, [&] { return DB_MUSIC_SetFolderSelected(imei, folder, 0); });
    atEveryAllocation(results, [&] { return DB_MUSIC_SetFolderDeleted(imei, folder, 1); });
    atEveryAllocation(results, [&] { return DB_MUSIC_SetUpdatedFile(imei, &file); });
    atEveryAllocation(results, [&] { return DB_MUSIC_SetDeletedFile(imei, &file); });
    atEveryAllocation(results, [&] { return DB_MUSIC_SetDeletedFolder(imei, folder); });
}

TEST_F(FailingMemory, PimData_AtEveryAllocation_IsStoredWholeOrNotAtAll)
{
    Text pimId("item");
    std::vector<uint8_t> before(500, 'o');
    std::vector<uint8_t> after(700, 'n');
    const PimItemRecord item = {pimId.get(), 1, static_cast<int32_t>(after.size()), after.data()};
    const std::string reset =
        "INSERT OR REPLACE INTO tPimItem VALUES (1, -2, 'item', CAST(printf('%.500c', 'o') AS BLOB), 1)";
    sql.exec(reset);
    const std::string stored = "SELECT length([Data]) || substr([Data], 1, 1) FROM tPimItem";
    int32_t last = 0;
    atEveryAllocation(
        {0, 1}, [&] { return last = DB_PIM_UpdateItem(&item); },
        [&] {
            EXPECT_EQ(sql.text(stored), last == 0 ? "700n" : "500o");
            sql.exec(reset);
        });
    Text text("a profile of more than one character");
    DbChar* profile = text.get();
    atEveryAllocation(
        {0, 1}, [&] { return last = DB_PIM_SetProfile(&profile); },
        [&] {
            EXPECT_EQ(sql.text("SELECT [Profile] FROM tPimInfo"),
                      last == 0 ? "a profile of more than one character" : "");
            sql.exec("DELETE FROM tPimInfo");
        });
}

TEST_F(FailingMemory, ReadingExports_AtEveryAllocation_GiveTheirPresets)
{
    int32_t type = 0;
    int32_t oldType = 0;
    DateValue time = {};
    atEveryAllocation({0, 1}, [&] { return DB_LIB_IsFolderSelected(imei, 1000); });
    atEveryAllocation({0, 1}, [&] { return DB_LIB_GetLastSyncTime(imei, &time); });
    atEveryAllocation({0, 1}, [&] { return DB_LIB_GetSDType(imei, &type, &oldType); });
    atEveryAllocation({1}, [&] { return DB_MUSIC_IsFolderSelected(imei, folder); });
    atEveryAllocation({1}, [&] { return DB_MUSIC_IsFolderDeleted(imei, folder); });
}

TEST_F(FailingMemory, PhoneDetected_AtEveryAllocation_IsMinusOneOrAPhone)
{
    const Text fresh = W("352222");
    const Text name = W("y");
    int32_t last = 0;
    for (int nth = 0;; ++nth) {
        ASSERT_LT(nth, 5000);
        MemoryFault::arm(nth);
        last = DB_LIB_PhoneDetected(fresh, name);
        const bool wasStruck = MemoryFault::disarm();
        // 1 is what an exception after the insertion leaves.
        EXPECT_TRUE(last == -1 || last >= 1) << nth;
        if (last == -1) {
            EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tPhone"), "1") << nth;
        }
        sql.exec("DELETE FROM tPhone WHERE [ID] <> 1; DELETE FROM tSyncContents WHERE [phoneID] <> 1");
        if (!wasStruck) {
            break;
        }
    }
    EXPECT_GT(last, 1);
    EXPECT_EQ(held, 0);
}

TEST_F(FailingMemory, Open_AtEveryAllocation_FailsOrOpensAValidFile)
{
    for (int nth = 0;; ++nth) {
        ASSERT_LT(nth, 20000);
        TheModule().DbConnection.close();
        TheModule().noteOpen();
        MemoryFault::arm(nth);
        const int32_t result = DB_Open();
        const bool wasStruck = MemoryFault::disarm();
        EXPECT_TRUE(result == 0 || result == 1 || result == kNoMemory || result == 8398) << result;
        EXPECT_EQ(TheModule().DbConnection.isOpen(), result == 0) << nth;
        ASSERT_EQ(DB_Open(), 0);
        ASSERT_EQ(DB_LIB_PhoneDetected(imei, folder), 1) << "the file was thrown away at allocation " << nth;
        if (!wasStruck) {
            break;
        }
    }
}

TEST_F(FailingMemory, GetListFilesname_AtEveryAllocation_LeavesAnArrayThatCounts)
{
    const Text list = W("Rock");
    sql.exec(
        "WITH RECURSIVE n(i) AS (SELECT 10 UNION ALL SELECT i + 1 FROM n WHERE i < 20) "
        "INSERT INTO tPFilename SELECT '351111', 'Rock', 'name ' || i FROM n");
    const auto give = [](FileNameArray& names) {
        for (int32_t i = 0; i < names.Count; ++i) {
            EXPECT_NE(names.Items[i], nullptr);
            std::free(names.Items[i]);
        }
        std::free(names.Items);
        names = {};
    };
    FileNameArray names = {};
    int32_t last = 0;
    atEveryAllocation(
        {0, 1}, [&] { return DB_PLAYERMUSIC_GetListFilesname(imei, list, &names); },
        [&] {
            EXPECT_LE(names.Count, 11);
            last = names.Count;
            give(names);
        });
    EXPECT_EQ(last, 11);
}

TEST_F(FailingMemory, GetItems_AtEveryAllocation_FailsOrLeavesAConsistentList)
{
    sql.exec("INSERT INTO tPimItem ([pfID], [PimID], [Data], [Type]) VALUES (-2, 'a', x'01', 1), (-2, 'b', x'02', 1)");
    PimItemList list = {};
    atEveryAllocation(
        {0, 1}, [&] { return DB_PIM_GetItems(&list, nullptr, 1, 0); }, [&] { EXPECT_LE(list.Count, 2); });
    EXPECT_EQ(list.Count, 2);
    EmptyList(list);
    EXPECT_EQ(held, 0);
}

TEST_F(FailingMemory, GetGalleryFolders_AtEveryAllocation_LosesNoPath)
{
    sql.exec(
        "INSERT INTO tIFolder ([PhoneID], [Path], [Flag], [AddTime]) VALUES (1, 'a', 0, ''), (1, 'b', 0, '');"
        "INSERT INTO tVFolder ([PhoneID], [Path], [Flag], [AddTime]) VALUES (1, 'b', 0, ''), (1, 'c', 0, '')");
    FolderList list = {};
    atEveryAllocation(
        {0, 1, kNoMemory}, [&] { return DB_GALLERY_GetFolders(imei, &list); },
        [&] {
            EmptyList(list);
            EXPECT_EQ(held, 0);
        });
    EXPECT_EQ(DB_GALLERY_GetFolders(imei, &list), 0);
    EXPECT_GE(list.Count, 2);
    EmptyList(list);
    EXPECT_EQ(held, 0);
}

TEST_F(FailingMemory, NamedMutex_WithoutMemoryForIt_SerialisesAllTheSame)
{
    platform::NamedMutex mutex;
    MemoryFault::arm(0);
    mutex.open("KESTA_TEST_MUTEX_WITHOUT_MEMORY", [] { return platform::Path(); });
    EXPECT_TRUE(MemoryFault::disarm());
    mutex.lock();
    std::future<void> other = std::async(std::launch::async, [&] {
        mutex.lock();
        mutex.unlock();
    });
    EXPECT_EQ(other.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout);
    mutex.unlock();
    EXPECT_EQ(other.wait_for(std::chrono::seconds(30)), std::future_status::ready);
    mutex.close();
}

/// Every statement is made in the buffer: without it a call ends as an exception does, and the next one asks again.
TEST_F(FailingMemory, Start_AtEveryAllocation_WorksAsSoonAsThereIsMemory)
{
    for (int nth = 0; nth < 10; ++nth) {
        SCOPED_TRACE(nth);
        TheModule().end();
        held = 0;
        MemoryFault::arm(nth);
        TheModule().start();
        EXPECT_TRUE(MemoryFault::disarm());
        MemoryFault::arm(0);
        EXPECT_EQ(DB_LIB_SetSDType(imei, 1, 1), 1);  // without memory, or without a database
        MemoryFault::disarm();
        EXPECT_EQ(DB_Open(), 0);
        EXPECT_EQ(DB_LIB_SetSDType(imei, 1, 1), 0);
        TheModule().end();
        EXPECT_EQ(held, 0);
        TheModule().start();
    }
}

TEST_F(FailingMemory, TraceLine_TooLongForTheStack_IsLostAndNothingElse)
{
    const Text path = W(std::string(5000, 'x'));
    static int lines = 0;
    platform::services.writeTraceLine = [](const DbChar*, size_t) noexcept { ++lines; };
    lines = 0;
    MemoryFault::arm(0);
    DbTrace("%s\n", Plain{path});
    EXPECT_TRUE(MemoryFault::disarm());
    EXPECT_EQ(lines, 0);
    DbTrace("%s\n", Plain{path});
    EXPECT_EQ(lines, 1);
}

TEST_F(FailingMemory, TraceLine_LongAndWithoutMemoryInItsMiddle_IsLostWhole)
{
    const Text path = W(std::string(5000, 'x'));
    static int lines = 0;
    platform::services.writeTraceLine = [](const DbChar*, size_t) noexcept { ++lines; };
    for (const int nth : {0, 1}) {
        lines = 0;
        MemoryFault::arm(nth);
        DbTrace("%s and %s, and a word after them\n", Plain{path}, Plain{path});
        EXPECT_TRUE(MemoryFault::disarm()) << nth;
        EXPECT_EQ(lines, 0) << nth;
    }
}

}  // namespace
}  // namespace kesta::test
