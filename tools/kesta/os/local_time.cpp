#include "os/local_time.h"

#include "os/system.h"

namespace kesta::os {

std::optional<LocalTime> ToLocalTime(int64_t utcSeconds)
{
    const auto time = LocalSeconds(utcSeconds);
    return time && IsStorable(*time) ? time : std::nullopt;
}

}  // namespace kesta::os
