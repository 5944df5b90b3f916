// Loading, unloading and loading again.
#include "support/api_test.h"
#include "support/helper_process.h"
#include "support/shared_object.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

using Loading = ApiTest;

TEST_F(Loading, Unloading_ClosesTheDatabaseAndFreesTheBuffer)
{
    (void)trace.take();
    lib.unload();
    EXPECT_THAT(trace.take(), ElementsAre("Memory DELETE."));
    EXPECT_FALSE(SharedObject::isLoaded(Library::path()));
    // A file that nobody has open can be renamed everywhere.
    std::error_code failure;
    std::filesystem::rename(data.databasePath(), data.databaseFolder() / "moved", failure);
    EXPECT_FALSE(failure) << failure.message();
}

TEST_F(Loading, LoadedAgain_OpensTheSameDatabase)
{
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("351111"), W("Phone")), 1);
    lib.unload();
    (void)trace.take();
    lib.load();
    EXPECT_THAT(trace.take(), ElementsAre("Memory NEW.", "Enter DB_Open().", "Exit DB_Open() with 0."));
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("351111"), W("Phone")), 1);
}

TEST_F(Loading, FiftyTimes_LeavesNothingBehind)
{
    constexpr int kTimes = 50;
    lib.unload();
    lib.load();  // what the system sets up once, it has set up now
    lib.unload();
    const size_t before = CountHandles();
    for (int i = 0; i < kTimes; ++i) {
        lib.load();
        ASSERT_EQ(lib.DB_LIB_PhoneDetected(W("351111"), W("Phone")), 1) << "round " << i;
        lib.unload();
        ASSERT_FALSE(SharedObject::isLoaded(Library::path())) << "round " << i;
    }
    EXPECT_LE(CountHandles(), before);
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tPhone"), "1");
}

TEST_F(Loading, InTwoProcesses_BothUseTheSameDatabase)
{
    HelperProcess other;
    EXPECT_EQ(other.ask({"load"}), "ok");
    EXPECT_EQ(other.ask({"call", "DB_LIB_PhoneDetected", "351111", "Phone"}), "1");
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("351111"), W("Phone")), 1);
    EXPECT_EQ(other.ask({"unload"}), "ok");
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("352222"), W("Phone")), 2);
}

TEST_F(Loading, MadeByTwoProcessesAtOnce_TheDatabaseIsWhole)
{
    lib.unload();
    std::filesystem::remove(data.databasePath());
    HelperProcess first;
    HelperProcess second;
    first.tell({"load"});
    second.tell({"load"});
    EXPECT_EQ(first.answer(), "ok");
    EXPECT_EQ(second.answer(), "ok");
    EXPECT_EQ(first.ask({"call", "DB_LIB_PhoneDetected", "351111", "Phone"}), "1");
    EXPECT_EQ(second.ask({"call", "DB_LIB_PhoneDetected", "351111", "Phone"}), "1");
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tVersion"), "1");
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tLibMainFolder"), "7");
}

}  // namespace
}  // namespace kesta::test
