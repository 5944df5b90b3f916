// Watching the library's trace.
#pragma once

#include "base/exit_codes.h"

namespace kesta {

/// trace_posix.cpp and trace_windows.cpp implement it.
[[nodiscard]] ExitCode RunTrace();

}  // namespace kesta
