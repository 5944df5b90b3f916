#include "os/trace_socket.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "os/files.h"
#include "os/native_path.h"
#include "os/posix/errno_status.h"

namespace kesta::os {

std::string TraceSocketPath()
{
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    if (folder != nullptr && folder[0] != '\0') {
        return Join(FromNativePath(folder), "kesta_db.trace");
    }
    return "/tmp/kesta_db-" + std::to_string(getuid()) + ".trace";
}

Status LookAtTraceSocket(const std::string& path, TraceSocket& socket)
{
    socket = TraceSocket::kNone;
    struct stat info {};
    if (lstat(ToNativePath(path).c_str(), &info) != 0) {
        return errno == ENOENT || errno == ENOTDIR ? Status() : LastError();
    }
    if (!S_ISSOCK(info.st_mode) || info.st_uid != geteuid()) {
        socket = TraceSocket::kForeign;
        return {};
    }
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string native = ToNativePath(path);
    if (native.size() >= sizeof address.sun_path) {
        return FromErrno(ENAMETOOLONG);
    }
    std::memcpy(address.sun_path, native.c_str(), native.size() + 1);
    const int probe = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (probe < 0) {
        return LastError();
    }
    const bool isRead = connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    const int code = errno;
    (void)close(probe);
    if (!isRead && code != ECONNREFUSED) {
        return FromErrno(code);
    }
    socket = isRead ? TraceSocket::kViewer : TraceSocket::kStale;
    return {};
}

}  // namespace kesta::os
