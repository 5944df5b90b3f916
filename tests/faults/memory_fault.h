// Memory that runs out: the program's allocator with a fault at one allocation of choice.
#pragma once

#include <cstdint>

namespace kesta::test {

class MemoryFault {
public:
    /// Of this thread's allocations from now on the `nth` (the first is 0) fails, that one only.
    static void arm(int nth) noexcept;
    /// Ends the counting; whether an allocation has failed since arm().
    static bool disarm() noexcept;
    /// How many allocations this thread has made more than it has given back.
    static int64_t balance() noexcept;
};

}  // namespace kesta::test
