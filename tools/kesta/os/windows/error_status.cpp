#include "os/windows/error_status.h"
#include "os/windows/wide_text.h"

#include <algorithm>

namespace kesta::os {
namespace {

constexpr DWORD kDiskQuotaExceeded = 1295;  // missing in the headers
constexpr std::wstring_view kPrefix = L"\\\\?\\";
constexpr std::wstring_view kSharePrefix = L"\\\\?\\UNC\\";

Failure KindOf(DWORD code)
{
    switch (code) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_DRIVE:
        case ERROR_DIRECTORY:
            return Failure::kMissing;
        case ERROR_FILE_EXISTS:
        case ERROR_ALREADY_EXISTS:
            return Failure::kExists;
        case ERROR_DIR_NOT_EMPTY:
            return Failure::kNotEmpty;
        case ERROR_ACCESS_DENIED:
            return Failure::kDenied;
        case ERROR_WRITE_PROTECT:
            return Failure::kReadOnly;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
        case kDiskQuotaExceeded:
            return Failure::kFull;
        case ERROR_FILENAME_EXCED_RANGE:
        case ERROR_BUFFER_OVERFLOW:
            return Failure::kTooLong;
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
            return Failure::kBusy;
        case ERROR_DEV_NOT_EXIST:
        case ERROR_DEVICE_NOT_CONNECTED:
        case ERROR_DEVICE_REMOVED:
        case ERROR_NOT_READY:
        case ERROR_NO_MEDIA_IN_DRIVE:
            return Failure::kGone;
        default:
            return Failure::kOther;
    }
}

std::string TextOf(DWORD code)
{
    wchar_t buffer[512];
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                                        buffer, 512, nullptr);
    std::string text = FromWide(std::wstring(buffer, length).c_str());
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' ' || text.back() == '.')) {
        text.pop_back();
    }
    return text.empty() ? "error " + std::to_string(code) : text;
}

}  // namespace

Status FromErrorCode(DWORD code)
{
    return {KindOf(code), TextOf(code)};
}

Status LastError()
{
    return FromErrorCode(GetLastError());
}

std::wstring ToNative(const std::string& path)
{
    // Invalid text gives a name that nothing can have.
    std::wstring native = ToWide(path).value_or(L"?");
    std::replace(native.begin(), native.end(), L'/', L'\\');
    if (native.starts_with(kPrefix)) {
        return native;
    }
    std::wstring full(32768, L'\0');
    const DWORD length = GetFullPathNameW(native.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length == 0 || length >= full.size()) {
        return native;
    }
    full.resize(length);
    if (full.starts_with(L"\\\\.\\")) {
        return full;
    }
    if (full.starts_with(L"\\\\")) {
        return std::wstring(kSharePrefix) + full.substr(2);
    }
    return std::wstring(kPrefix) + full;
}

std::string FromNative(std::wstring path)
{
    if (path.starts_with(kSharePrefix)) {
        path.replace(0, kSharePrefix.size(), L"\\\\");
    } else if (path.starts_with(kPrefix)) {
        path.erase(0, kPrefix.size());
    }
    return FromWide(path.c_str());
}

}  // namespace kesta::os
