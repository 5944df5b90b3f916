#include "os/trace_socket.h"

namespace kesta::os {

// The library writes its trace with OutputDebugString.
std::string TraceSocketPath()
{
    return {};
}

Status LookAtTraceSocket(const std::string& /*path*/, TraceSocket& socket)
{
    socket = TraceSocket::kNone;
    return {};
}

}  // namespace kesta::os
