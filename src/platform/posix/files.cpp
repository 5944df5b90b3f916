#include "platform/files.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace kesta::platform {
namespace {

constexpr mode_t kPrivate = 0700;

bool IsFolder(const Path& path) noexcept
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// Creates the folder and every missing one above it, each private to the user.
bool CreateFolders(const Path& folder)
{
    if (IsFolder(folder)) return true;
    if (folder.has_relative_path() && !CreateFolders(folder.parent_path())) return false;
    (void)mkdir(folder.c_str(), kPrivate);  // another process may have been faster
    return IsFolder(folder);
}

Path HomeFolder()
{
    if (const char* home = std::getenv("HOME"); home != nullptr && home[0] == '/') return home;
    passwd entry = {};
    passwd* found = nullptr;
    std::vector<char> buffer(16384);
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr) return {};
    return found->pw_dir;
}

}  // namespace

bool ApplicationDataFolder(Path& folder)
{
    const char* named = std::getenv("XDG_DATA_HOME");
    if (named != nullptr && named[0] == '/') {
        folder = named;
    } else {
        folder = HomeFolder();
        if (folder.empty()) return false;
        folder /= ".local/share";
    }
    if (!folder.has_filename()) folder = folder.parent_path();  // a trailing slash names no folder of its own
    return CreateFolders(folder);
}

void CreateFolder(const Path& folder) noexcept
{
    (void)mkdir(folder.c_str(), kPrivate);
}

bool Exists(const Path& file) noexcept
{
    return access(file.c_str(), F_OK) == 0;
}

bool IsWritable(const Path& file) noexcept
{
    // The owner's bit counts for root as well, to whom access() allows everything.
    struct stat status = {};
    return stat(file.c_str(), &status) == 0 && (status.st_mode & S_IWUSR) != 0 && access(file.c_str(), W_OK) == 0;
}

bool PathToUtf8(const Path& path, char* out, size_t room) noexcept
{
    // Names are bytes here, and taken as they are: one that is not UTF-8 still names its file.
    const std::string& bytes = path.native();
    if (bytes.size() > room) return false;
    out[bytes.copy(out, bytes.size())] = '\0';
    return true;
}

bool RemoveFile(const Path& file) noexcept
{
    return unlink(file.c_str()) == 0;
}

}  // namespace kesta::platform
