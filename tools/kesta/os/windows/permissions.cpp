#include "os/permissions.h"

#include "os/windows/error_status.h"

namespace kesta::os {

Status CheckFileWritable(const std::string& path)
{
    const DWORD attributes = GetFileAttributesW(ToNative(path).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
        return {Failure::kDenied, "it is read-only"};
    }
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const Handle handle(
        CreateFileW(ToNative(path).c_str(), FILE_WRITE_DATA, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
    return handle.valid() ? Status() : LastError();
}

bool IsOpenToOthers(const std::string& /*path*/)
{
    return false;
}

Status CloseToOthers(const std::string& /*path*/)
{
    return {};
}

}  // namespace kesta::os
