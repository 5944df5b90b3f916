#include "os/permissions.h"

#include <sys/stat.h>
#include <unistd.h>

#include "os/native_path.h"
#include "os/posix/errno_status.h"

namespace kesta::os {
namespace {

constexpr mode_t kOfOthers = 077;

}  // namespace

Status CheckFileWritable(const std::string& path)
{
    // For the system's administrator every file is writable; the library goes by the owner's permission then, too.
    struct stat info {};
    if (stat(ToNativePath(path).c_str(), &info) != 0) {
        return LastError();
    }
    if ((info.st_mode & S_IWUSR) == 0) {
        return {Failure::kDenied, "it is read-only"};
    }
    return access(ToNativePath(path).c_str(), W_OK) == 0 ? Status() : LastError();
}

bool IsOpenToOthers(const std::string& path)
{
    struct stat info {};
    return stat(ToNativePath(path).c_str(), &info) == 0 && (info.st_mode & kOfOthers) != 0;
}

Status CloseToOthers(const std::string& path)
{
    struct stat info {};
    if (stat(ToNativePath(path).c_str(), &info) != 0) {
        return LastError();
    }
    return chmod(ToNativePath(path).c_str(), info.st_mode & 07777 & ~kOfOthers) == 0 ? Status() : LastError();
}

}  // namespace kesta::os
