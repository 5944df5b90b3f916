#include "faults/system_fault.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace kesta::test {
namespace {

struct Armed {
    bool armed = false;
    bool struck = false;
    int remaining = 0;
    int error = 0;
    Fault fault = Fault::kOnce;
};

thread_local Armed state;

bool Strike() noexcept
{
    if (!state.armed || (state.struck && state.fault == Fault::kOnce) || state.remaining-- > 0) {
        return false;
    }
    state.remaining = 0;
    state.struck = true;
    errno = state.error;
    return true;
}

}  // namespace

void SystemFault::arm(int nth, int error, Fault fault) noexcept
{
    state = {true, false, nth, error, fault};
}

bool SystemFault::disarm() noexcept
{
    state.armed = false;
    return state.struck;
}

}  // namespace kesta::test

// In the place of the C library's, for the library's code is linked into this program.
extern "C" {

int access(const char* path, int mode) noexcept
{
    return kesta::test::Strike() ? -1 : static_cast<int>(syscall(SYS_faccessat, AT_FDCWD, path, mode));
}

int stat(const char* path, struct stat* status) noexcept
{
    return kesta::test::Strike() ? -1 : fstatat(AT_FDCWD, path, status, 0);
}

int fstat(int file, struct stat* status) noexcept
{
    return kesta::test::Strike() ? -1 : fstatat(file, "", status, AT_EMPTY_PATH);
}

ssize_t read(int file, void* buffer, size_t bytes)
{
    return kesta::test::Strike() ? -1 : syscall(SYS_read, file, buffer, bytes);
}

ssize_t pread(int file, void* buffer, size_t bytes, off_t offset)
{
    return kesta::test::Strike() ? -1 : syscall(SYS_pread64, file, buffer, bytes, offset);
}

ssize_t pread64(int file, void* buffer, size_t bytes, off64_t offset)
{
    return kesta::test::Strike() ? -1 : syscall(SYS_pread64, file, buffer, bytes, offset);
}
}
