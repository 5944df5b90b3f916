// The memory behind a named mutex: a segment that all processes of the user attach. A System V segment, for unlike a
// file in memory it cannot be cut short under those who use it.
#pragma once

#include <pthread.h>
#include <sys/ipc.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace kesta::platform {

enum class SegmentStage : uint32_t {
    kNew,  // as the system gives it out, zeroed
    kBeingMade,
    kReady,
    kAbandoned,  // its maker did not come to an end
};

/// What lies in the segment. What stands before the mutex is laid out alike for programs of 32 and 64 bits.
struct SharedMutex {
    std::atomic<SegmentStage> stage;
    std::atomic<uint32_t> needsLockFile;  // somebody cannot use the mutex: everybody takes the lock file as well
    std::atomic<uint32_t> heldAlone;      // somebody is in a call without the lock file, or died in one
    uint32_t mutexBytes;
    uint64_t pidSpace;
    pthread_mutex_t mutex;
};
static_assert(offsetof(SharedMutex, pidSpace) == 16);
static_assert(std::atomic<uint32_t>::is_always_lock_free);

inline constexpr size_t kSegmentBytes = 4096;

/// The segment's key: of the name, the user, and the /dev/shm that this process sees, so that programs shut off from
/// each other's shared memory have mutexes of their own.
key_t SegmentKey(const char* name) noexcept;

/// Null when there is no segment to be had that is the user's own.
SharedMutex* AttachSegment(key_t key) noexcept;
void DetachSegment(SharedMutex* shared) noexcept;

/// Sets the mutex up when nobody has yet. False when it is not for this process: its holder is known by a thread id,
/// which in another PID name space means another thread, and by its layout.
bool JoinMutex(SharedMutex& shared) noexcept;

bool InitialiseMutex(pthread_mutex_t& mutex, int processShared) noexcept;

void SleepMs(int milliseconds) noexcept;

}  // namespace kesta::platform
