// The disk fails in the middle of a call: the result is as documented, the file stays valid, the next call works.
#include <sqlite3.h>

#include <functional>

#include "faults/disk_fault.h"
#include "kesta_db/kesta_db.h"
#include "support/dates.h"
#include "unit/module_under_test.h"

namespace kesta {
namespace {

using test::DiskFault;
using test::DiskOperation;
using test::Text;
using test::W;
using ::testing::AnyOf;

constexpr char kImei[] = "351111";

struct Installed {
    Installed() { DiskFault::install(); }
};

class FailingDisk : private Installed, public ModuleUnderTest {
protected:
    FailingDisk()
    {
        EXPECT_EQ(DB_LIB_PhoneDetected(W(kImei), W("x")), 1);
        sql.exec(
            "INSERT INTO tMFolder ([PhoneID], [Path], [Flag], [AddTime]) VALUES (1, 'folder', 1, '');"
            "INSERT INTO tMFile VALUES (1, 'old', 'folder', 'q', '2024-01-01 00:00:00')");
    }
    ~FailingDisk() override { DiskFault::disarm(); }

    /// Lets the call meet the fault at its first, second, ... such operation, until it needs no more of them.
    /// `check` is told the result of each call that was struck.
    void atEveryPlace(DiskOperation operation, int code, const std::function<int32_t()>& call,
                      const std::function<void(int32_t result)>& check)
    {
        for (int nth = 0;; ++nth) {
            ASSERT_LT(nth, 200);
            SCOPED_TRACE(nth);
            DiskFault::arm(operation, nth, code);
            const int32_t result = call();
            DiskFault::disarm();
            if (!DiskFault::hasStruck()) {
                return;
            }
            ++struck;
            check(result);
            EXPECT_EQ(sql.text("PRAGMA integrity_check"), "ok");
            EXPECT_EQ(DB_LIB_PhoneDetected(W(kImei), W("")), 1);
        }
    }

