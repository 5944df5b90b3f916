#include "os/library_mutex.h"

#include <unistd.h>

#include <cstdlib>

#include "os/files.h"
#include "os/posix/mutex_owner.h"

namespace kesta::os {
namespace {

// The process of a thread; 0 if there is none.
long ProcessOf(long thread)
{
    constexpr std::string_view kField = "Tgid:";
    std::string status;
    (void)ReadText("/proc/" + std::to_string(thread) + "/status", status);
    const auto found = status.find(kField);
    return found == std::string::npos ? 0 : std::strtol(status.c_str() + found + kField.size(), nullptr, 10);
}

}  // namespace

LibraryMutex ReadLibraryMutex()
{
    LibraryMutex mutex;
    platform::SharedMutex* shared = platform::AttachSegment(platform::SegmentKey(kLibraryMutexName));
    if (shared == nullptr) {
        return mutex;
    }
    mutex.needsLockFile = shared->needsLockFile.load() != 0;
    mutex.isKnown = IsMutexReadable(*shared);
    const long thread = mutex.isKnown ? OwnerOf(*shared) : 0;
    platform::DetachSegment(shared);
    mutex.process = thread == 0 ? 0 : ProcessOf(thread);
    // The system gives a dead holder's mutex to whoever comes next.
    mutex.isHeld = mutex.process != 0;
    if (mutex.isHeld) {
        (void)ReadText("/proc/" + std::to_string(mutex.process) + "/comm", mutex.name);
        while (mutex.name.ends_with('\n')) {
            mutex.name.pop_back();
        }
    }
    return mutex;
}

}  // namespace kesta::os
