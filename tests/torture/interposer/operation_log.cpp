#include "operation_log.h"

#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cstring>

#include "plan.h"

namespace kesta::torture {
namespace {

int logFile = -1;

struct Header {
    int32_t operation;
    int32_t file;
    int64_t offset;
    uint64_t length;
};

}  // namespace

void Log(Operation operation, int file, int64_t offset, const void* bytes, size_t length) noexcept
{
    if (logFile < 0 || !(TheState().armed || operation == Operation::kMark)) {
        return;
    }
    Header header = {static_cast<int32_t>(operation), file, offset, length};
    iovec parts[] = {{&header, sizeof header}, {const_cast<void*>(bytes), length}};
    syscall(SYS_writev, logFile, parts, length > 0 ? 2 : 1);
}

void LogPath(Operation operation, const char* path) noexcept
{
    Log(operation, -1, 0, path, std::strlen(path));
}

void LogPaths(Operation operation, const char* from, const char* to) noexcept
{
    char both[4096];
    const size_t first = std::strlen(from) + 1;
    const size_t second = std::strlen(to);
    if (first + second > sizeof both) {
        return;
    }
    std::memcpy(both, from, first);
    std::memcpy(both + first, to, second);
    Log(operation, -1, 0, both, first + second);
}

}  // namespace kesta::torture

extern "C" {

/// From now on into this file; negative: no more.
void torture_log(int file)
{
    kesta::torture::logFile = file;
}

void torture_mark(int64_t number)
{
    kesta::torture::Log(kesta::torture::Operation::kMark, -1, number, nullptr, 0);
}
}
