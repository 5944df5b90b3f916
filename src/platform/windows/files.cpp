#include "platform/files.h"

// clang-format off
#include <windows.h>
#include <shlobj.h>
#include <io.h>
// clang-format on

#include <array>

#include "platform/code_page.h"

namespace kesta::platform {
namespace {

constexpr int kMayWrite = 2;

bool IsTaken(DWORD error)
{
    return error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS;
}

}  // namespace

bool ApplicationDataFolder(Path& folder)
{
    wchar_t name[MAX_PATH];
    if (FAILED(SHGetFolderPathW(nullptr, CSIDL_APPDATA | CSIDL_FLAG_CREATE, nullptr, SHGFP_TYPE_CURRENT, name))) {
        return false;
    }
    folder = name;
    return true;
}

void CreateFolder(const Path& folder) noexcept
{
    (void)CreateDirectoryW(folder.c_str(), nullptr);
}

Presence Find(const Path& file) noexcept
{
    if (GetFileAttributesW(file.c_str()) != INVALID_FILE_ATTRIBUTES) {
        return Presence::kPresent;
    }
    switch (GetLastError()) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_NAME:
        case ERROR_BAD_PATHNAME:
        case ERROR_BAD_NETPATH:
        case ERROR_INVALID_DRIVE:
        case ERROR_FILENAME_EXCED_RANGE:
            return Presence::kAbsent;
        case ERROR_ACCESS_DENIED:
            return Presence::kOutOfReach;
        default:
            return Presence::kUnknown;
    }
}

bool IsWritable(const Path& file) noexcept
{
    return _waccess(file.c_str(), kMayWrite) == 0;
}

bool PathToUtf8(const Path& path, char* out, size_t room) noexcept
{
    const Path::string_type& text = path.native();
    const size_t length = Utf8FromWide(text.data(), text.size(), out, room);
    if (length == kDoesNotFit) return false;
    out[length] = '\0';
    return true;
}

bool RemoveFile(const Path& file) noexcept
{
    return DeleteFileW(file.c_str()) != FALSE;
}

bool CanReadAll(const Path& file) noexcept
{
    const HANDLE opened =
        CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                    OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (opened == INVALID_HANDLE_VALUE) {
        return false;
    }
    bool readable = GetFileType(opened) == FILE_TYPE_DISK;
    std::array<char, 65536> buffer;
    DWORD bytes = 1;
    while (readable && bytes > 0) {
        readable = ReadFile(opened, buffer.data(), static_cast<DWORD>(buffer.size()), &bytes, nullptr) != FALSE;
    }
    CloseHandle(opened);
    return readable;
}

bool CreatePrivateFile(const Path& /*file*/) noexcept
{
    return false;  // the application-data folder is the user's own, and so is what is made in it
}

Naming GiveSecondName(const Path& file, const Path& second) noexcept
{
    if (CreateHardLinkW(second.c_str(), file.c_str(), nullptr) != FALSE) {
        return Naming::kDone;
    }
    if (IsTaken(GetLastError())) {
        return Naming::kNameTaken;
    }
    if (CopyFileW(file.c_str(), second.c_str(), TRUE) != FALSE) {
        return Naming::kDone;
    }
    return IsTaken(GetLastError()) ? Naming::kNameTaken : Naming::kFailed;
}

Naming MoveIntoPlace(const Path& file, const Path& target) noexcept
{
    if (MoveFileExW(file.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH) != FALSE) {
        return Naming::kDone;
    }
    return IsTaken(GetLastError()) ? Naming::kNameTaken : Naming::kFailed;
}

void FlushFolder(const Path& /*folder*/) noexcept
{
    // The file system keeps a journal of its names, and MoveIntoPlace waits for it.
}

}  // namespace kesta::platform
