#include "os/volume.h"

#include <fcntl.h>
#include <sys/utsname.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <charconv>
#include <cstring>
#include <system_error>

#include "os/posix/errno_status.h"

namespace kesta::os {
namespace {

// File systems of which the kernel knows only what their server or driver tells it.
constexpr long kFuse = 0x65735546, kNfs = 0x6969, kCifs = 0xFF534D42, kSmb2 = 0xFE534D42;

// syncfs tells of what could not be written from Linux 5.8 on.
bool DoesKernelTellFailures()
{
    utsname name{};
    if (uname(&name) != 0) {
        return false;
    }
    const char* const end = name.release + std::strlen(name.release);
    int major = 0, minor = 0;
    const auto [dot, problem] = std::from_chars(name.release, end, major);
    if (problem != std::errc() || dot == end || std::from_chars(dot + 1, end, minor).ec != std::errc()) {
        return false;
    }
    return major > 5 || (major == 5 && minor >= 8);
}

bool IsServed(int descriptor)
{
    struct statfs raw {};
    if (fstatfs(descriptor, &raw) != 0) {
        return true;
    }
    const auto type = static_cast<long>(static_cast<unsigned int>(raw.f_type));
    return type == kFuse || type == kNfs || type == kCifs || type == kSmb2;
}

}  // namespace

Volume::~Volume()
{
    if (handle_ >= 0) {
        (void)::close(static_cast<int>(handle_));
    }
}

bool Volume::open(const std::string& directory)
{
    if (!DoesKernelTellFailures()) {
        return false;
    }
    handle_ = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    return handle_ >= 0 && !IsServed(static_cast<int>(handle_));
}

Status Volume::flush()
{
    return syncfs(static_cast<int>(handle_)) == 0 ? Status() : LastError();
}

}  // namespace kesta::os
