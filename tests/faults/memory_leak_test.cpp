// What goes out of use is given back to the allocator: counted there, for the trace only tells of it.
#include <array>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>

#include "core/list.h"
#include "core/text.h"
#include "faults/failing_memory.h"
#include "media/folder_records.h"
#include "pim/items.h"
#include "platform/calendar.h"

namespace kesta::test {
namespace {

void ExpectNoGrowth(const std::function<void()>& call)
{
    call();  // SQLite keeps what it has compiled and read,
    call();  // and what a statement needs when it runs again
    const int64_t before = MemoryFault::balance();
    for (int i = 0; i < 50; ++i) {
        call();
    }
    EXPECT_EQ(MemoryFault::balance(), before);
}

TEST_F(FailingMemory, ListsAndTexts_GivenBack_AreFreed)
{
    sql.exec("INSERT INTO tPimItem ([pfID], [PimID], [Data], [Type]) VALUES (-2, 'a', x'01', 1)");
    const auto fillAndEmpty = [&] {
        FolderList folders = {};
        EXPECT_EQ(DB_MUSIC_GetFolders(imei, &folders), 0);
        EXPECT_EQ(folders.Count, 2);
        EmptyList(folders);
        PimItemList items = {};
        EXPECT_EQ(DB_PIM_GetItems(&items, nullptr, 1, 0), 0);
        EXPECT_EQ(items.Count, 1);
        EmptyList(items);
    };
    ExpectNoGrowth(fillAndEmpty);
}

TEST_F(FailingMemory, TextsOfAList_TakenOutOfIt_OutliveItAndAreFreed)
{
    sql.exec(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 500) "
        "INSERT INTO tMFolder ([PhoneID], [Path], [Flag], [AddTime]) SELECT 1, 'folder ' || i, 0, '' FROM n");
    const auto takeAndFree = [&] {
        FolderList list = {};
        EXPECT_EQ(DB_MUSIC_GetFolders(imei, &list), 0);
        ASSERT_EQ(list.Count, 502);
        DbChar* first = std::exchange(list.Items[0].Path, nullptr);
        DbChar* last = std::exchange(list.Items[501].Path, nullptr);
        EmptyList(list);
        EXPECT_EQ(held, 2);
        EXPECT_EQ(Utf8(first), "folder");
        EXPECT_EQ(Utf8(last), "g");
        FreeText(last);
        FreeText(first);
        EXPECT_EQ(held, 0);
    };
    ExpectNoGrowth(takeAndFree);
}

TEST_F(FailingMemory, ConnectionWithCachedStatements_Closed_IsFreed)
{
    const auto runManyAndClose = [this] {
        StatementBuffer buffer;
        Connection other;
        ASSERT_EQ(other.open(data.databasePath().c_str()), SqliteCode::kOk);
        other.makeStatementsIn(buffer);
        for (size_t i = 0; i < StatementCache::kMost + 10; ++i) {
            const std::string name = "c" + std::to_string(i);
            EXPECT_EQ(other.exec(NarrowSql("SELECT [ID] AS %s FROM tPhone WHERE [ID] = %d", Name{name.c_str()}, 1)),
                      SqliteCode::kOk);
        }
    };
    runManyAndClose();
    const int64_t before = MemoryFault::balance();
    runManyAndClose();
    EXPECT_EQ(MemoryFault::balance(), before);
}

TEST_F(FailingMemory, DateInTheUsersLanguage_IsWrittenWithoutALeak)
{
    setenv("LC_ALL", "C.UTF-8", 1);
    ExpectNoGrowth([] {
        std::array<DbChar, 64> text = {};
        EXPECT_GT(platform::LocaleDate(45351.5, text.data(), text.size()), 0u);
    });
    unsetenv("LC_ALL");
}

/// A list half made goes with its texts: the same call, failing at the same allocation again, holds no more than
/// before.
TEST_F(FailingMemory, GetGalleryFolders_FailingAgain_HoldsNoMore)
{
    sql.exec(
        "INSERT INTO tIFolder ([PhoneID], [Path], [Flag], [AddTime]) VALUES (1, 'a', 0, ''), (1, 'b', 0, '');"
        "INSERT INTO tVFolder ([PhoneID], [Path], [Flag], [AddTime]) VALUES (1, 'b', 0, ''), (1, 'c', 0, '')");
    FolderList list = {};
    int nth = 0;
    const auto succeedThenFail = [&] {
        EXPECT_EQ(DB_GALLERY_GetFolders(imei, &list), 0);  // the same state for each attempt
        MemoryFault::arm(nth);
        (void)DB_GALLERY_GetFolders(imei, &list);
        const bool wasStruck = MemoryFault::disarm();
        EmptyList(list);
        return wasStruck;
    };
    for (; succeedThenFail(); ++nth) {
        ASSERT_LT(nth, 5000);
        (void)succeedThenFail();  // SQLite keeps what it has compiled and read
        const int64_t before = MemoryFault::balance();
        (void)succeedThenFail();
        EXPECT_EQ(MemoryFault::balance(), before) << "allocation " << nth;
    }
    EXPECT_GT(nth, 20);
}

}  // namespace
}  // namespace kesta::test
