#include "plan.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "operation_log.h"

namespace kesta::torture {
namespace {

thread_local State state __attribute__((tls_model("initial-exec")));

/// The kinds of the calls counted since the arming, for the bench to know what there is to fail.
constexpr size_t kMostKinds = size_t{1} << 16;
std::array<uint8_t, kMostKinds> kinds;

/// Straight to the system: the interposer's own calls are not to be counted.
void DoPlanted() noexcept
{
    switch (state.plan.plant) {
        case Plant::kNone:
            return;
        case Plant::kDeleteDatabase:
            syscall(SYS_unlinkat, AT_FDCWD, state.databasePath, 0);
            return;
        case Plant::kLeakFile:
            syscall(SYS_openat, AT_FDCWD, "/dev/null", O_RDONLY | O_CLOEXEC, 0);
            return;
        case Plant::kHang:
            for (;;) {
                pause();
            }
        case Plant::kCrash:
            raise(SIGSEGV);
            return;
        case Plant::kDamageDatabase: {
            const long file = syscall(SYS_openat, AT_FDCWD, state.databasePath, O_WRONLY | O_CLOEXEC, 0);
            syscall(SYS_pwrite64, file, "damage", 6, off_t{4096});
            syscall(SYS_close, file);
            return;
        }
    }
}

}  // namespace

State& TheState() noexcept
{
    return state;
}

void Kill() noexcept
{
    syscall(SYS_kill, getpid(), SIGKILL);
    for (;;) {
        pause();
    }
}

Action Ask(Kind kind) noexcept
{
    if (!state.armed) {
        return Action::kNone;
    }
    const Plan& plan = state.plan;
    if ((plan.kinds >> static_cast<uint32_t>(kind) & 1) == 0) {
        return Action::kNone;
    }
    const int64_t number = state.counted++;
    if (number < static_cast<int64_t>(kMostKinds)) {
        kinds[static_cast<size_t>(number)] = static_cast<uint8_t>(kind);
    }
    if (state.struck && kind == state.struckKind && state.repeatsLeft > 0) {
        --state.repeatsLeft;
        return plan.action;
    }
    if (number != plan.nth) {
        return Action::kNone;
    }
    state.struck = true;
    state.struckKind = kind;
    state.repeatsLeft = plan.repeats;
    DoPlanted();
    if (plan.action == Action::kKillBefore) {
        Kill();
    }
    return plan.action;
}

bool Fails(Kind kind) noexcept
{
    const Action action = Ask(kind);
    if (action != Action::kFail) {
        return false;
    }
    errno = state.plan.error;
    return true;
}

void Passed(Action action) noexcept
{
    if (action == Action::kKillAfter || action == Action::kKillMiddle) {
        Kill();
    }
}

bool EndsWith(const char* name, const char* suffix) noexcept
{
    const size_t length = std::strlen(name);
    const size_t ending = std::strlen(suffix);
    return ending > 0 && length >= ending && std::memcmp(name + length - ending, suffix, ending) == 0;
}

namespace {

class Armed {
public:
    Armed() noexcept
    {
        state.counted = 0;
        state.struck = false;
        state.armed = true;
    }
    ~Armed() { state.armed = false; }
    Armed(const Armed&) = delete;
    Armed& operator=(const Armed&) = delete;
};

}  // namespace
}  // namespace kesta::torture

using namespace kesta::torture;

extern "C" {

void torture_plan(const Plan* plan)
{
    TheState().plan = *plan;
}

void torture_lies(const char* loseWritesOf, const char* skipSyncsOf)
{
    std::strncpy(TheState().lies.loseWritesOf, loseWritesOf, sizeof(Lies::loseWritesOf) - 1);
    std::strncpy(TheState().lies.skipSyncsOf, skipSyncsOf, sizeof(Lies::skipSyncsOf) - 1);
}

/// Where the database lies, and what is appended to the name of the shared mutex, so that runs side by side do not
/// meet.
void torture_place(const char* databasePath, const char* mutexName)
{
    std::strncpy(TheState().databasePath, databasePath, sizeof(State::databasePath) - 1);
    std::strncpy(TheState().mutexName, mutexName, sizeof(State::mutexName) - 1);
}

/// Any export: its parameters are pointers and 32-bit integers, at most four, all of which go in registers.
int32_t torture_call(int32_t (*function)(uintptr_t, uintptr_t, uintptr_t, uintptr_t), uintptr_t first, uintptr_t second,
                     uintptr_t third, uintptr_t fourth)
{
    const Armed armed;
    return function(first, second, third, fourth);
}

void* torture_load(const char* path)
{
    const Armed armed;
    return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

int torture_unload(void* handle)
{
    const Armed armed;
    return dlclose(handle);
}

/// How many calls of the plan's kinds the last armed stretch made, and of which kinds.
int64_t torture_counted()
{
    return TheState().counted;
}
const uint8_t* torture_kinds()
{
    return kinds.data();
}
int32_t torture_struck()
{
    return TheState().struck ? 1 : 0;
}
}