    int struck = 0;
};

struct Case {
    const char* name;
    DiskOperation operation;
    int code;
};

class FailingWrites : public FailingDisk, public ::testing::WithParamInterface<Case> {};

const Case kCases[] = {{"WriteError", DiskOperation::kWrite, SQLITE_IOERR_WRITE},
                       {"FullDisk", DiskOperation::kWrite, SQLITE_FULL},
                       {"SyncError", DiskOperation::kSync, SQLITE_IOERR_FSYNC},
                       {"JournalCannotBeMade", DiskOperation::kOpen, SQLITE_CANTOPEN}};

INSTANTIATE_TEST_SUITE_P(, FailingWrites, ::testing::ValuesIn(kCases),
                         [](const auto& tested) { return tested.param.name; });

/// SQLite's own code, without its details.
int32_t Plain(int code)
{
    return code & 0xFF;
}

TEST_P(FailingWrites, SetAddedFile_AtEveryPlace_GivesSqlitesCodeOrHasRecordedTheFile)
{
    Text path("new");
    Text base("folder");
    const SyncedFileRecord file = {test::Date(2024, 1, 1), path.get(), base.get(), base.get()};
    atEveryPlace(
        GetParam().operation, GetParam().code, [&] { return DB_MUSIC_SetAddedFile(W(kImei), &file); },
        [&](int32_t result) {
            EXPECT_THAT(result, AnyOf(0, Plain(GetParam().code)));
            EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tMFile WHERE [Path] = 'new'"), result == 0 ? "1" : "0");
            sql.exec("DELETE FROM tMFile WHERE [Path] = 'new'; UPDATE tMFolder SET [Flag] = 1");
        });
    EXPECT_GT(struck, 0);
}

TEST_P(FailingWrites, SetFolderSelected_AtEveryPlace_FailsAndLeavesTheRow)
{
    atEveryPlace(
        GetParam().operation, GetParam().code, [] { return DB_LIB_SetFolderSelected(W(kImei), 1000, 1); },
        [&](int32_t result) {
            EXPECT_EQ(result, 1);
            EXPECT_EQ(sql.text("SELECT [Selected] FROM tSyncContents WHERE [lfID] = 1000"), "0");
        });
    EXPECT_GT(struck, 0);
}

TEST_P(FailingWrites, SetDeletedFolder_AtEveryPlace_ResultIsThatOfTheFiles)
{
    atEveryPlace(
        GetParam().operation, GetParam().code, [] { return DB_MUSIC_SetDeletedFolder(W(kImei), W("folder")); },
        [&](int32_t result) {
            EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tMFile"), result == 0 ? "0" : "1");
            sql.exec(
                "INSERT OR REPLACE INTO tMFolder ([PhoneID], [Path], [Flag], [AddTime]) VALUES (1, 'folder', 1, '');"
                "INSERT OR REPLACE INTO tMFile VALUES (1, 'old', 'folder', 'q', '2024-01-01 00:00:00')");
        });
    EXPECT_GT(struck, 0);
}

TEST_P(FailingWrites, PhoneDetected_AtEveryPlace_IsMinusOneOrThePhone)
{
    atEveryPlace(
        GetParam().operation, GetParam().code, [] { return DB_LIB_PhoneDetected(W("352222"), W("y")); },
        [&](int32_t result) {
            EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tPhone WHERE [IMEI] = '352222'"), result == -1 ? "0" : "1");
            sql.exec("DELETE FROM tSyncContents WHERE [phoneID] <> 1; DELETE FROM tPhone WHERE [ID] <> 1");
        });
    EXPECT_GT(struck, 0);
}

TEST_P(FailingWrites, AddFolder_AtEveryPlace_AlwaysSucceeds)
{
    FolderRecord folder = {};
    Text path("folder");
    folder.Path = path.get();
    folder.Count = 9;
    atEveryPlace(
        GetParam().operation, GetParam().code, [&] { return DB_MUSIC_AddFolder(W(kImei), &folder); },
        [&](int32_t result) {
            EXPECT_EQ(result, 0);
            sql.exec("UPDATE tMFolder SET [Count] = 0");
        });
    EXPECT_GT(struck, 0);
}

TEST_P(FailingWrites, Open_AtManyPlaces_FailsAndTheNextOneCreatesAfresh)
{
    int attempts = 0;
    for (int nth = 0;; nth += 1 + nth / 8) {  // the statements of the schema are much alike
        ASSERT_LT(nth, 3000);
        TheModule().DbConnection.close();
        TheModule().noteOpen();
        std::filesystem::remove(data.databasePath());
        std::filesystem::remove(data.databasePath().string() + "-journal");
        DiskFault::arm(GetParam().operation, nth, GetParam().code);
        const int32_t result = DB_Open();
        DiskFault::disarm();
        if (!DiskFault::hasStruck()) {
            break;
        }
        ++attempts;
        if (result != 0) {
            EXPECT_FALSE(TheModule().DbConnection.isOpen());
            EXPECT_EQ(DB_LIB_PhoneDetected(W("1"), W("")), -1);
            ASSERT_EQ(DB_Open(), 0) << nth;
        }
        EXPECT_EQ(sql.text("SELECT [Version] FROM tVersion LIMIT 1"), "5005");
        // What a failed attempt has left is nobody's, and drives nobody's file out of those that are kept.
        for (const auto& entry : std::filesystem::directory_iterator(data.databaseFolder())) {
            EXPECT_EQ(entry.path(), data.databasePath()) << nth;
        }
    }
    EXPECT_GT(attempts, 0);
}

class FailingReads : public FailingDisk {};

TEST_F(FailingReads, GetSyncedFiles_AtEveryPlace_FailsOrEndsWithTheCode)
{
    sql.exec(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 500) "
        "INSERT INTO tMFile SELECT 1, printf('%0200d', i), 'folder', 'q', '' FROM n");
    SyncedFileList list = {};
    atEveryPlace(
        DiskOperation::kRead, SQLITE_IOERR_READ, [&] { return DB_MUSIC_GetSyncedFiles(W(kImei), nullptr, &list); },
        [&](int32_t result) {
            EXPECT_THAT(result, AnyOf(0, 1, SQLITE_IOERR));
            EXPECT_LE(list.Count, 501);
            for (int32_t i = 0; i < list.Count; ++i) {
                EXPECT_NE(list.Items[i].Path, nullptr);
            }
            sql.exec("UPDATE tLibMainFolder SET [Number] = [Number] + 1");  // what was read so far is read anew
        });
    EXPECT_GT(struck, 0);
    EXPECT_EQ(DB_MUSIC_GetSyncedFiles(W(kImei), nullptr, &list), 0);
    EXPECT_EQ(list.Count, 501);
    EXPECT_EQ(DB_MUSIC_GetSyncedFiles(W("999"), nullptr, &list), 0);
}

TEST_F(FailingReads, Open_ValidFileThatCannotBeRead_IsNeverThrownAway)
{
    for (int nth = 0;; ++nth) {
        ASSERT_LT(nth, 100);
        TheModule().DbConnection.close();
        TheModule().noteOpen();
        DiskFault::arm(DiskOperation::kRead, nth, SQLITE_IOERR_READ);
        const int32_t result = DB_Open();
        DiskFault::disarm();
        EXPECT_EQ(sql.text("SELECT [IMEI] FROM tPhone"), kImei) << nth;
        if (!DiskFault::hasStruck()) {
            break;
        }
        EXPECT_THAT(result, AnyOf(0, 1, 8398));  // 1: the version was read, opening for good was not
        EXPECT_EQ(DB_Open(), 0);
    }
}

}  // namespace
}  // namespace kesta
