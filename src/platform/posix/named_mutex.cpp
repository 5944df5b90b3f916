#include "platform/named_mutex.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <new>

namespace kesta::platform {
namespace {

/// What lies in the shared memory object. A zeroed object, or one whose maker died halfway, has no mark.
struct SharedMutex {
    uint64_t mark;
    pthread_mutex_t mutex;
};

constexpr uint64_t kMark = 0x4b45535441440000 + sizeof(SharedMutex);

bool Initialise(pthread_mutex_t& mutex, int shared) noexcept
{
    pthread_mutexattr_t attributes;
    if (pthread_mutexattr_init(&attributes) != 0) return false;
    const bool done = pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE) == 0 &&
                      pthread_mutexattr_setpshared(&attributes, shared) == 0 &&
                      pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST) == 0 &&
                      pthread_mutex_init(&mutex, &attributes) == 0;
    pthread_mutexattr_destroy(&attributes);
    return done;
}

bool IsOwn(int file, off_t& size) noexcept
{
    struct stat status = {};
    // Somebody else's object of this name could be taken away or changed under us.
    if (fstat(file, &status) != 0 || status.st_uid != geteuid()) return false;
    size = status.st_size;
    return true;
}

/// Maps the object behind `file`, of which the caller holds the lock, and sets its mutex up when nobody has yet.
SharedMutex* MapShared(int file) noexcept
{
    off_t size = 0;
    if (!IsOwn(file, size)) return nullptr;
    if (size < static_cast<off_t>(sizeof(SharedMutex)) && ftruncate(file, sizeof(SharedMutex)) != 0) return nullptr;
    void* memory = mmap(nullptr, sizeof(SharedMutex), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (memory == MAP_FAILED) return nullptr;
    auto* shared = static_cast<SharedMutex*>(memory);
    if (shared->mark != kMark) {
        if (!Initialise(shared->mutex, PTHREAD_PROCESS_SHARED)) {
            munmap(memory, sizeof(SharedMutex));
            return nullptr;
        }
        shared->mark = kMark;
    }
    return shared;
}

SharedMutex* OpenShared(const char* name) noexcept
{
    char object[128];
    std::snprintf(object, sizeof object, "/%s.%u", name, static_cast<unsigned>(geteuid()));
    const int file = shm_open(object, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0) return nullptr;
    SharedMutex* shared = nullptr;
    if (flock(file, LOCK_EX) == 0) {
        shared = MapShared(file);
        flock(file, LOCK_UN);  // closing alone would not: the mapping keeps the file open
    }
    close(file);
    return shared;
}

/// Stands in where there is no shared memory.
SharedMutex processMutex;

}  // namespace

void NamedMutex::open(const char* name) noexcept
{
    SharedMutex* shared = OpenShared(name);
    if (shared == nullptr) {
        if (processMutex.mark != kMark && !Initialise(processMutex.mutex, PTHREAD_PROCESS_PRIVATE)) return;
        processMutex.mark = kMark;
        shared = &processMutex;
    }
    handle_ = shared;
}

void NamedMutex::close() noexcept
{
    if (handle_ != nullptr && handle_ != &processMutex) munmap(handle_, sizeof(SharedMutex));
    handle_ = nullptr;
}

void NamedMutex::lock() noexcept
{
    if (handle_ == nullptr) return;
    pthread_mutex_t* mutex = &static_cast<SharedMutex*>(handle_)->mutex;
    // The holder died in the middle of a call. The database heals itself by its journal, so nothing is left to repair.
    if (pthread_mutex_lock(mutex) == EOWNERDEAD) pthread_mutex_consistent(mutex);
}

void NamedMutex::unlock() noexcept
{
    if (handle_ != nullptr) pthread_mutex_unlock(&static_cast<SharedMutex*>(handle_)->mutex);
}

}  // namespace kesta::platform
