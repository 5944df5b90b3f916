#include "os/append_file.h"

#include <windows.h>

#include "os/windows/error_status.h"

namespace kesta::os {

AppendFile::~AppendFile()
{
    if (isOpen()) {
        (void)CloseHandle(reinterpret_cast<HANDLE>(handle_));
    }
}

Status AppendFile::open(const std::string& path)
{
    handle_ = reinterpret_cast<intptr_t>(CreateFileW(ToNative(path).c_str(), FILE_APPEND_DATA,
                                                     FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                                     OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    return isOpen() ? Status() : LastError();
}

Status AppendFile::add(std::string_view text)
{
    DWORD put = 0;
    while (!text.empty()) {
        if (!WriteFile(reinterpret_cast<HANDLE>(handle_), text.data(), static_cast<DWORD>(text.size()), &put,
                       nullptr)) {
            return LastError();
        }
        text.remove_prefix(put);
    }
    return {};
}

}  // namespace kesta::os
