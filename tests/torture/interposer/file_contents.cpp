// What is done to open files: reading, writing, syncing, locking, mapping, closing.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "next.h"
#include "operation_log.h"
#include "plan.h"

using namespace kesta::torture;

namespace {

/// Whether a planted lie is about this open file.
bool IsLiedAbout(int file, const char* suffix) noexcept
{
    if (suffix[0] == '\0') {
        return false;
    }
    char link[32];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    char path[1024];
    const ssize_t length = NEXT(readlink)(link, path, sizeof path - 1);
    if (length < 0) {
        return false;
    }
    path[length] = '\0';
    return EndsWith(path, suffix);
}

template <class Transfer>
ssize_t Read(size_t length, Transfer&& transfer) noexcept
{
    const Action action = Ask(Kind::kRead);
    if (action == Action::kFail) {
        errno = TheState().plan.error;
        return -1;
    }
    return transfer(action == Action::kShort ? length / 2 : length);
}

/// `position` is where the bytes go, `transfer` writes so many of them.
template <class Transfer>
ssize_t Write(int file, const void* bytes, size_t length, off64_t position, Transfer&& transfer) noexcept
{
    const Action action = Ask(Kind::kWrite);
    if (action == Action::kFail) {
        errno = TheState().plan.error;
        return -1;
    }
    const State& state = TheState();
    if (action == Action::kPretend || (state.armed && IsLiedAbout(file, state.lies.loseWritesOf))) {
        return static_cast<ssize_t>(length);
    }
    const bool half = action == Action::kShort || action == Action::kKillMiddle;
    const ssize_t written = transfer(half ? length / 2 : length);
    if (written > 0) {
        Log(Operation::kWrite, file, position, bytes, static_cast<size_t>(written));
    }
    Passed(action);
    return written;
}

/// A call that changes something and either passes or fails.
template <class Call>
int Change(Kind kind, Call&& call) noexcept
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

int Sync(int file, int (*next)(int)) noexcept
{
    return Change(Kind::kSync, [&] {
        if (TheState().armed && IsLiedAbout(file, TheState().lies.skipSyncsOf)) {
            return 0;
        }
        const int result = next(file);
        if (result == 0) {
            Log(Operation::kSync, file, 0, nullptr, 0);
        }
        return result;
    });
}

int Truncate(int file, off64_t size) noexcept
{
    return Change(Kind::kTruncate, [&] {
        const int result = NEXT(ftruncate64)(file, size);
        if (result == 0) {
            Log(Operation::kTruncate, file, size, nullptr, 0);
        }
        return result;
    });
}

int Control(int file, int command, void* argument) noexcept
{
    const bool isLock = command == F_SETLK || command == F_SETLKW || command == F_GETLK || command == F_OFD_SETLK ||
                        command == F_OFD_GETLK || command == F_OFD_SETLKW;
    if (isLock && Fails(Kind::kLock)) {
        return -1;
    }
    return NEXT(fcntl64)(file, command, argument);
}

}  // namespace

extern "C" {

ssize_t read(int file, void* bytes, size_t length)
{
    return Read(length, [&](size_t part) { return NEXT(read)(file, bytes, part); });
}
ssize_t pread(int file, void* bytes, size_t length, off_t position)
{
    return Read(length, [&](size_t part) { return NEXT(pread)(file, bytes, part, position); });
}
ssize_t pread64(int file, void* bytes, size_t length, off64_t position)
{
    return Read(length, [&](size_t part) { return NEXT(pread64)(file, bytes, part, position); });
}

ssize_t write(int file, const void* bytes, size_t length)
{
    if (!TheState().armed) {
        return NEXT(write)(file, bytes, length);
    }
    const off64_t position = lseek64(file, 0, SEEK_CUR);
    return Write(file, bytes, length, position, [&](size_t part) { return NEXT(write)(file, bytes, part); });
}
ssize_t pwrite(int file, const void* bytes, size_t length, off_t position)
{
    return Write(file, bytes, length, position, [&](size_t part) { return NEXT(pwrite)(file, bytes, part, position); });
}
ssize_t pwrite64(int file, const void* bytes, size_t length, off64_t position)
{
    return Write(file, bytes, length, position,
                 [&](size_t part) { return NEXT(pwrite64)(file, bytes, part, position); });
}

int fsync(int file)
{
    return Sync(file, NEXT(fsync));
}
int fdatasync(int file)
{
    return Sync(file, NEXT(fdatasync));
}

int ftruncate(int file, off_t size) noexcept
{
    return Truncate(file, size);
}
int ftruncate64(int file, off64_t size) noexcept
{
    return Truncate(file, size);
}

int fcntl(int file, int command, ...)
{
    va_list list;
    va_start(list, command);
    void* argument = va_arg(list, void*);
    va_end(list);
    return Control(file, command, argument);
}
int fcntl64(int file, int command, ...)
{
    va_list list;
    va_start(list, command);
    void* argument = va_arg(list, void*);
    va_end(list);
    return Control(file, command, argument);
}
int flock(int file, int operation) noexcept
{
    return Fails(Kind::kLock) ? -1 : NEXT(flock)(file, operation);
}

void* mmap(void* address, size_t length, int protection, int flags, int file, off_t offset) noexcept
{
    if (file >= 0 && Fails(Kind::kMap)) {
        return MAP_FAILED;
    }
    return NEXT(mmap)(address, length, protection, flags, file, offset);
}
void* mmap64(void* address, size_t length, int protection, int flags, int file, off64_t offset) noexcept
{
    if (file >= 0 && Fails(Kind::kMap)) {
        return MAP_FAILED;
    }
    return NEXT(mmap64)(address, length, protection, flags, file, offset);
}

int fstat(int file, struct stat* status) noexcept
{
    return Fails(Kind::kStat) ? -1 : NEXT(fstat)(file, status);
}
int fstat64(int file, struct stat64* status) noexcept
{
    return Fails(Kind::kStat) ? -1 : NEXT(fstat64)(file, status);
}
int fchmod(int file, mode_t mode) noexcept
{
    return Fails(Kind::kAttributes) ? -1 : NEXT(fchmod)(file, mode);
}
int fchown(int file, uid_t user, gid_t group) noexcept
{
    return Fails(Kind::kAttributes) ? -1 : NEXT(fchown)(file, user, group);
}

int close(int file)
{
    const Action action = Ask(Kind::kClose);
    Log(Operation::kClose, file, 0, nullptr, 0);
    const int result = NEXT(close)(file);  // an error does not keep the system from closing
    Passed(action);
    if (action != Action::kFail) {
        return result;
    }
    errno = TheState().plan.error;
    return -1;
}
}
