#include "os/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "os/native_path.h"
#include "os/posix/errno_status.h"

namespace kesta::os {
namespace {

FileInfo ToInfo(const struct stat& raw)
{
    FileInfo info;
    info.kind = S_ISREG(raw.st_mode) ? FileKind::kFile : S_ISDIR(raw.st_mode) ? FileKind::kDirectory : FileKind::kOther;
    info.size = static_cast<uint64_t>(raw.st_size);
    info.modified = {raw.st_mtim.tv_sec, static_cast<int32_t>(raw.st_mtim.tv_nsec)};
    info.id = {raw.st_dev, raw.st_ino};
    return info;
}

}  // namespace

Status ReadInfo(const std::string& path, FileInfo& info)
{
    struct stat raw {};
    if (stat(ToNativePath(path).c_str(), &raw) != 0) {
        return LastError();
    }
    info = ToInfo(raw);
    return {};
}

Status ReadInfoOfLink(const std::string& path, FileInfo& info)
{
    struct stat raw {};
    if (lstat(ToNativePath(path).c_str(), &raw) != 0) {
        return LastError();
    }
    info = ToInfo(raw);
    return {};
}

Status ListDirectory(const std::string& path, std::vector<DirectoryEntry>& entries)
{
    entries.clear();
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(ToNativePath(path).c_str()), closedir);
    if (!directory) {
        return LastError();
    }
    for (;;) {
        errno = 0;
        const dirent* raw = readdir(directory.get());
        if (raw == nullptr) {
            break;
        }
        const std::string_view name = raw->d_name;
        if (name == "." || name == "..") {
            continue;
        }
        bool isLink = raw->d_type == DT_LNK;
        if (raw->d_type == DT_UNKNOWN) {
            struct stat info {};
            isLink =
                fstatat(dirfd(directory.get()), raw->d_name, &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(info.st_mode);
        }
        entries.push_back({FromNativePath(name), true, isLink});
    }
    return errno == 0 ? Status() : LastError();
}

bool IsEmptyDirectory(const std::string& path)
{
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(ToNativePath(path).c_str()), closedir);
    if (!directory) {
        return false;
    }
    errno = 0;
    while (const dirent* raw = readdir(directory.get())) {
        const std::string_view name = raw->d_name;
        if (name != "." && name != "..") {
            return false;
        }
    }
    return errno == 0;
}

Status CanonicalPath(const std::string& path, std::string& canonical)
{
    const std::unique_ptr<char, void (*)(void*)> resolved(realpath(ToNativePath(path).c_str(), nullptr), std::free);
    if (!resolved) {
        return LastError();
    }
    canonical = FromNativePath(resolved.get());
    return {};
}

std::string AbsolutePath(const std::string& path)
{
    if (!path.empty() && path.front() == '/') {
        return path;
    }
    const std::unique_ptr<char, void (*)(void*)> here(getcwd(nullptr, 0), std::free);
    return here ? Join(FromNativePath(here.get()), path) : path;
}

Status ReadFreeSpace(const std::string& path, std::optional<uint64_t>& bytes)
{
    bytes.reset();
    struct statvfs raw {};
    if (statvfs(ToNativePath(path).c_str(), &raw) != 0) {
        return LastError();
    }
    // Some file systems for phones know of no sizes at all.
    if (raw.f_blocks > 0) {
        bytes = uint64_t{raw.f_bavail} * raw.f_frsize;
    }
    return {};
}

Status ReadFileSystemId(const std::string& path, std::string& id)
{
    struct statvfs raw {};
    if (statvfs(ToNativePath(path).c_str(), &raw) != 0) {
        return LastError();
    }
    std::array<char, 2 * sizeof raw.f_fsid + 1> digits{};
    (void)std::snprintf(digits.data(), digits.size(), "%lx", raw.f_fsid);
    id = digits.data();
    return {};
}

Status CheckWritable(const std::string& directory)
{
    return access(ToNativePath(directory).c_str(), W_OK | X_OK) == 0 ? Status() : LastError();
}

Status MakeDirectory(const std::string& path)
{
    return mkdir(ToNativePath(path).c_str(), 0777) == 0 ? Status() : LastError();
}

Status RemoveFile(const std::string& path)
{
    return unlink(ToNativePath(path).c_str()) == 0 ? Status() : LastError();
}

Status RemoveEmptyDirectory(const std::string& path)
{
    return rmdir(ToNativePath(path).c_str()) == 0 ? Status() : LastError();
}

Status Rename(const std::string& from, const std::string& to)
{
    return std::rename(ToNativePath(from).c_str(), ToNativePath(to).c_str()) == 0 ? Status() : LastError();
}

Status SetModified(const std::string& path, FileTime time)
{
    const timespec moment{time.seconds, time.nanoseconds};
    const timespec times[2] = {moment, moment};
    return utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW) == 0 ? Status() : LastError();
}

Status FlushDirectory(const std::string& path)
{
    const int handle = open(ToNativePath(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) {
        return LastError();
    }
    const bool flushed = fsync(handle) == 0;
    const int code = errno;
    (void)close(handle);  // Nothing was written through it.
    // Some file systems for removable media have nothing to flush for a folder and say so.
    return flushed || code == EINVAL || code == ENOSYS || code == EOPNOTSUPP ? Status() : FromErrno(code);
}

}  // namespace kesta::os
