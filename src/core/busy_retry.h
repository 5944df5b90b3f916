// What SQLite asks when another program holds the file.
#pragma once

namespace kesta {

/// Waits 100 ms and asks SQLite to try again, up to 101 times for one lock attempt. `tries` counts them from 0.
int BusyRetry(void* unused, int tries) noexcept;

}  // namespace kesta
