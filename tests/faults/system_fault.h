// A system that fails to look or to read: the system calls behind both, with a fault at one of choice.
#pragma once

namespace kesta::test {

/// kLikeItFromThenOn: every call of the same function, while others go through.
enum class Fault { kOnce, kFromThenOn, kLikeItFromThenOn };

class SystemFault {
public:
    /// The `nth` of this thread's calls that look at or read a file (the first is 0) fails with this error.
    static void arm(int nth, int error, Fault fault) noexcept;
    /// Ends the fault; whether a call has failed since arm().
    static bool disarm() noexcept;
};

}  // namespace kesta::test
