#include "platform/files.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace kesta::platform {
namespace {

constexpr mode_t kPrivateFolder = 0700;
constexpr mode_t kPrivateFile = 0600;

bool IsFolder(const Path& path) noexcept
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

Path HomeFolder()
{
    if (const char* home = std::getenv("HOME"); home != nullptr && home[0] == '/') {
        return home;
    }
    passwd entry = {};
    passwd* found = nullptr;
    std::vector<char> buffer(16384);
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr) {
        return {};
    }
    return found->pw_dir;
}

/// Closed when it goes.
class OpenFile {
public:
    OpenFile(const char* path, int flags, mode_t mode = 0) noexcept : number_(open(path, flags | O_CLOEXEC, mode)) {}
    ~OpenFile()
    {
        if (number_ >= 0) {
            close(number_);
        }
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    [[nodiscard]] bool isOpen() const { return number_ >= 0; }
    [[nodiscard]] int number() const { return number_; }

private:
    int number_;
};

/// Creates one folder whose name survives a loss of power, as what will lie in it is to do. False with errno if it
/// cannot; another process may have been faster.
bool MakeFolder(const char* folder) noexcept
{
    if (mkdir(folder, kPrivateFolder) != 0) {
        return false;
    }
    const OpenFile made(folder, O_RDONLY | O_DIRECTORY);
    const int above = made.isOpen() ? openat(made.number(), "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
    if (above >= 0) {
        (void)fsync(above);
        close(above);
    }
    return true;
}

/// Creates the folder and every missing one above it, each private to the user.
bool CreateFolders(const Path& folder)
{
    if (IsFolder(folder)) {
        return true;
    }
    if (folder.has_relative_path() && !CreateFolders(folder.parent_path())) {
        return false;
    }
    const bool isThere = MakeFolder(folder.c_str()) || errno == EEXIST;
    struct stat status = {};
    if (stat(folder.c_str(), &status) == 0) {
        return S_ISDIR(status.st_mode);
    }
    // A folder that cannot be looked at is no reason to keep data elsewhere. A link that leads nowhere is no folder.
    return isThere && errno != ENOENT && errno != ELOOP;
}

/// Bytes read, 0 at the end, negative for a failure.
ssize_t ReadSome(int file, std::array<char, 65536>& buffer) noexcept
{
    ssize_t bytes = 0;
    do {
        bytes = read(file, buffer.data(), buffer.size());
    } while (bytes < 0 && errno == EINTR);
    return bytes;
}

bool WriteAll(int file, const char* bytes, size_t length) noexcept
{
    while (length > 0) {
        const ssize_t written = write(file, bytes, length);
        if (written < 0 && errno != EINTR) {
            return false;
        }
        if (written > 0) {
            bytes += written;
            length -= static_cast<size_t>(written);
        }
    }
    return true;
}

bool CopyContents(int from, int to) noexcept
{
    std::array<char, 65536> buffer;
    ssize_t bytes = 0;
    while ((bytes = ReadSome(from, buffer)) > 0) {
        if (!WriteAll(to, buffer.data(), static_cast<size_t>(bytes))) {
            return false;
        }
    }
    return bytes == 0 && fsync(to) == 0;
}

Naming Copy(const Path& file, const Path& second) noexcept
{
    const OpenFile from(file.c_str(), O_RDONLY);
    if (!from.isOpen()) {
        return Naming::kFailed;
    }
    const OpenFile to(second.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, kPrivateFile);
    if (!to.isOpen()) {
        return errno == EEXIST ? Naming::kNameTaken : Naming::kFailed;
    }
    if (CopyContents(from.number(), to.number())) {
        return Naming::kDone;
    }
    unlink(second.c_str());
    return Naming::kFailed;
}

bool NameIsTaken(const Path& file) noexcept
{
    struct stat status = {};
    return lstat(file.c_str(), &status) == 0 || errno != ENOENT;
}

}  // namespace

bool ApplicationDataFolder(Path& folder)
{
    const char* named = std::getenv("XDG_DATA_HOME");
    if (named != nullptr && named[0] == '/') {
        folder = named;
    } else {
        folder = HomeFolder();
        if (folder.empty()) {
            return false;
        }
        folder /= ".local/share";
    }
    if (!folder.has_filename()) {
        folder = folder.parent_path();  // a trailing slash names no folder of its own
    }
    return CreateFolders(folder);
}

void CreateFolder(const Path& folder) noexcept
{
    (void)MakeFolder(folder.c_str());
}

Presence Find(const Path& file) noexcept
{
    if (access(file.c_str(), F_OK) == 0) {
        return Presence::kPresent;
    }
    switch (errno) {
        case ENOENT:
        case ENOTDIR:
        case ENAMETOOLONG:
        case ELOOP:  // a link that only leads to itself
            return Presence::kAbsent;
        case EACCES:
            return Presence::kOutOfReach;
        default:
            return Presence::kUnknown;
    }
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
    if (bytes.size() > room) {
        return false;
    }
    out[bytes.copy(out, bytes.size())] = '\0';
    return true;
}

bool RemoveFile(const Path& file) noexcept
{
    return unlink(file.c_str()) == 0;
}

bool CanReadAll(const Path& file) noexcept
{
    // Opening a pipe would wait for somebody to write into it.
    const OpenFile opened(file.c_str(), O_RDONLY | O_NONBLOCK);
    struct stat status = {};
    if (!opened.isOpen() || fstat(opened.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return false;
    }
    std::array<char, 65536> buffer;
    ssize_t bytes = 0;
    while ((bytes = ReadSome(opened.number(), buffer)) > 0) {
    }
    return bytes == 0;
}

bool CreatePrivateFile(const Path& file) noexcept
{
    return OpenFile(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, kPrivateFile).isOpen();
}

Naming GiveSecondName(const Path& file, const Path& second) noexcept
{
    if (link(file.c_str(), second.c_str()) == 0) {
        return Naming::kDone;
    }
    return errno == EEXIST ? Naming::kNameTaken : Copy(file, second);
}

Naming MoveIntoPlace(const Path& file, const Path& target) noexcept
{
    if (renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) {
        return Naming::kDone;
    }
    if (errno == EEXIST) {
        return Naming::kNameTaken;
    }
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP) {
        return Naming::kFailed;
    }
    // A file system that cannot look and rename in one step: the access lock keeps other programs' hands off meanwhile.
    if (NameIsTaken(target)) {
        return Naming::kNameTaken;
    }
    return rename(file.c_str(), target.c_str()) == 0 ? Naming::kDone : Naming::kFailed;
}

void FlushFolder(const Path& folder) noexcept
{
    const OpenFile opened(folder.c_str(), O_RDONLY | O_DIRECTORY);
    if (opened.isOpen()) {
        (void)fsync(opened.number());
    }
}

}  // namespace kesta::platform
