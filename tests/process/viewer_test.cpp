// The viewer of the trace: found when it comes, left when it goes, and never in the way.
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <memory>
#include <thread>

#include "support/api_test.h"

namespace kesta::test {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// How long the library may go without looking for a viewer, with something to spare.
constexpr milliseconds kUntilSeen{250};

/// A socket where the viewer has its own, which nobody reads.
class BoundSocket {
public:
    explicit BoundSocket(const std::filesystem::path& path)
        : path_(path), socket_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        if (bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
            throw std::runtime_error(path.string() + ": " + std::strerror(errno));
        }
    }
    ~BoundSocket()
    {
        close(socket_);
        unlink(path_.c_str());
    }
    BoundSocket(const BoundSocket&) = delete;
    BoundSocket& operator=(const BoundSocket&) = delete;

    /// Lines that wait in the socket; takes them.
    [[nodiscard]] int countLines() const
    {
        int lines = 0;
        for (char byte = 0; recv(socket_, &byte, 1, MSG_DONTWAIT) >= 0;) {
            ++lines;
        }
        return lines;
    }

private:
    std::filesystem::path path_;
    int socket_;
};

/// What a hundred calls may take of which one waits for a tenth of a second; were each to wait, they took ten.
constexpr milliseconds kBearable{5000};

/// How many lines the system queues for a viewer: 10 by the kernel's own choice, 512 where systemd has started it.
int QueueLength()
{
    int length = 0;
    std::ifstream("/proc/sys/net/unix/max_dgram_qlen") >> length;
    return length;
}

class Viewer : public ::testing::Test {
protected:
    [[nodiscard]] std::filesystem::path socketPath() const { return data.runtimeFolder() / "kesta_db.trace"; }

    DataFolder data;
    Library lib{data};
};

TEST_F(Viewer, BoundAfterLoading_SeesTheLinesWithinAMomentOfUse)
{
    TraceLog trace(data.runtimeFolder());
    std::this_thread::sleep_for(kUntilSeen);
    EXPECT_EQ(lib.DB_Open(), 0);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_Open().", "Exit DB_Open() with 0."));
}

TEST_F(Viewer, BoundBeforeLoading_SeesTheLinesOfTheLoading)
{
    lib.unload();
    TraceLog trace(data.runtimeFolder());
    lib.load();
    EXPECT_THAT(trace.take(), ElementsAre("Memory NEW.", "Enter DB_Open().", "Exit DB_Open() with 0."));
}

TEST_F(Viewer, BoundUnderContinuousUse_IsFound)
{
    TraceLog trace(data.runtimeFolder());
    const auto deadline = Clock::now() + std::chrono::seconds(5);
    bool seen = false;
    while (!seen && Clock::now() < deadline) {
        EXPECT_EQ(lib.DB_Open(), 0);
        seen = !trace.take().empty();
    }
    EXPECT_TRUE(seen);
}

TEST_F(Viewer, Lines_AreUtf8WithPrefixAndLineFeed)
{
    const auto source = TraceSource::open(data.runtimeFolder());
    std::this_thread::sleep_for(kUntilSeen);
    EXPECT_EQ(lib.DB_LIB_IsFolderSelected(W("Zoë 📱"), 1000), 1);
    EXPECT_THAT(source->take(), ElementsAre("DB TRACE >> Enter DB_LIB_IsFolderSelected(IMEI: Zoë 📱, FolderID: 1000).\n",
                                            "DB TRACE >> Exit DB_LIB_IsFolderSelected() with bSelected = 1.\n"));
}

TEST_F(Viewer, Gone_CallsGoOn)
{
    {
        const TraceLog trace(data.runtimeFolder());
        std::this_thread::sleep_for(kUntilSeen);
        EXPECT_EQ(lib.DB_Open(), 0);
    }
    EXPECT_EQ(lib.DB_Open(), 0);
}

