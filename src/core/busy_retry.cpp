#include "core/busy_retry.h"

#include "core/trace.h"

namespace kesta {

int BusyRetry(void* /*unused*/, int tries) noexcept
{
    constexpr int kLastTry = 100;
    constexpr int kTryAgain = 5;  // Deliberate: any number but 0 would do, 5 it is.
    if (tries > kLastTry) {
        DbTrace("Database busy, failed.\n");
        return 0;
    }
    DbTrace("Database busy, try again.\n");
    platform::services.sleep(100);
    return kTryAgain;
}

}  // namespace kesta
