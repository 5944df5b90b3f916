// kesta trace: the library sends each trace line as one datagram to a socket that the viewer binds.
#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <stdexcept>

#include "base/stop_run.h"
#include "base/text.h"
#include "commands/trace.h"
#include "os/files.h"
#include "os/native_path.h"
#include "os/system.h"
#include "os/trace_socket.h"

namespace kesta {
namespace {

class Descriptor {
public:
    explicit Descriptor(int value) : value_(value)
    {
        if (value_ < 0) {
            throw StopRun(ExitCode::kFailure, fmt::format("no socket: {}", std::strerror(errno)));
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { (void)close(value_); }
    [[nodiscard]] int get() const { return value_; }

private:
    int value_;
};

sockaddr_un AddressOf(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        throw StopRun(ExitCode::kFailure, fmt::format("the path of the trace socket is too long: {}", path));
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

// A socket file that nobody reads any more is what a killed viewer left.
void RemoveStaleSocket(const std::string& path)
{
    os::TraceSocket found = os::TraceSocket::kNone;
    if (os::Status status = os::LookAtTraceSocket(path, found); !status.ok()) {
        throw StopRun(ExitCode::kFailure, fmt::format("{} cannot be looked at: {}", path, status.text()));
    }
    if (found == os::TraceSocket::kForeign) {
        throw StopRun(ExitCode::kFailure, fmt::format("{} is not a socket of this user; it is left alone", path));
    }
    if (found == os::TraceSocket::kViewer) {
        throw StopRun(ExitCode::kFailure, "another trace viewer is running");
    }
    if (found != os::TraceSocket::kStale) {
        return;
    }
    if (os::Status status = os::RemoveFile(path); !status.ok() && status.failure() != os::Failure::kMissing) {
        throw StopRun(ExitCode::kFailure, fmt::format("the old {} cannot be removed: {}", path, status.text()));
    }
}

// The bound socket; its file goes with it.
class Viewer {
public:
    Viewer()
        : path_(os::TraceSocketPath()),
          native_(os::ToNativePath(path_)),
          socket_(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0))
    {
        const sockaddr_un address = AddressOf(native_);
        RemoveStaleSocket(path_);
        constexpr int kOn = 1;
        if (setsockopt(socket_.get(), SOL_SOCKET, SO_PASSCRED, &kOn, sizeof kOn) != 0) {
            throw StopRun(ExitCode::kFailure, fmt::format("senders cannot be told apart: {}", std::strerror(errno)));
        }
        // A burst of lines waits here instead of holding the writers up. Only root may go beyond the system's limit.
        constexpr int kBuffer = 8 << 20;
        if (setsockopt(socket_.get(), SOL_SOCKET, SO_RCVBUFFORCE, &kBuffer, sizeof kBuffer) != 0) {
            (void)setsockopt(socket_.get(), SOL_SOCKET, SO_RCVBUF, &kBuffer, sizeof kBuffer);
        }
        const mode_t before = umask(0177);  // the trace is for its owner's eyes
        const int bound = bind(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
        const int code = errno;
        (void)umask(before);
        if (bound != 0) {
            throw StopRun(ExitCode::kFailure, fmt::format("{} cannot be bound: {}", path_, std::strerror(code)));
        }
        (void)lstat(native_.c_str(), &file_);
    }
    Viewer(const Viewer&) = delete;
    Viewer& operator=(const Viewer&) = delete;
    ~Viewer()
    {
        struct stat now {};
        // Another viewer may have taken this one for dead and put its own socket here.
        if (lstat(native_.c_str(), &now) == 0 && now.st_ino == file_.st_ino) {
            (void)unlink(native_.c_str());
        }
    }

    [[nodiscard]] const std::string& path() const { return path_; }

    /// The next line and its sender's process; false after a while without one.
    bool next(std::string& line, pid_t& process)
    {
        pollfd waiting{socket_.get(), POLLIN, 0};
        if (poll(&waiting, 1, 500) <= 0) {
            return false;
        }
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(ucred))> control{};
        iovec part{buffer_.data(), buffer_.size()};
        msghdr message{};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        const ssize_t size = recvmsg(socket_.get(), &message, MSG_DONTWAIT);
        if (size < 0) {
            return false;
        }
        line.assign(buffer_.data(), static_cast<size_t>(size));
        process = 0;
        for (const cmsghdr* part2 = CMSG_FIRSTHDR(&message); part2 != nullptr;
             part2 = CMSG_NXTHDR(&message, const_cast<cmsghdr*>(part2))) {
            if (part2->cmsg_level != SOL_SOCKET || part2->cmsg_type != SCM_CREDENTIALS) {
                continue;
            }
            ucred sender{};
            std::memcpy(&sender, CMSG_DATA(part2), sizeof sender);
            process = sender.pid;
        }
        return true;
    }

private:
    std::string path_;
    std::string native_;  // as the system has it
    Descriptor socket_;
    struct stat file_ {};
    std::array<char, size_t{256} * 1024> buffer_{};
};

std::string TimeOfDay()
{
    using namespace std::chrono;
    const auto now = system_clock::now();
    const time_t seconds = system_clock::to_time_t(now);
    std::tm local{};
    (void)localtime_r(&seconds, &local);
    const auto milliseconds = duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    return fmt::format("{:02}:{:02}:{:02}.{:03}", local.tm_hour, local.tm_min, local.tm_sec, milliseconds);
}

// The name is looked up once: a short-lived process may be gone at its next line.
std::string ProcessText(pid_t process)
{
    static std::map<pid_t, std::string> names;
    const auto [entry, isNew] = names.try_emplace(process);
    if (isNew) {
        std::string name;
        (void)os::ReadText(fmt::format("/proc/{}/comm", process), name);
        while (!name.empty() && name.back() == '\n') {
            name.pop_back();
        }
        entry->second = fmt::format("{}[{}]", name.empty() ? "?" : Printable(name), process);
    }
    return entry->second;
}

}  // namespace

ExitCode RunTrace()
{
    os::CatchInterrupts();
    const auto viewer = std::make_unique<Viewer>();
    (void)std::fprintf(stderr, "Watching %s; Ctrl-C ends.\n", Printable(viewer->path()).c_str());
    std::string line;
    pid_t process = 0;
    while (!os::Interrupted()) {
        if (!viewer->next(line, process)) {
            continue;
        }
        while (!line.empty() && (line.back() == '\n' || line.back() == '\0')) {
            line.pop_back();
        }
        const std::string shown = fmt::format("{} {} {}\n", TimeOfDay(), ProcessText(process), Printable(line));
        const bool written = std::fwrite(shown.data(), 1, shown.size(), stdout) == shown.size();
        if (!written || std::fflush(stdout) != 0) {
            break;  // Whoever read the lines has gone.
        }
    }
    return ExitCode::kSuccess;
}

}  // namespace kesta
