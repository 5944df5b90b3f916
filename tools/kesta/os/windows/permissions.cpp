#include "os/permissions.h"

#include "os/windows/error_status.h"

namespace kesta::os {

Status CheckFileWritable(const std::string& path)
{
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