TEST_F(Viewer, ReplacedByAnother_TheNewOneSeesTheLines)
{
    auto first = std::make_unique<TraceLog>(data.runtimeFolder());
    std::this_thread::sleep_for(kUntilSeen);
    EXPECT_EQ(lib.DB_Open(), 0);
    first.reset();
    TraceLog second(data.runtimeFolder());
    EXPECT_EQ(lib.DB_Open(), 0);
    std::this_thread::sleep_for(kUntilSeen);
    (void)second.take();
    EXPECT_EQ(lib.DB_Open(), 0);
    EXPECT_THAT(second.take(), ElementsAre("Enter DB_Open().", "Exit DB_Open() with 0."));
}

TEST_F(Viewer, ReplacedWhileTheFirstStillListens_TheNewOneSeesTheLines)
{
    const BoundSocket first(socketPath());
    std::this_thread::sleep_for(kUntilSeen);
    EXPECT_EQ(lib.DB_Open(), 0);
    EXPECT_EQ(first.countLines(), 2);
    unlink(socketPath().c_str());
    TraceLog second(data.runtimeFolder());
    std::this_thread::sleep_for(kUntilSeen);
    EXPECT_EQ(lib.DB_Open(), 0);
    EXPECT_THAT(second.take(), ElementsAre("Enter DB_Open().", "Exit DB_Open() with 0."));
    EXPECT_EQ(first.countLines(), 0);
}

TEST_F(Viewer, StopsReading_DelaysFewCallsAndThenLosesLines)
{
    // The system queues so many lines at the most, and two come of a call: the rest of the calls meets a full queue.
    const int queued = QueueLength();
    const int calls = queued / 2 + 100;
    // A busy machine may hold calls up on its own, though not in each of several tries.
    constexpr int kTries = 5;
    milliseconds shortest = milliseconds::max();
    for (int i = 0; i < kTries && shortest >= kBearable; ++i) {
        const BoundSocket silent(socketPath());
        std::this_thread::sleep_for(kUntilSeen);
        const auto begun = Clock::now();
        for (int call = 0; call < calls; ++call) {
            EXPECT_EQ(lib.DB_Open(), 0);
        }
        shortest = std::min(shortest, std::chrono::duration_cast<milliseconds>(Clock::now() - begun));
        const int kept = silent.countLines();
        EXPECT_GT(kept, 0);
        EXPECT_LE(kept, queued + 1);
    }
    EXPECT_LT(shortest, kBearable);
}

TEST_F(Viewer, ReadsAgainAfterAPause_SeesTheLinesFromThenOn)
{
    const BoundSocket lazy(socketPath());
    std::this_thread::sleep_for(kUntilSeen);
    const int calls = QueueLength() / 2 + 10;
    for (int i = 0; i < calls; ++i) {
        EXPECT_EQ(lib.DB_Open(), 0);
    }
    EXPECT_LT(lazy.countLines(), 2 * calls);
    EXPECT_EQ(lib.DB_Open(), 0);
    EXPECT_EQ(lazy.countLines(), 2);
}

TEST_F(Viewer, SocketOfAnotherUser_IsIgnored)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give a file away";
    }
    const BoundSocket foreign(socketPath());
    ASSERT_EQ(chown(socketPath().c_str(), 65534, 65534), 0);
    std::this_thread::sleep_for(kUntilSeen);
    EXPECT_EQ(lib.DB_Open(), 0);
    EXPECT_EQ(foreign.countLines(), 0);
}

TEST_F(Viewer, SomethingElseAtThePath_IsIgnored)
{
    ASSERT_EQ(mkdir(socketPath().c_str(), 0700), 0);
    std::this_thread::sleep_for(kUntilSeen);
    EXPECT_EQ(lib.DB_Open(), 0);
}

TEST_F(Viewer, NoRuntimeFolderGiven_SocketLiesInTmp)
{
    lib.unload();
    const std::string path = "/tmp/kesta_db-" + std::to_string(geteuid()) + ".trace";
    unsetenv("XDG_RUNTIME_DIR");
    if (access(path.c_str(), F_OK) == 0) {
        GTEST_SKIP() << "somebody watches the trace of this user: " << path;
    }
    const BoundSocket viewer(path);
    lib.load();
    EXPECT_EQ(viewer.countLines(), 3);  // the buffer and two of DB_Open
}

}  // namespace
}  // namespace kesta::test
