// One lock for all processes: who waits for whom, and what becomes of it when its holder dies.
#include <future>

#include "support/api_test.h"
#include "support/helper_process.h"

namespace kesta::test {
namespace {

using std::future_status;
using std::chrono::seconds;
using ::testing::ElementsAre;

/// `holder` is in the middle of a call, and stays there for as long as `locker` holds the file.
class MutualExclusion : public ApiTest {
protected:
    void SetUp() override
    {
        ASSERT_EQ(holder.ask({"trace"}), "ok");
        ASSERT_EQ(holder.ask({"load"}), "ok");
        ASSERT_EQ(locker.ask({"lock", "EXCLUSIVE", data.databasePath().string()}), "ok");
        ASSERT_EQ(holder.ask({"begin", "DB_LIB_PhoneDetected", "351111", "Held"}), "ok");
        ASSERT_EQ(holder.ask({"await", "Database busy, try again."}), "ok");
        (void)trace.take();
    }

    std::future<int32_t> openInAThread()
    {
        return std::async(std::launch::async, [this] { return lib.DB_Open(); });
    }

    HelperProcess locker;
    HelperProcess holder;
};

TEST_F(MutualExclusion, CallInAnotherProcess_WaitsUntilTheFirstIsOver)
{
    std::future<int32_t> waiting = openInAThread();
    EXPECT_EQ(waiting.wait_for(seconds(1)), future_status::timeout);
    EXPECT_THAT(trace.take(), ElementsAre());  // not even its entry line

    EXPECT_EQ(locker.ask({"unlock"}), "ok");
    EXPECT_EQ(holder.ask({"end"}), "1");
    EXPECT_EQ(waiting.get(), 0);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_Open().", "Exit DB_Open() with 0."));
    EXPECT_EQ(sql.text("SELECT [IMEI] FROM tPhone"), "351111");
}

TEST_F(MutualExclusion, ChangeFlags_AreReadWithoutWaiting)
{
    MainFolderList list = {};
    std::future<int32_t> reading = std::async(std::launch::async, [&] { return lib.DB_LIB_MainFoldersChanged(&list); });
    EXPECT_EQ(reading.wait_for(seconds(5)), future_status::ready);
    EXPECT_EQ(locker.ask({"unlock"}), "ok");
    EXPECT_EQ(reading.get(), 0);
    EXPECT_EQ(holder.ask({"end"}), "1");
    release(list);
}

TEST_F(MutualExclusion, HolderKilledInACall_TheNextCallerGoesOn)
{
    std::future<int32_t> waiting = openInAThread();
    EXPECT_EQ(waiting.wait_for(seconds(1)), future_status::timeout);

    holder.kill();
    EXPECT_EQ(waiting.wait_for(seconds(10)), future_status::ready);
    EXPECT_EQ(waiting.get(), 0);

    EXPECT_EQ(locker.ask({"unlock"}), "ok");
    EXPECT_GE(lib.DB_LIB_PhoneDetected(W("352222"), W("Next")), 1);
    EXPECT_EQ(sql.text("SELECT [IMEI] FROM tPhone"), "352222");
}

TEST_F(MutualExclusion, HolderKilledBeforeAnybodyWaits_LaterCallsOfAllProcessesWork)
{
    holder.kill();
    EXPECT_EQ(locker.ask({"unlock"}), "ok");
    HelperProcess other;
    EXPECT_EQ(other.ask({"load"}), "ok");
    EXPECT_EQ(other.ask({"call", "DB_LIB_PhoneDetected", "352222", "Other"}), "1");
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("353333"), W("This")), 2);
    EXPECT_EQ(other.ask({"call", "DB_LIB_PhoneDetected", "353333", "This"}), "2");
}

TEST_F(MutualExclusion, ProcessEndsWhileAThreadIsInACall_NeitherCrashesNorHangs)
{
    holder.tell({"exit", "7"});
    EXPECT_EQ(holder.wait(seconds(30)), 7);
    EXPECT_EQ(locker.ask({"unlock"}), "ok");
    EXPECT_EQ(lib.DB_Open(), 0);
}

}  // namespace
}  // namespace kesta::test
