#include "os/library_mutex.h"

#include <windows.h>

namespace kesta::os {

LibraryMutex ReadLibraryMutex()
{
    LibraryMutex mutex;
    HANDLE handle = OpenMutexW(SYNCHRONIZE | MUTEX_MODIFY_STATE, FALSE, L"NORVIK_KESTA_DB_ACCESS_MUTEX");
    if (handle == nullptr) {
        return mutex;
    }
    const DWORD answer = WaitForSingleObject(handle, 0);
    mutex.isKnown = answer != WAIT_FAILED;
    mutex.isHeld = answer == WAIT_TIMEOUT;  // By whom the system does not tell.
    if (answer == WAIT_OBJECT_0 || answer == WAIT_ABANDONED) {
        (void)ReleaseMutex(handle);
    }
    (void)CloseHandle(handle);
    return mutex;
}

}  // namespace kesta::os
