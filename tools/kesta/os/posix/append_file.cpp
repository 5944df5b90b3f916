#include "os/append_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "os/posix/errno_status.h"

namespace kesta::os {

AppendFile::~AppendFile()
{
    if (isOpen()) {
        (void)::close(static_cast<int>(handle_));
    }
}

Status AppendFile::open(const std::string& path)
{
    handle_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY, 0666);
    return isOpen() ? Status() : LastError();
}

Status AppendFile::add(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t put = ::write(static_cast<int>(handle_), text.data(), text.size());
        if (put < 0 && errno != EINTR) {
            return LastError();
        }
        text.remove_prefix(put > 0 ? static_cast<size_t>(put) : 0);
    }
    return {};
}

}  // namespace kesta::os
