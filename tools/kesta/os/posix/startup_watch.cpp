// The system runs what stands in .preinit_array before any library is initialised. A timer is set there, and its signal
// comes while the library waits. kesta doctor, which is to tell what is wrong, tells it then instead of waiting.
//
// Nothing of C++ has been initialised by then, and the handler interrupts whatever runs: only functions of the system
// are called here.
#include "os/startup_watch.h"

#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "base/exit_codes.h"
#include "os/posix/mutex_owner.h"

namespace kesta::os {
namespace {

constexpr int kPatience = 2;         // seconds
constexpr int kDoctorPatience = 12;  // a call may wait for the database for ten seconds, and that is no finding

enum class Asked { kOther, kDoctor, kDoctorJson };
volatile std::sig_atomic_t asked = 0;

void SetTimer(int seconds)
{
    const itimerval timer = {{0, 0}, {seconds, 0}};
    (void)setitimer(ITIMER_REAL, &timer, nullptr);
}

using ProcessName = std::array<char, 32>;

ProcessName NameOf(long thread)
{
    ProcessName name = {"?"};
    std::array<char, 64> path = {};
    (void)std::snprintf(path.data(), path.size(), "/proc/%ld/comm", thread);
    const int file = open(path.data(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return name;
    }
    const ssize_t size = read(file, name.data(), name.size() - 1);
    (void)close(file);
    for (ssize_t i = 0; i < size; ++i) {
        char& c = name[static_cast<size_t>(i)];
        c = c == '\n' ? '\0' : c < ' ' || c == '"' || c == '\\' || c > '~' ? '?' : c;
    }
    return name;
}

// 0 if the start waits for something else.
long Holder()
{
    platform::SharedMutex* shared = platform::AttachSegment(platform::SegmentKey(kLibraryMutexName));
    if (shared == nullptr) {
        return 0;
    }
    const long thread = IsMutexReadable(*shared) ? OwnerOf(*shared) : 0;
    platform::DetachSegment(shared);
    return thread;
}

// The holder, and what stands around it.
void Tell(int file, const char* before, long thread, const char* after)
{
    std::array<char, 1024> text = {};
    const int size =
        std::snprintf(text.data(), text.size(), "%s%s[%ld]%s", before, NameOf(thread).data(), thread, after);
    if (size > 0) {
        (void)!write(file, text.data(), static_cast<size_t>(size));
    }
}

constexpr const char* kFinding =
    " is in a call to the library and does not come to its end. Every other program waits for it.\n"
    "  What to do: end that program, then run kesta doctor again for the other checks.\n";
constexpr const char* kJsonBegin =
    "{\"checks\": [{\"check\": \"mutex\", \"state\": \"error\"}], \"findings\": [{\"check\": \"mutex\", "
    "\"severity\": \"error\", \"text\": \"";
constexpr const char* kJsonEnd =
    " is in a call to the library and does not come to its end. Every other program waits for it.\", \"advice\": "
    "\"End that program, then run kesta doctor again for the other checks.\", \"items\": [], \"fixable\": false, "
    "\"fixed\": false, \"outcome\": null}]}\n";

void OnAlarm(int)
{
    const auto what = static_cast<Asked>(asked);
    const long thread = Holder();
    if (thread == 0) {
        SetTimer(1);
        return;
    }
    if (what == Asked::kOther) {
        Tell(STDERR_FILENO, "kesta: waiting for ", thread, ", which is in a call to the library\n");
        return;
    }
    if (what == Asked::kDoctorJson) {
        Tell(STDOUT_FILENO, kJsonBegin, thread, kJsonEnd);
    } else {
        Tell(STDOUT_FILENO, "error (the library's mutex):\n  ", thread, kFinding);
    }
    _exit(static_cast<int>(ExitCode::kDatabase));
}

// Before a sanitizer is ready.
#define KESTA_EARLY __attribute__((no_sanitize("address", "undefined", "thread")))

KESTA_EARLY void BeginWatch(int argc, char** argv, char**)
{
    const bool isDoctor = argc > 1 && std::strcmp(argv[1], "doctor") == 0;
    bool isJson = false;
    for (int i = 2; isDoctor && i < argc; ++i) {
        isJson = isJson || std::strcmp(argv[i], "--json") == 0;
    }
    asked = static_cast<int>(isJson ? Asked::kDoctorJson : isDoctor ? Asked::kDoctor : Asked::kOther);
    struct sigaction action {};
    action.sa_handler = OnAlarm;
    action.sa_flags = SA_RESTART;
    (void)sigaction(SIGALRM, &action, nullptr);
    SetTimer(isDoctor ? kDoctorPatience : kPatience);
}

__attribute__((section(".preinit_array"), used)) void (*const kBegin)(int, char**, char**) = BeginWatch;

}  // namespace

void EndStartupWatch()
{
    SetTimer(0);
    (void)std::signal(SIGALRM, SIG_DFL);
}

}  // namespace kesta::os
