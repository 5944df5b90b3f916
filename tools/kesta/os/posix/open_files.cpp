#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "os/files.h"
#include "os/native_path.h"
#include "os/posix/errno_status.h"

namespace kesta::os {
namespace {

int Descriptor(intptr_t handle)
{
    return static_cast<int>(handle);
}

}  // namespace

InputFile::~InputFile()
{
    if (handle_ >= 0) {
        (void)::close(Descriptor(handle_));
    }
}

Status InputFile::open(const std::string& path)
{
    // Without O_NONBLOCK a named pipe put in the file's place would hold the run up for ever.
    handle_ = ::open(ToNativePath(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    return handle_ >= 0 ? Status() : LastError();
}

Status InputFile::readInfo(FileInfo& info) const
{
    struct stat raw {};
    if (fstat(Descriptor(handle_), &raw) != 0) {
        return LastError();
    }
    info.kind = S_ISREG(raw.st_mode) ? FileKind::kFile : S_ISDIR(raw.st_mode) ? FileKind::kDirectory : FileKind::kOther;
    info.size = static_cast<uint64_t>(raw.st_size);
    info.modified = {raw.st_mtim.tv_sec, static_cast<int32_t>(raw.st_mtim.tv_nsec)};
    info.id = {raw.st_dev, raw.st_ino};
    return {};
}

Status InputFile::read(std::span<std::byte> buffer, size_t& count)
{
    for (;;) {
        const ssize_t got = ::read(Descriptor(handle_), buffer.data(), buffer.size());
        if (got >= 0) {
            count = static_cast<size_t>(got);
            return {};
        }
        if (errno != EINTR) {
            return LastError();
        }
    }
}

Status InputFile::seek(uint64_t position)
{
    return lseek(Descriptor(handle_), static_cast<off_t>(position), SEEK_SET) >= 0 ? Status() : LastError();
}

OutputFile::~OutputFile()
{
    if (handle_ >= 0) {
        (void)::close(Descriptor(handle_));
    }
}

Status OutputFile::create(const std::string& path)
{
    handle_ = ::open(ToNativePath(path).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
    return handle_ >= 0 ? Status() : LastError();
}

Status OutputFile::write(std::span<const std::byte> data)
{
    while (!data.empty()) {
        const ssize_t put = ::write(Descriptor(handle_), data.data(), data.size());
        if (put < 0 && errno == EINTR) {
            continue;
        }
        if (put < 0) {
            return LastError();
        }
        if (put == 0) {
            return FromErrno(EIO);  // It would take nothing for ever.
        }
        data = data.subspan(static_cast<size_t>(put));
    }
    return {};
}

Status OutputFile::setModified(FileTime time)
{
    const timespec moment{time.seconds, time.nanoseconds};
    const timespec times[2] = {moment, moment};
    return futimens(Descriptor(handle_), times) == 0 ? Status() : LastError();
}

Status OutputFile::flush()
{
    return fsync(Descriptor(handle_)) == 0 ? Status() : LastError();
}

Status OutputFile::close()
{
    const int descriptor = Descriptor(handle_);
    handle_ = -1;
    return ::close(descriptor) == 0 ? Status() : LastError();
}

DirectoryLock::~DirectoryLock()
{
    if (handle_ >= 0) {
        (void)::close(Descriptor(handle_));
    }
}

Status DirectoryLock::acquire(const std::string& directory)
{
    handle_ = ::open(ToNativePath(directory).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle_ < 0) {
        return LastError();
    }
    return flock(Descriptor(handle_), LOCK_EX | LOCK_NB) == 0 ? Status() : LastError();
}

}  // namespace kesta::os
