#include "platform/files.h"

// clang-format off
#include <windows.h>
#include <shlobj.h>
#include <io.h>
// clang-format on

#include "platform/code_page.h"

namespace kesta::platform {
namespace {

constexpr int kIsThere = 0;
constexpr int kMayWrite = 2;

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

bool Exists(const Path& file) noexcept
{
    return _waccess(file.c_str(), kIsThere) == 0;
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

}  // namespace kesta::platform
