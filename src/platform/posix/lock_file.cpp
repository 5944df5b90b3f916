#include "platform/posix/lock_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace kesta::platform {
namespace {

/// Opens the user's own file; -1 for any other.
int OpenOwn(const char* path) noexcept
{
    int file = ::open(path, O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (file >= 0 && file <= STDERR_FILENO) {  // a number that programs take for their own output
        const int other = fcntl(file, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        ::close(file);
        file = other;
    }
    if (file < 0) {
        return -1;
    }
    struct stat status = {};
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != geteuid()) {
        ::close(file);
        return -1;
    }
    return file;
}

int SetLock(int file, int command, short type) noexcept
{
    struct flock whole = {};
    whole.l_type = type;
    whole.l_whence = SEEK_SET;
    int result = 0;
    do {
        result = fcntl(file, command, &whole);
    } while (result != 0 && errno == EINTR);
    return result;
}

}  // namespace

bool LockFile::openAt(const char* folder, const char* name) noexcept
{
    if (folder == nullptr || folder[0] != '/') {
        return false;
    }
    const int length = std::snprintf(path_, sizeof path_, "%s/%s.lock", folder, name);
    if (length < 0 || static_cast<size_t>(length) >= sizeof path_) {
        return false;
    }
    file_ = OpenOwn(path_);
    return file_ >= 0;
}

bool LockFile::open(const char* name, Path (*otherFolder)()) noexcept
{
    if (isOpen() || openAt(std::getenv("XDG_RUNTIME_DIR"), name)) {
        return true;
    }
    try {
        return openAt(otherFolder().c_str(), name);
    } catch (...) {
        return false;  // no memory for the folder's name
    }
}

void LockFile::close() noexcept
{
    if (isOpen()) {
        ::close(file_);
    }
    file_ = -1;
}

void LockFile::lock() noexcept
{
    while (isOpen() && SetLock(file_, F_OFD_SETLKW, F_WRLCK) == 0 && wasRemoved()) {
        openAnew();  // those who come later lock the new one
    }
}

bool LockFile::wasRemoved() const noexcept
{
    struct stat opened = {};
    struct stat found = {};
    if (fstat(file_, &opened) != 0) {
        return false;
    }
    if (stat(path_, &found) != 0) {
        return errno == ENOENT;
    }
    return opened.st_ino != found.st_ino || opened.st_dev != found.st_dev;
}

void LockFile::unlock() noexcept
{
    if (isOpen()) {
        (void)SetLock(file_, F_OFD_SETLK, F_UNLCK);
    }
}

void LockFile::openAnew() noexcept
{
    if (isOpen()) {
        close();
        file_ = OpenOwn(path_);
    }
}

}  // namespace kesta::platform
