#include "platform/posix/shared_mutex.h"

#include <sys/shm.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>

namespace kesta::platform {
namespace {

constexpr int kMakerPatienceMs = 1000;

enum class What { kDevice, kInode };

/// 0 where the system does not tell.
uint64_t NumberOf(const char* path, What what) noexcept
{
    struct stat status = {};
    if (stat(path, &status) != 0) {
        return 0;
    }
    return what == What::kDevice ? status.st_dev : status.st_ino;
}

/// Somebody else's segment under this key could be taken away or changed under us.
bool IsOwn(int segment) noexcept
{
    constexpr unsigned kPrivate = 0600;
    constexpr unsigned kPermissions = 0777;
    shmid_ds status = {};
    return shmctl(segment, IPC_STAT, &status) == 0 && status.shm_perm.uid == geteuid() &&
           status.shm_perm.cuid == geteuid() && (status.shm_perm.mode & kPermissions) == kPrivate &&
           status.shm_segsz >= kSegmentBytes;
}

void Make(SharedMutex& shared, uint64_t pidSpace) noexcept
{
    shared.pidSpace = pidSpace;
    shared.mutexBytes = InitialiseMutex(shared.mutex, PTHREAD_PROCESS_SHARED) ? sizeof(pthread_mutex_t) : 0;
    SegmentStage stage = SegmentStage::kBeingMade;
    shared.stage.compare_exchange_strong(stage, SegmentStage::kReady);
}

/// Waits for another process that makes it. One that does not come to an end may have died, or may go on later: nobody
/// uses the mutex then.
void WaitUntilMade(SharedMutex& shared) noexcept
{
    for (int waited = 0; shared.stage.load() == SegmentStage::kBeingMade; ++waited) {
        if (waited == kMakerPatienceMs) {
            SegmentStage stage = SegmentStage::kBeingMade;
            shared.stage.compare_exchange_strong(stage, SegmentStage::kAbandoned);
            return;
        }
        SleepMs(1);
    }
}

}  // namespace

key_t SegmentKey(const char* name) noexcept
{
    uint64_t hash = 14695981039346656037U;  // FNV-1a
    const auto add = [&hash](uint64_t value) { hash = (hash ^ value) * 1099511628211U; };
    for (const char* c = name; *c != '\0'; ++c) {
        add(static_cast<unsigned char>(*c));
    }
    add(geteuid());
    add(NumberOf("/dev/shm", What::kDevice));
    const auto key = static_cast<key_t>(static_cast<uint32_t>(hash ^ (hash >> 32)));
    return key == IPC_PRIVATE ? 1 : key;
}

SharedMutex* AttachSegment(key_t key) noexcept
{
    const int segment = shmget(key, kSegmentBytes, IPC_CREAT | 0600);
    if (segment < 0 || !IsOwn(segment)) {
        return nullptr;
    }
    void* memory = shmat(segment, nullptr, 0);
    if (memory == reinterpret_cast<void*>(-1)) {  // NOLINT(performance-no-int-to-ptr): what shmat fails with
        return nullptr;
    }
    return static_cast<SharedMutex*>(memory);
}

void DetachSegment(SharedMutex* shared) noexcept
{
    (void)shmdt(shared);
}

bool JoinMutex(SharedMutex& shared) noexcept
{
    const uint64_t pidSpace = NumberOf("/proc/self/ns/pid", What::kInode);
    SegmentStage stage = SegmentStage::kNew;
    if (shared.stage.compare_exchange_strong(stage, SegmentStage::kBeingMade)) {
        Make(shared, pidSpace);
    } else {
        WaitUntilMade(shared);
    }
    return shared.stage.load() == SegmentStage::kReady && shared.mutexBytes == sizeof(pthread_mutex_t) &&
           shared.pidSpace == pidSpace && pidSpace != 0;
}

bool InitialiseMutex(pthread_mutex_t& mutex, int processShared) noexcept
{
    pthread_mutexattr_t attributes;
    if (pthread_mutexattr_init(&attributes) != 0) {
        return false;
    }
    const bool done = pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE) == 0 &&
                      pthread_mutexattr_setpshared(&attributes, processShared) == 0 &&
                      pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST) == 0 &&
                      pthread_mutex_init(&mutex, &attributes) == 0;
    pthread_mutexattr_destroy(&attributes);
    return done;
}

void SleepMs(int milliseconds) noexcept
{
    const timespec time = {0, long{milliseconds} * 1'000'000};
    nanosleep(&time, nullptr);
}

}  // namespace kesta::platform
