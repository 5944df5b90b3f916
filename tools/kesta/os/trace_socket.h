// The socket to which the library sends its trace lines, where it does so.
#pragma once

#include <string>

#include "os/status.h"

namespace kesta::os {

/// Empty where the trace goes another way.
[[nodiscard]] std::string TraceSocketPath();

enum class TraceSocket {
    kNone,
    kViewer,   // a viewer reads it
    kStale,    // a viewer that was killed has left it
    kForeign,  // it is not a socket, or not this user's
};
/// Fails when that cannot be told.
Status LookAtTraceSocket(const std::string& path, TraceSocket& socket);

}  // namespace kesta::os
