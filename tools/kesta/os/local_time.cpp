#include "os/local_time.h"

#include "os/system.h"

namespace kesta::os {

std::optional<LocalTime> ToLocalTime(int64_t utcSeconds)
{
    const auto seconds = LocalSeconds(utcSeconds);
    const auto time = seconds ? std::optional(FromNumber(*seconds)) : std::nullopt;
    return time && IsStorable(*time) ? time : std::nullopt;
}

}  // namespace kesta::os
