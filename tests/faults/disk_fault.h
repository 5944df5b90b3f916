// A disk that fails: SQLite's view of the file system with a fault at one operation of choice. It stands in front of
// the system's own and passes everything else on.
#pragma once

#include <cstdint>

namespace kesta::test {

enum class DiskOperation { kOpen, kRead, kWrite, kSync, kTruncate, kDelete };

class DiskFault {
public:
    /// From the `nth` such operation on (the first is 0), every one fails with SQLite's `code`.
    static void arm(DiskOperation operation, int nth, int code);
    /// Ends the fault.
    static void disarm();
    /// Whether an operation has failed since arm().
    static bool hasStruck();

    /// Puts the shim in place of the default file system, once for the process.
    static void install();
};

}  // namespace kesta::test
