// Who holds the library's mutex, from the memory in which it lies. Safe to call in a signal handler.
#pragma once

#include "platform/posix/shared_mutex.h"

namespace kesta::os {

inline constexpr const char* kLibraryMutexName = "NORVIK_KESTA_DB_ACCESS_MUTEX";

/// Whether the mutex in there is one for programs like this.
[[nodiscard]] inline bool IsMutexReadable(const platform::SharedMutex& shared)
{
    return shared.stage.load() == platform::SegmentStage::kReady && shared.mutexBytes == sizeof(pthread_mutex_t);
}

/// The thread that holds it; 0 if nobody does. There is no function that tells it: a robust mutex keeps it here, for
/// the system to know whose it was.
[[nodiscard]] inline long OwnerOf(const platform::SharedMutex& shared)
{
    return shared.mutex.__data.__owner;
}

}  // namespace kesta::os
