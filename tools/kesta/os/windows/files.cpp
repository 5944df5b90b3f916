#include "os/files.h"

#include <windows.h>

#include "os/windows/error_status.h"
#include "os/windows/file_info.h"
#include "os/windows/wide_text.h"

namespace kesta::os {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr int64_t kTicksPerSecond = 10'000'000;
constexpr int64_t kSecondsFrom1601To1970 = 11'644'473'600;

uint64_t Combine(DWORD high, DWORD low)
{
    return (uint64_t{high} << 32) | low;
}

Status InfoOfPath(const std::string& path, DWORD flags, FileInfo& info)
{
    const Handle handle(CreateFileW(ToNative(path).c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr));
    return handle.valid() ? InfoOfHandle(handle.get(), info) : LastError();
}

}  // namespace

Status InfoOfHandle(HANDLE handle, FileInfo& info)
{
    BY_HANDLE_FILE_INFORMATION raw;
    if (!GetFileInformationByHandle(handle, &raw)) {
        return LastError();
    }
    const bool isLink = (raw.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    const bool isDirectory = (raw.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    info.kind = isLink ? FileKind::kOther : isDirectory ? FileKind::kDirectory : FileKind::kFile;
    info.size = Combine(raw.nFileSizeHigh, raw.nFileSizeLow);
    const auto ticks =
        static_cast<int64_t>(Combine(raw.ftLastWriteTime.dwHighDateTime, raw.ftLastWriteTime.dwLowDateTime));
    info.modified = {ticks / kTicksPerSecond - kSecondsFrom1601To1970,
                     static_cast<int32_t>(ticks % kTicksPerSecond * 100)};
    info.id = {raw.dwVolumeSerialNumber, Combine(raw.nFileIndexHigh, raw.nFileIndexLow)};
    return {};
}

FILETIME ToFileTime(FileTime time)
{
    const int64_t ticks = (time.seconds + kSecondsFrom1601To1970) * kTicksPerSecond + time.nanoseconds / 100;
    return {static_cast<DWORD>(ticks & 0xFFFFFFFF), static_cast<DWORD>(ticks >> 32)};
}

Status ReadInfo(const std::string& path, FileInfo& info)
{
    return InfoOfPath(path, 0, info);
}

Status ReadInfoOfLink(const std::string& path, FileInfo& info)
{
    return InfoOfPath(path, FILE_FLAG_OPEN_REPARSE_POINT, info);
}

Status ListDirectory(const std::string& path, std::vector<DirectoryEntry>& entries)
{
    entries.clear();
    WIN32_FIND_DATAW data;
    const std::wstring pattern = ToNative(Join(path, "")) + L"*";
    const HANDLE search = FindFirstFileW(pattern.c_str(), &data);
    // The root of an empty drive has not even the entries for itself and its parent.
    if (search == INVALID_HANDLE_VALUE) {
        return GetLastError() == ERROR_FILE_NOT_FOUND ? Status() : LastError();
    }
    do {
        const std::wstring_view name = data.cFileName;
        if (name == L"." || name == L"..") {
            continue;
        }
        std::string utf8 = FromWide(data.cFileName);
        const auto back = ToWide(utf8);
        const bool isLink = (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
        entries.push_back({std::move(utf8), back && *back == name, isLink});
    } while (FindNextFileW(search, &data));
    const DWORD code = GetLastError();
    (void)FindClose(search);
    return code == ERROR_NO_MORE_FILES ? Status() : FromErrorCode(code);
}

bool IsEmptyDirectory(const std::string& path)
{
    std::vector<DirectoryEntry> entries;
    return ListDirectory(path, entries).ok() && entries.empty();
}

Status CanonicalPath(const std::string& path, std::string& canonical)
{
    const Handle handle(CreateFileW(ToNative(path).c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!handle.valid()) {
        return LastError();
    }
    std::wstring full(32768, L'\0');
    const DWORD length = GetFinalPathNameByHandleW(handle.get(), full.data(), static_cast<DWORD>(full.size()), 0);
    if (length == 0 || length >= full.size()) {
        return LastError();
    }
    full.resize(length);
    canonical = FromNative(std::move(full));
    return {};
}

std::string AbsolutePath(const std::string& path)
{
    return FromNative(ToNative(path));
}

Status ReadFreeSpace(const std::string& path, std::optional<uint64_t>& bytes)
{
    bytes.reset();
    ULARGE_INTEGER available, all;
    if (!GetDiskFreeSpaceExW(ToNative(Join(path, "")).c_str(), &available, &all, nullptr)) {
        return LastError();
    }
    if (all.QuadPart > 0) {
        bytes = available.QuadPart;
    }
    return {};
}

Status ReadFileSystemId(const std::string& path, std::string& id)
{
    FileInfo info;
    if (Status status = ReadInfo(path, info); !status.ok()) {
        return status;
    }
    id = std::to_string(info.id.volume);
    return {};
}

Status CheckWritable(const std::string& directory)
{
    // Only an attempt tells: permissions, the drive's write protection and its owner all have a say.
    const std::wstring path = ToNative(Join(directory, ".kesta-probe"));
    const Handle handle(CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    return handle.valid() ? Status() : LastError();
}

Status MakeDirectory(const std::string& path)
{
    return CreateDirectoryW(ToNative(path).c_str(), nullptr) ? Status() : LastError();
}

Status RemoveFile(const std::string& path)
{
    const std::wstring native = ToNative(path);
    if (DeleteFileW(native.c_str())) {
        return {};
    }
    const DWORD code = GetLastError();
    const DWORD attributes = GetFileAttributesW(native.c_str());
    if (code != ERROR_ACCESS_DENIED || attributes == INVALID_FILE_ATTRIBUTES ||
        (attributes & FILE_ATTRIBUTE_READONLY) == 0) {
        return FromErrorCode(code);
    }
    // The read-only attribute came with the file; here it only says that nobody is to change the copy.
    if (!SetFileAttributesW(native.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY})) {
        return LastError();
    }
    return DeleteFileW(native.c_str()) ? Status() : LastError();
}

Status RemoveEmptyDirectory(const std::string& path)
{
    return RemoveDirectoryW(ToNative(path).c_str()) ? Status() : LastError();
}

Status Rename(const std::string& from, const std::string& to)
{
    constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    return MoveFileExW(ToNative(from).c_str(), ToNative(to).c_str(), kFlags) ? Status() : LastError();
}

Status SetModified(const std::string& path, FileTime time)
{
    const Handle handle(CreateFileW(ToNative(path).c_str(), FILE_WRITE_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    const FILETIME fileTime = ToFileTime(time);
    return handle.valid() && SetFileTime(handle.get(), nullptr, &fileTime, &fileTime) ? Status() : LastError();
}

Status FlushDirectory(const std::string&)
{
    return {};  // Windows has no such call: renames are written through, and the file system's log keeps the rest.
}

}  // namespace kesta::os
