// The system fails while the library loads: what it failed to read is never taken for damage, what it failed to find
// never for missing. The user's rows are there in the end.
#include <sqlite3.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "faults/system_fault.h"
#include "kesta_db/kesta_db.h"
#include "unit/module_under_test.h"

namespace kesta {
namespace {

using test::Fault;
using test::SystemFault;
using test::W;
using ::testing::AnyOf;

namespace fs = std::filesystem;

constexpr int32_t kFileInTheWay = 8398;

struct Failure {
    const char* name;
    int error;
    Fault fault;
};

class FailingLook : public ModuleUnderTest, public ::testing::WithParamInterface<Failure> {
protected:
    FailingLook() { EXPECT_EQ(DB_LIB_PhoneDetected(W("351111"), W("x")), 1); }

    static void close()
    {
        TheModule().DbConnection.close();
        TheModule().noteOpen();
    }

    [[nodiscard]] fs::path journal() const { return data.databasePath().string() + "-journal"; }

    static bool holdsOurs(const fs::path& file)
    {
        return test::Sql(file).text("SELECT COUNT(*) FROM sqlite_master WHERE name = 'ours'") == "1";
    }
    [[nodiscard]] std::vector<fs::path> keptAside() const
    {
        std::vector<fs::path> kept;
        for (const auto& entry : fs::directory_iterator(data.databaseFolder())) {
            if (entry.path().filename().string().starts_with("KESTA_DB.s3db.replaced-")) {
                kept.push_back(entry.path());
            }
        }
        return kept;
    }
    [[nodiscard]] bool isKeptAside() const
    {
        const std::vector<fs::path> kept = keptAside();
        return std::any_of(kept.begin(), kept.end(), &holdsOurs);
    }

    /// Leaves the file as a program does that is killed while it writes: changed, with the journal that undoes it.
    void givenHotJournal() const
    {
        sqlite3* killed = nullptr;
        ASSERT_EQ(sqlite3_open(data.databasePath().string().c_str(), &killed), SQLITE_OK);
        ASSERT_EQ(
            sqlite3_exec(killed,
                         "PRAGMA cache_size = 1; BEGIN; DELETE FROM tPhone; WITH RECURSIVE n(i) AS (SELECT 1 UNION "
                         "ALL SELECT i + 1 FROM n WHERE i < 500) INSERT INTO tMFile SELECT 1, hex(randomblob(99)), "
                         "'', '', '' FROM n",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
        const fs::path copy = data.applicationData() / "copy";
        fs::copy_file(data.databasePath(), copy);
        fs::copy_file(journal(), copy.string() + "-journal");
        sqlite3_close(killed);
        fs::rename(copy, data.databasePath());
        fs::rename(copy.string() + "-journal", journal());
    }

    /// Opens with the fault at the first, second, ... call of the system until opening needs no more of them.
    template <class Given>
    void atEveryPlace(Given&& given)
    {
        const auto [name, error, fault] = GetParam();
        int refused = 0;
        for (int nth = 0;; ++nth) {
            ASSERT_LT(nth, 500);
            SCOPED_TRACE(nth);
            close();
            given();
            SystemFault::arm(nth, error, fault);
            const int32_t result = DB_Open();
            const bool struck = SystemFault::disarm();
            EXPECT_THAT(result, AnyOf(0, 1, 19, kFileInTheWay));
            if (result == 0) {  // then it is the user's own, and not a temporary one
                EXPECT_EQ(DB_LIB_PhoneDetected(W("351111"), W("x")), 1);
            }
            refused += result == kFileInTheWay ? 1 : 0;
            close();
            ASSERT_EQ(DB_Open(), 0);
            ASSERT_EQ(sql.text("SELECT [IMEI] FROM tPhone"), "351111");
            ASSERT_EQ(sql.text("SELECT COUNT(*) FROM tMFile"), "0");
            for (const auto& entry : fs::directory_iterator(data.databaseFolder())) {
                EXPECT_EQ(entry.path(), data.databasePath());
            }
            if (!struck) {
                break;
            }
        }
        EXPECT_GT(refused, 3);
    }
};

const Failure kFailures[] = {{"DiskFailsOnce", EIO, Fault::kOnce},
                             {"DiskFailsForGood", EIO, Fault::kFromThenOn},
                             {"DeviceGoneOnce", ENXIO, Fault::kOnce},
                             {"DeviceGone", ENXIO, Fault::kFromThenOn},
                             {"RangeOnce", ERANGE, Fault::kOnce},
                             {"NoMemoryOnce", ENOMEM, Fault::kOnce},
                             {"NoMemory", ENOMEM, Fault::kFromThenOn},
                             {"OneCallFailsForGood", EIO, Fault::kLikeItFromThenOn},
                             {"OneCallIsRefused", EACCES, Fault::kLikeItFromThenOn}};

INSTANTIATE_TEST_SUITE_P(, FailingLook, ::testing::ValuesIn(kFailures),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(FailingLook, Open_GoodFile_IsNeverThrownAway)
{
    atEveryPlace([] {});
}

TEST_P(FailingLook, Open_FileWithAJournalToPlayBack_IsNeverThrownAway)
{
    atEveryPlace([this] { givenHotJournal(); });
}

/// What counts as made is whole: no main folder is missing, and the next start does not take it for another version.
TEST_P(FailingLook, Open_NoFile_MakesAWholeOneOrNone)
{
    const auto [name, error, fault] = GetParam();
    for (int nth = 0;; nth += 1 + nth / 16) {  // the statements of the schema are much alike
        ASSERT_LT(nth, 5000);
        SCOPED_TRACE(nth);
        close();
        for (const auto& entry : fs::directory_iterator(data.databaseFolder())) {
            fs::remove(entry.path());
        }
        SystemFault::arm(nth, error, fault);
        const int32_t result = DB_Open();
        const bool struck = SystemFault::disarm();
        if (result == 0) {
            EXPECT_EQ(sql.text("SELECT [Version] FROM tVersion"), "5005");
            EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tLibMainFolder"), "7");
        }
        close();
        EXPECT_EQ(DB_Open(), 0);
        if (!struck) {
            break;
        }
    }
}

/// A damaged file is thrown away only when the damage is no failure to read, and then it is kept under another name.
TEST_P(FailingLook, Open_DamagedFile_IsLeftAloneOrKeptAside)
{
    const auto [name, error, fault] = GetParam();
    int left = 0;
    for (int nth = 0;; ++nth) {
        ASSERT_LT(nth, 500);
        SCOPED_TRACE(nth);
        close();
        sql.exec("CREATE TABLE IF NOT EXISTS ours(a); DROP TABLE IF EXISTS tVersion");
        SystemFault::arm(nth, error, fault);
        const int32_t result = DB_Open();
        const bool struck = SystemFault::disarm();
        if (fs::exists(data.databasePath()) && holdsOurs(data.databasePath())) {
            ++left;
            EXPECT_NE(result, 0);
        } else {
            EXPECT_TRUE(isKeptAside());
        }
        close();
        ASSERT_EQ(DB_Open(), 0);
        EXPECT_EQ(sql.text("SELECT [Version] FROM tVersion"), "5005");
        for (const fs::path& kept : keptAside()) {
            fs::remove(kept);
        }
        if (!struck) {
            break;
        }
    }
    EXPECT_GT(left, 3);
}

}  // namespace
}  // namespace kesta
