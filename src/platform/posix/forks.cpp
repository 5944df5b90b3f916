#include "platform/forks.h"

#include <pthread.h>

namespace kesta::platform {

void WatchForks(void (*before)(), void (*inParent)(), void (*inChild)()) noexcept
{
    static bool watching = false;
    watching = watching || pthread_atfork(before, inParent, inChild) == 0;
}

}  // namespace kesta::platform
