// The debug output: one datagram a line to the socket of a viewer that runs as the same user, if there is one.
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <new>

#include "platform/code_page.h"
#include "platform/services.h"

namespace kesta::platform {
namespace {

constexpr int64_t kLookEveryMs = 100;
constexpr int64_t kMostDelayMs = 100;  // what a slow viewer may hold one call up for
constexpr uint32_t kMemoryLinesPerLook = 16;
constexpr size_t kBytesPerUnit = 3;  // UTF-8 bytes that one UTF-16 code unit can take

struct Viewer {
    sockaddr_un address = {};
    int socket = -1;
    std::atomic<bool> present = false;
    std::atomic<bool> stalled = false;  // it did not read for kMostDelayMs: no more waiting until it does
    std::atomic<int64_t> nextLookMs = 0;
};

Viewer viewer;
// In the room that threads are born with: a first use must not ask for memory, for without any the C library ends the
// process.
[[gnu::tls_model("initial-exec")]] thread_local int64_t delayedMs = 0;
[[gnu::tls_model("initial-exec")]] thread_local uint32_t memoryLines = 0;  // of the call so far

int64_t CoarseMs() noexcept
{
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &time);
    return int64_t{time.tv_sec} * 1000 + time.tv_nsec / 1'000'000;
}

/// Connects to the socket that is bound under the path now: a viewer may have come, gone, or been replaced.
bool Look() noexcept
{
    struct stat status = {};
    const bool present =
        viewer.socket >= 0 && lstat(viewer.address.sun_path, &status) == 0 && S_ISSOCK(status.st_mode) &&
        status.st_uid == geteuid() &&
        connect(viewer.socket, reinterpret_cast<const sockaddr*>(&viewer.address), sizeof viewer.address) == 0;
    viewer.present.store(present, std::memory_order_relaxed);
    return present;
}

bool Send(const char* bytes, size_t length) noexcept
{
    return send(viewer.socket, bytes, length, MSG_DONTWAIT | MSG_NOSIGNAL) >= 0;
}

/// The file under a number that no program mistakes for its own output, should that be closed.
int AboveStandard(int file) noexcept
{
    if (file < 0 || file > STDERR_FILENO) {
        return file;
    }
    const int other = fcntl(file, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    close(file);
    return other;
}

/// Waits for the viewer to make room, as long as this call may still be held up.
bool WaitForRoom() noexcept
{
    if (viewer.stalled.load(std::memory_order_relaxed) || delayedMs >= kMostDelayMs) {
        return false;
    }
    const int64_t start = CoarseMs();
    pollfd room = {viewer.socket, POLLOUT, 0};
    const int ready = poll(&room, 1, static_cast<int>(kMostDelayMs - delayedMs));
    delayedMs += ready == 0 ? kMostDelayMs : CoarseMs() - start;
    if (ready == 0) {
        viewer.stalled.store(true, std::memory_order_relaxed);
    }
    return ready > 0;
}

void SendLine(const char* bytes, size_t length) noexcept
{
    bool lookedAgain = false;
    while (!Send(bytes, length)) {
        if (errno == EAGAIN || errno == EWOULDBLOCK || errno == ENOBUFS) {
            if (!WaitForRoom()) {
                return;
            }
        } else if (errno != EINTR) {
            if (lookedAgain || !Look()) {
                return;  // the viewer is gone; another one may have taken its place
            }
            lookedAgain = true;
        }
    }
    viewer.stalled.store(false, std::memory_order_relaxed);
}

bool TraceIsRead() noexcept
{
    const int64_t now = CoarseMs();
    if (now >= viewer.nextLookMs.load(std::memory_order_relaxed)) {
        viewer.nextLookMs.store(now + kLookEveryMs, std::memory_order_relaxed);
        return Look();
    }
    return viewer.present.load(std::memory_order_relaxed);
}

bool MemoryIsRead() noexcept
{
    // A list has a line for each of its texts. While nobody reads, looking at the clock for every one of them would
    // take a tenth of the list's time.
    if (!viewer.present.load(std::memory_order_relaxed) && memoryLines++ % kMemoryLinesPerLook != 0) {
        return false;
    }
    return TraceIsRead();
}

void WriteTraceLine(const DbChar* line, size_t length) noexcept
{
    char small[4096];
    const size_t room = length * kBytesPerUnit;
    std::unique_ptr<char[]> large;
    if (room > sizeof small) {
        large.reset(new (std::nothrow) char[room]);
        if (large == nullptr) {
            return;
        }
    }
    char* bytes = large != nullptr ? large.get() : small;
    SendLine(bytes, Utf8FromWide(line, length, bytes, room));
}

int64_t Now() noexcept
{
    return std::time(nullptr);
}

void Sleep(uint32_t milliseconds) noexcept
{
    timespec left = {static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1'000'000};
    while (nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

}  // namespace

Services services = {&Now, &Sleep, &TraceIsRead, &MemoryIsRead, &WriteTraceLine};

void OpenTrace() noexcept
{
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    const int length =
        folder != nullptr && folder[0] != '\0'
            ? std::snprintf(viewer.address.sun_path, sizeof viewer.address.sun_path, "%s/%s", folder, "kesta_db.trace")
            : std::snprintf(viewer.address.sun_path, sizeof viewer.address.sun_path, "/tmp/kesta_db-%u.trace",
                            static_cast<unsigned>(geteuid()));
    if (length < 0 || static_cast<size_t>(length) >= sizeof viewer.address.sun_path) {
        return;  // no viewer can bind it
    }
    viewer.address.sun_family = AF_UNIX;
    viewer.socket = AboveStandard(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (viewer.socket < 0) {
        return;
    }
    const int buffer = 1 << 20;  // the longest line is a statement of 40,960 characters
    (void)setsockopt(viewer.socket, SOL_SOCKET, SO_SNDBUF, &buffer, sizeof buffer);
    viewer.nextLookMs.store(0, std::memory_order_relaxed);
}

void CloseTrace() noexcept
{
    if (viewer.socket >= 0) {
        close(viewer.socket);
    }
    viewer.socket = -1;
    viewer.present.store(false, std::memory_order_relaxed);
}

void BeginTracedCall() noexcept
{
    delayedMs = 0;
    memoryLines = 0;
}

}  // namespace kesta::platform
