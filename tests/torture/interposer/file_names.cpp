// What is done to names: opening, deleting, renaming, asking. And what would cost or change time.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <ctime>

#include "next.h"
#include "operation_log.h"
#include "plan.h"

using namespace kesta::torture;

namespace {

/// The trace looks for its viewer by the clock: what it asks must not move the numbers of the other calls.
bool IsTrace(const char* path) noexcept
{
    return EndsWith(path, ".trace");
}

template <class Call>
int Asked(Kind kind, const char* path, Call&& call) noexcept
{
    return !IsTrace(path) && Fails(kind) ? -1 : call();
}

/// A name that comes, goes or changes.
template <class Call>
int Changed(Kind kind, Call&& call) noexcept
{
    const Action action = Ask(kind);
    if (action == Action::kFail) {
        errno = TheState().plan.error;
        return -1;
    }
    if (action == Action::kPretend) {
        return 0;
    }
    const int result = call();
    Passed(action);
    return result;
}

/// Notes the file under its full name, whatever folder the name was relative to.
void LogOpened(int file, const char* path, int flags) noexcept
{
    if (!TheState().armed) {
        return;
    }
    char own[32];
    std::snprintf(own, sizeof own, "/proc/self/fd/%d", file);
    char full[4096];
    const ssize_t length = path[0] == '/' ? -1 : NEXT(readlink)(own, full, sizeof full);
    if (length < 0) {
        Log(Operation::kOpen, file, flags, path, __builtin_strlen(path));
    } else {
        Log(Operation::kOpen, file, flags, full, static_cast<size_t>(length));
    }
}

template <class Call>
int Opened(const char* path, int flags, Call&& call) noexcept
{
    const Action action = Ask(Kind::kOpen);
    if (action == Action::kFail) {
        errno = TheState().plan.error;
        return -1;
    }
    const int file = call();
    if (file >= 0) {
        LogOpened(file, path, flags);
    }
    Passed(action);
    return file;
}

mode_t ModeOf(va_list list) noexcept
{
    return va_arg(list, mode_t);
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...)
{
    va_list list;
    va_start(list, flags);
    const mode_t mode = ModeOf(list);
    va_end(list);
    return Opened(path, flags, [&] { return NEXT(open)(path, flags, mode); });
}
int open64(const char* path, int flags, ...)
{
    va_list list;
    va_start(list, flags);
    const mode_t mode = ModeOf(list);
    va_end(list);
    return Opened(path, flags, [&] { return NEXT(open64)(path, flags, mode); });
}
int openat(int folder, const char* path, int flags, ...)
{
    va_list list;
    va_start(list, flags);
    const mode_t mode = ModeOf(list);
    va_end(list);
    return Opened(path, flags, [&] { return NEXT(openat)(folder, path, flags, mode); });
}
int unlink(const char* path) noexcept
{
    return Changed(Kind::kUnlink, [&] {
        const int result = NEXT(unlink)(path);
        if (result == 0) {
            LogPath(Operation::kUnlink, path);
        }
        return result;
    });
}
int rename(const char* from, const char* to) noexcept
{
    return Changed(Kind::kRename, [&] {
        const int result = NEXT(rename)(from, to);
        if (result == 0) {
            LogPaths(Operation::kRename, from, to);
        }
        return result;
    });
}
int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept
{
    return Changed(Kind::kRename, [&] {
        const int result = NEXT(renameat2)(fromFolder, from, toFolder, to, flags);
        if (result == 0) {
            LogPaths(Operation::kRename, from, to);
        }
        return result;
    });
}
int link(const char* from, const char* to) noexcept
{
    return Changed(Kind::kRename, [&] {
        const int result = NEXT(link)(from, to);
        if (result == 0) {
            LogPaths(Operation::kLink, from, to);
        }
        return result;
    });
}
int mkdir(const char* path, mode_t mode) noexcept
{
    return Changed(Kind::kMakeFolder, [&] {
        const int result = NEXT(mkdir)(path, mode);
        if (result == 0) {
            LogPath(Operation::kMakeFolder, path);
        }
        return result;
    });
}

int access(const char* path, int mode) noexcept
{
    return Asked(Kind::kStat, path, [&] { return NEXT(access)(path, mode); });
}
int stat(const char* path, struct stat* status) noexcept
{
    return Asked(Kind::kStat, path, [&] { return NEXT(stat)(path, status); });
}
int stat64(const char* path, struct stat64* status) noexcept
{
    return Asked(Kind::kStat, path, [&] { return NEXT(stat64)(path, status); });
}
int lstat(const char* path, struct stat* status) noexcept
{
    return Asked(Kind::kStat, path, [&] { return NEXT(lstat)(path, status); });
}
int lstat64(const char* path, struct stat64* status) noexcept
{
    return Asked(Kind::kStat, path, [&] { return NEXT(lstat64)(path, status); });
}
int utimes(const char* path, const timeval times[2]) noexcept
{
    return Asked(Kind::kAttributes, path, [&] { return NEXT(utimes)(path, times); });
}
ssize_t readlink(const char* path, char* bytes, size_t room) noexcept
{
    return Fails(Kind::kName) ? -1 : NEXT(readlink)(path, bytes, room);
}
char* getcwd(char* bytes, size_t room) noexcept
{
    return Fails(Kind::kName) ? nullptr : NEXT(getcwd)(bytes, room);
}
int socket(int domain, int type, int protocol) noexcept
{
    return Fails(Kind::kSocket) ? -1 : NEXT(socket)(domain, type, protocol);
}

// Waiting for a lock that a fault withholds would cost seconds a trial. Without a plan the wait is for another process.
int nanosleep(const timespec* wanted, timespec* left)
{
    return TheState().armed && TheState().plan.kinds != 0 ? 0 : NEXT(nanosleep)(wanted, left);
}
// Rows carry the time of the call: a fixed one, so that two runs leave the same rows.
time_t time(time_t* out) noexcept
{
    constexpr time_t kFixed = 1'700'000'000;
    const time_t now = TheState().armed ? kFixed : NEXT(time)(nullptr);
    if (out != nullptr) {
        *out = now;
    }
    return now;
}
}
