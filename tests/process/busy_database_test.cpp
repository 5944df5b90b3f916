// The database file locked by another program.
#include <algorithm>
#include <future>
#include <thread>

#include "support/api_test.h"
#include "support/helper_process.h"

namespace kesta::test {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::seconds;
using ::testing::Contains;
using ::testing::ElementsAre;

const std::string kTryAgain = "Database busy, try again.";
const std::string kFailed = "Database busy, failed.";

class BusyDatabase : public ApiTest {
protected:
    void lockFor(seconds duration, const std::string& mode = "EXCLUSIVE")
    {
        ASSERT_EQ(other.ask({"lock", mode, data.databasePath().string()}), "ok");
        // A thread cannot begin on Windows while the library is being loaded.
        std::promise<void> begun;
        unlocked = std::async(std::launch::async, [this, duration, &begun] {
            begun.set_value();
            std::this_thread::sleep_for(duration);
            return other.ask({"unlock"});
        });
        begun.get_future().wait();
        (void)trace.take();
    }

    int32_t updateMusic(int32_t number)
    {
        MainFolderRecord record = {};
        record.ID = kMainFolderMusic;
        record.Number = number;
        record.Size = -1;
        return lib.DB_LIB_UpdateMainFolderInfo(&record);
    }

    HelperProcess other;
    std::future<std::string> unlocked;
};

/// As a program that has just died may hold it, until the system has cleared it away.
TEST_F(BusyDatabase, LockedForAMoment_LoadingWaitsWithoutALine)
{
    lib.unload();
    lockFor(seconds(1));
    lib.load();
    EXPECT_THAT(trace.take(), ElementsAre("Memory NEW.", "Enter DB_Open().", "Exit DB_Open() with 0."));
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("351111"), W("Phone")), 1);
}

TEST_F(BusyDatabase, LockedFor15Seconds_FailsAfterAboutTenWith101TriesAndOneFailure)
{
    lockFor(seconds(15));
    const auto start = Clock::now();
    EXPECT_EQ(updateMusic(7), 1);
    const auto waited = Clock::now() - start;
    EXPECT_GE(waited, std::chrono::milliseconds(10100));  // 101 times 100 ms
    EXPECT_LT(waited, seconds(15));

    std::vector<std::string> expected(101, kTryAgain);
    expected.insert(expected.begin(), "Enter DB_LIB_UpdateMainFolderInfo().");
    expected.push_back(kFailed);
    std::vector<std::string> lines = trace.take();
    ASSERT_GE(lines.size(), expected.size());
    lines.resize(expected.size());
    EXPECT_EQ(lines, expected);

    EXPECT_EQ(unlocked.get(), "ok");
    EXPECT_EQ(sql.text("SELECT [Number] FROM tLibMainFolder WHERE [ID] = 1000"), "0");
    EXPECT_EQ(updateMusic(7), 0);
    EXPECT_EQ(sql.text("SELECT [Number] FROM tLibMainFolder WHERE [ID] = 1000"), "7");
}

TEST_F(BusyDatabase, LockedForTwoSeconds_SucceedsAfterSomeTries)
{
    lockFor(seconds(2));
    EXPECT_EQ(updateMusic(8), 0);
    EXPECT_EQ(unlocked.get(), "ok");
    const std::vector<std::string> lines = trace.take();
    EXPECT_GE(std::count(lines.begin(), lines.end(), kTryAgain), 5);
    EXPECT_LE(std::count(lines.begin(), lines.end(), kTryAgain), 100);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), kFailed), 0);
    EXPECT_EQ(lines.back(), "Exit DB_LIB_UpdateMainFolderInfo() with 0.");
    EXPECT_EQ(sql.text("SELECT [Number] FROM tLibMainFolder WHERE [ID] = 1000"), "8");
}

TEST_F(BusyDatabase, LockedAgainstWritersOnly_ReadersDoNotWait)
{
    lockFor(seconds(1), "IMMEDIATE");
    MainFolderList list = {};
    EXPECT_EQ(lib.DB_LIB_GetAllMainFolders(&list), 0);
    EXPECT_EQ(list.Count, 7);
    EXPECT_THAT(trace.take(), ::testing::Not(Contains(kTryAgain)));
    EXPECT_EQ(updateMusic(9), 0);
    EXPECT_THAT(trace.take(), Contains(kTryAgain));
    EXPECT_EQ(unlocked.get(), "ok");
    release(list);
}

TEST_F(BusyDatabase, LockedWhileLoading_FileIsKeptAndANextOpenSucceeds)
{
    lib.unload();
    sql.exec("UPDATE tLibMainFolder SET [Number] = 99 WHERE [ID] = 1000");
    ASSERT_EQ(other.ask({"lock", "EXCLUSIVE", data.databasePath().string()}), "ok");
    (void)trace.take();
    lib.load();  // its version cannot be told for now
    EXPECT_THAT(trace.take(), ElementsAre("Memory NEW.", "Enter DB_Open().", "Exit DB_Open() with 8398."));
    EXPECT_EQ(updateMusic(1), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_LIB_UpdateMainFolderInfo().", "Exit DB_LIB_UpdateMainFolderInfo() with 1."));
    EXPECT_EQ(other.ask({"unlock"}), "ok");
    EXPECT_EQ(lib.DB_Open(), 0);
    EXPECT_EQ(sql.text("SELECT [Number] FROM tLibMainFolder WHERE [ID] = 1000"), "99");
}

}  // namespace
}  // namespace kesta::test
