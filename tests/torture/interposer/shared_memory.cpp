// The shared memory in which the mutex of all processes lies: each run of the bench gets one of its own.
#include <sys/ipc.h>
#include <sys/shm.h>

#include "next.h"
#include "plan.h"

using namespace kesta::torture;

namespace {

/// In the place of the library's own key, from the run's name alone, so that the bench can find the segment again.
key_t KeyOf(const char* name) noexcept
{
    uint32_t hash = 2166136261U;  // FNV-1a
    for (; *name != '\0'; ++name) {
        hash = (hash ^ static_cast<unsigned char>(*name)) * 16777619U;
    }
    return static_cast<key_t>(hash | 1);
}

}  // namespace

extern "C" {

int shmget(key_t key, size_t size, int flags) noexcept
{
    if (Fails(Kind::kShared)) {
        return -1;
    }
    const char* own = TheState().mutexName;
    return NEXT(shmget)(own[0] != '\0' ? KeyOf(own) : key, size, flags);
}
void* shmat(int segment, const void* address, int flags) noexcept
{
    return Fails(Kind::kShared) ? reinterpret_cast<void*>(-1) : NEXT(shmat)(segment, address, flags);
}
int shmctl(int segment, int command, shmid_ds* status) noexcept
{
    return Fails(Kind::kShared) ? -1 : NEXT(shmctl)(segment, command, status);
}

/// Removes the run's mutex, with all that processes of earlier trials have noted there.
void torture_forget_mutex(const char* name)
{
    const int segment = NEXT(shmget)(KeyOf(name), 0, 0);
    if (segment >= 0) {
        NEXT(shmctl)(segment, IPC_RMID, nullptr);
    }
}
}
