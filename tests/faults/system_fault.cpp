#include "faults/system_fault.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace kesta::test {
namespace {

enum class Call { kAccess, kStat, kStatOpen, kRead };

struct Armed {
    bool armed = false;
    bool struck = false;
    int remaining = 0;
    int error = 0;
    Fault fault = Fault::kOnce;
    Call first = Call::kAccess;  // which one has failed
};

thread_local Armed state;

bool FailsAgain(Call call) noexcept
{
    return state.fault == Fault::kFromThenOn || (state.fault == Fault::kLikeItFromThenOn && state.first == call);
}

bool Strike(Call call) noexcept
{
    if (!state.armed || (state.struck ? !FailsAgain(call) : state.remaining-- > 0)) {
        return false;
    }
    if (!state.struck) {
        state.first = call;
    }
    state.struck = true;
    errno = state.error;
    return true;
}

}  // namespace

void SystemFault::arm(int nth, int error, Fault fault) noexcept
{
    state = {true, false, nth, error, fault, {}};
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
    return kesta::test::Strike(kesta::test::Call::kAccess)
               ? -1
               : static_cast<int>(syscall(SYS_faccessat, AT_FDCWD, path, mode));
}

int stat(const char* path, struct stat* status) noexcept
{
    return kesta::test::Strike(kesta::test::Call::kStat) ? -1 : fstatat(AT_FDCWD, path, status, 0);
}

int fstat(int file, struct stat* status) noexcept
{
    return kesta::test::Strike(kesta::test::Call::kStatOpen) ? -1 : fstatat(file, "", status, AT_EMPTY_PATH);
}

ssize_t read(int file, void* buffer, size_t bytes)
{
    return kesta::test::Strike(kesta::test::Call::kRead) ? -1 : syscall(SYS_read, file, buffer, bytes);
}

ssize_t pread(int file, void* buffer, size_t bytes, off_t offset)
{
    return kesta::test::Strike(kesta::test::Call::kRead) ? -1 : syscall(SYS_pread64, file, buffer, bytes, offset);
}

ssize_t pread64(int file, void* buffer, size_t bytes, off64_t offset)
{
    return kesta::test::Strike(kesta::test::Call::kRead) ? -1 : syscall(SYS_pread64, file, buffer, bytes, offset);
}
}
