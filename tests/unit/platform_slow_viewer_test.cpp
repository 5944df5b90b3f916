// A viewer of the trace that does not keep up: how long a call waits for it, by a clock and a socket of the test's own.
// The linker puts them in the place of the system's.
#include <gmock/gmock.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <functional>
#include <utility>
#include <vector>

#include "core/call_frame.h"
#include "platform/services.h"
#include "support/data_folder.h"
#include "support/text.h"

namespace {

/// The system as the library finds it while a test has replaced it.
struct FakeSystem {
    int64_t nowMs = 1'000'000;
    std::vector<int> waits;          // the time limits with which it waited
    std::function<int()> sendFails;  // the error of a send, 0 when it succeeds
    /// Whether there seems to be room after a wait of at most that long; moves the clock.
    std::function<bool(int limitMs)> waited;
};

FakeSystem* fake = nullptr;

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
extern "C" {

ssize_t __real_send(int socket, const void* bytes, size_t length, int flags);
int __real_poll(pollfd* files, nfds_t count, int limitMs);
int __real_clock_gettime(clockid_t clock, timespec* time);

ssize_t __wrap_send(int socket, const void* bytes, size_t length, int flags)
{
    if (fake == nullptr) {
        return __real_send(socket, bytes, length, flags);
    }
    const int error = fake->sendFails();
    if (error == 0) {
        return static_cast<ssize_t>(length);
    }
    errno = error;
    return -1;
}

int __wrap_poll(pollfd* files, nfds_t count, int limitMs)
{
    if (fake == nullptr) {
        return __real_poll(files, count, limitMs);
    }
    fake->waits.push_back(limitMs);
    return fake->waited(limitMs) ? 1 : 0;
}

int __wrap_clock_gettime(clockid_t clock, timespec* time)
{
    if (fake == nullptr) {
        return __real_clock_gettime(clock, time);
    }
    *time = {static_cast<time_t>(fake->nowMs / 1000), static_cast<long>(fake->nowMs % 1000 * 1'000'000)};
    return 0;
}
}
// NOLINTEND(bugprone-reserved-identifier)

namespace kesta::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SlowViewer : public ::testing::Test {
protected:
    SlowViewer()
    {
        OpenTrace();
        system.sendFails = [this] { return room > 0 ? (--room, 0) : EAGAIN; };
        system.waited = [this](int limitMs) {
            system.nowMs += limitMs;
            return false;
        };
        fake = &system;
        write();  // whatever was stalled before is not any more
    }
    ~SlowViewer() override
    {
        fake = nullptr;
        CloseTrace();
    }

    static void write() { services.writeTraceLine(test::W("line"), 4); }

    /// The waits since the last question.
    std::vector<int> waits() { return std::exchange(system.waits, {}); }

    test::DataFolder data;
    FakeSystem system;
    int room = 1;  // lines that can still be sent
};

TEST_F(SlowViewer, NeverReads_HoldsOneCallUpForATenthOfASecond)
{
    BeginTracedCall();
    for (int i = 0; i < 3; ++i) {
        write();
    }
    EXPECT_THAT(waits(), ElementsAre(100));
    BeginTracedCall();
    write();
    EXPECT_THAT(waits(), IsEmpty());
}

TEST_F(SlowViewer, ReadsAgain_IsWaitedForAgain)
{
    BeginTracedCall();
    write();
    EXPECT_THAT(waits(), ElementsAre(100));
    room = 1;
    BeginTracedCall();
    write();
    write();
    EXPECT_THAT(waits(), ElementsAre(100));
}

TEST_F(SlowViewer, MakesRoomThatOthersTake_HoldsACallUpForATenthOfASecondInAll)
{
    system.waited = [this](int limitMs) {
        system.nowMs += std::min(40, limitMs);
        return true;
    };
    for (int call = 0; call < 2; ++call) {
        BeginTracedCall();
        write();
        write();
        EXPECT_THAT(waits(), ElementsAre(100, 60, 20));
    }
}

TEST_F(SlowViewer, MakesRoomThatOthersTake_HoldsEachCallFromOutsideUpAnew)
{
    system.waited = [this](int limitMs) {
        system.nowMs += limitMs;
        return true;
    };
    for (int call = 0; call < 2; ++call) {
        const CallScope inside;
        write();
        EXPECT_THAT(waits(), ElementsAre(100));
    }
}

TEST_F(SlowViewer, MakesRoomInTime_EveryLineIsSent)
{
    system.waited = [this](int limitMs) {
        system.nowMs += std::min(30, limitMs);
        room = 1;
        return true;
    };
    BeginTracedCall();
    for (int i = 0; i < 3; ++i) {
        write();
    }
    EXPECT_THAT(waits(), ElementsAre(100, 70, 40));
    EXPECT_EQ(room, 0);
}

TEST_F(SlowViewer, SystemShortOfBuffers_IsWaitedForLikeASlowViewer)
{
    system.sendFails = [] { return ENOBUFS; };
    BeginTracedCall();
    write();
    EXPECT_THAT(waits(), ElementsAre(100));
}

TEST_F(SlowViewer, InterruptedBySignals_TriesAgainWithoutWaiting)
{
    int attempts = 0;
    system.sendFails = [&] { return ++attempts < 3 ? EINTR : 0; };
    BeginTracedCall();
    write();
    EXPECT_EQ(attempts, 3);
    EXPECT_THAT(waits(), IsEmpty());
}

TEST_F(SlowViewer, RefusesTwice_LosesTheLine)
{
    const int viewer = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    (data.runtimeFolder() / "kesta_db.trace").native().copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(viewer, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    int attempts = 0;
    system.sendFails = [&] { return ++attempts, ECONNREFUSED; };
    BeginTracedCall();
    write();
    EXPECT_EQ(attempts, 2);  // somebody has taken its place, and refuses too
    close(viewer);
}

TEST_F(SlowViewer, GoneForGood_IsLookedForOnceALine)
{
    int attempts = 0;
    system.sendFails = [&] { return ++attempts, ECONNREFUSED; };
    BeginTracedCall();
    write();
    EXPECT_EQ(attempts, 1);  // nobody has taken its place
    EXPECT_THAT(waits(), IsEmpty());
}

}  // namespace
}  // namespace kesta::platform
