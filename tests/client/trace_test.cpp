// kesta trace, the viewer of the library's trace lines.
#include <sys/stat.h>

#include <thread>

#include "client_fixture.h"

namespace kesta::test {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;

class TraceTest : public ClientTest {
protected:
    [[nodiscard]] std::string socket() const { return (data().runtimeFolder() / "kesta_db.trace").string(); }
    [[nodiscard]] std::unique_ptr<ClientProcess> startViewer()
    {
        auto viewer = std::make_unique<ClientProcess>(work(), std::vector<std::string>{"trace"});
        EXPECT_TRUE(viewer->waitForOutput("Watching"));
        return viewer;
    }
};

TEST_F(TraceTest, Lines_ComeWithTimeAndProcess)
{
    const auto viewer = startViewer();
    struct stat info {};
    ASSERT_EQ(stat(socket().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode, static_cast<mode_t>(S_IFSOCK | 0600));
    givenFile("Rock/caf\u00e9.mp3", "first");
    ClientProcess sync(work(), syncArguments({"--music", pc("Rock")}));
    const long process = sync.id();
    EXPECT_EQ(sync.wait().exitCode, 0);
    ASSERT_TRUE(viewer->waitForOutput("DB_LIB_SetLastSyncTime"));
    viewer->interrupt();
    const Ended run = viewer->wait();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out,
                ContainsRegex("[0-9][0-9]:[0-9][0-9]:[0-9][0-9]\\.[0-9]+ [^ ]+\\[" + std::to_string(process) +
                              "\\] DB TRACE >> Enter DB_MUSIC_SetAddedFile\\(IMEI: 351111, Path: .*caf\u00e9"));
    EXPECT_FALSE(fs::exists(socket()));
}

TEST_F(TraceTest, SecondViewer_IsRefused)
{
    const auto viewer = startViewer();
    const Ended second = client({"trace"});
    EXPECT_EQ(second.exitCode, 1);
    EXPECT_THAT(second.err, HasSubstr("another trace viewer is running"));
    EXPECT_TRUE(fs::exists(socket()));
    EXPECT_FALSE(viewer->hasEnded());
}

TEST_F(TraceTest, SocketOfAKilledViewer_IsReplaced)
{
    {
        const auto killed = startViewer();
        killed->kill();
        (void)killed->wait();
    }
    ASSERT_TRUE(fs::exists(socket()));
    const auto viewer = startViewer();
    EXPECT_EQ(client({"status"}).exitCode, 0);
    EXPECT_TRUE(viewer->waitForOutput("DB_LIB_GetAllPhones"));
}

TEST_F(TraceTest, SomethingElseInTheSocketsPlace_IsLeftAlone)
{
    std::ofstream(socket()) << "a file";
    const Ended run = client({"trace"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("is not a socket"));
    EXPECT_TRUE(fs::is_regular_file(socket()));
}

TEST_F(TraceTest, ControlCharactersInLines_AreShown)
{
    const auto viewer = startViewer();
    givenFile("Rock/\x1b[31m.mp3", "first");
    (void)sync({"--music", pc("Rock")});
    ASSERT_TRUE(viewer->waitForOutput("DB_LIB_SetLastSyncTime"));
    EXPECT_EQ(viewer->outputSoFar().find('\x1b'), std::string::npos);
    EXPECT_THAT(viewer->outputSoFar(), HasSubstr("\\u001b[31m.mp3"));
}

}  // namespace
}  // namespace kesta::test
