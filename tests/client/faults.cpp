// Preloaded into the client by the tests: makes system calls that change something fail, or ends the process at one.
//
//   KESTA_FAULT_KILL_AT=N       dies by SIGKILL at the Nth call that changes a file or folder, before it is made; of a
//                               write half of the data still gets through
//   KESTA_FAULT_COUNT_FILE=F    writes the number of such calls to the file when the process ends
//   KESTA_FAULT_FLUSH_FILE=F    appends a line to the file for each flush, with what was flushed
//   KESTA_FAULT_ERRNO=E         calls on paths that hold KESTA_FAULT_PATH fail with this error, but for the first
//   KESTA_FAULT_SKIP=N          N of them; with KESTA_FAULT_CALL=C only the calls of that name
//   KESTA_FAULT_VANISH=P        the file goes at the moment when it is opened
#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

template <class Function>
Function Next(const char* name)
{
    void* found = dlsym(RTLD_NEXT, name);
    Function function = nullptr;
    std::memcpy(&function, &found, sizeof function);
    return function;
}

long Number(const char* name)
{
    const char* text = std::getenv(name);
    return text == nullptr ? 0 : std::atol(text);
}

std::atomic<long> calls = 0;  // of all threads

// Whether this is the call at which the process dies.
bool IsLastCall()
{
    static const long last = Number("KESTA_FAULT_KILL_AT");
    return ++calls == last;
}

void DieIfLast()
{
    if (IsLastCall()) {
        (void)raise(SIGKILL);
    }
}

// Whether the call on this path is to fail; errno is set then.
bool Fails(const char* call, const char* path)
{
    static const long code = Number("KESTA_FAULT_ERRNO");
    static const char* part = std::getenv("KESTA_FAULT_PATH");
    static const char* only = std::getenv("KESTA_FAULT_CALL");
    static std::atomic<long> skip = Number("KESTA_FAULT_SKIP");
    if (only != nullptr && std::strcmp(only, call) != 0) {
        return false;
    }
    if (code == 0 || part == nullptr || std::strstr(path, part) == nullptr || skip-- > 0) {
        return false;
    }
    errno = static_cast<int>(code);
    return true;
}

std::string PathOf(int descriptor)
{
    char path[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = readlink(link.c_str(), path, sizeof path);
    return length < 0 ? std::string() : std::string(path, static_cast<size_t>(length));
}

struct AtEnd {
    ~AtEnd()
    {
        const char* path = std::getenv("KESTA_FAULT_COUNT_FILE");
        if (path == nullptr) {
            return;
        }
        if (std::FILE* file = std::fopen(path, "w"); file != nullptr) {
            (void)std::fprintf(file, "%ld", calls.load());
            (void)std::fclose(file);
        }
    }
} atEnd;

int Open(const char* name, const char* path, int flags, mode_t mode)
{
    const char* vanishing = std::getenv("KESTA_FAULT_VANISH");
    if (vanishing != nullptr && std::strcmp(path, vanishing) == 0) {
        (void)Next<int (*)(const char*)>("unlink")(path);
    }
    if ((flags & O_CREAT) != 0) {
        DieIfLast();
        if (Fails("open", path)) {
            return -1;
        }
    }
    return Next<int (*)(const char*, int, ...)>(name)(path, flags, mode);
}

void NoteFlush(int descriptor)
{
    static const char* path = std::getenv("KESTA_FAULT_FLUSH_FILE");
    if (path == nullptr) {
        return;
    }
    if (std::FILE* file = std::fopen(path, "a"); file != nullptr) {
        (void)std::fprintf(file, "%s\n", PathOf(descriptor).c_str());
        (void)std::fclose(file);
    }
}

ssize_t Die(ssize_t result)
{
    (void)raise(SIGKILL);
    return result;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return Open("open", path, flags, mode);
}

int open64(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return Open("open64", path, flags, mode);
}

// Only when it is asked for by name: everything that reads would fail by the way.
ssize_t read(int descriptor, void* data, size_t size)
{
    static const auto next = Next<ssize_t (*)(int, void*, size_t)>("read");
    static const char* only = std::getenv("KESTA_FAULT_CALL");
    const bool isAskedFor = only != nullptr && std::strcmp(only, "read") == 0;
    return isAskedFor && Fails("read", PathOf(descriptor).c_str()) ? -1 : next(descriptor, data, size);
}

ssize_t pread64(int descriptor, void* data, size_t size, off64_t offset)
{
    static const auto next = Next<ssize_t (*)(int, void*, size_t, off64_t)>("pread64");
    static const char* only = std::getenv("KESTA_FAULT_CALL");
    const bool isAskedFor = only != nullptr && std::strcmp(only, "pread") == 0;
    return isAskedFor && Fails("pread", PathOf(descriptor).c_str()) ? -1 : next(descriptor, data, size, offset);
}

ssize_t pread(int descriptor, void* data, size_t size, off_t offset)
{
    return pread64(descriptor, data, size, offset);
}

ssize_t write(int descriptor, const void* data, size_t size)
{
    static const auto next = Next<ssize_t (*)(int, const void*, size_t)>("write");
    if (IsLastCall()) {
        return Die(next(descriptor, data, size / 2));
    }
    return Fails("write", PathOf(descriptor).c_str()) ? -1 : next(descriptor, data, size);
}

ssize_t pwrite64(int descriptor, const void* data, size_t size, off64_t offset)
{
    static const auto next = Next<ssize_t (*)(int, const void*, size_t, off64_t)>("pwrite64");
    if (IsLastCall()) {
        return Die(next(descriptor, data, size / 2, offset));
    }
    return Fails("pwrite", PathOf(descriptor).c_str()) ? -1 : next(descriptor, data, size, offset);
}

ssize_t pwrite(int descriptor, const void* data, size_t size, off_t offset)
{
    return pwrite64(descriptor, data, size, offset);
}

int fdatasync(int descriptor)
{
    DieIfLast();
    NoteFlush(descriptor);
    return Fails("fdatasync", PathOf(descriptor).c_str()) ? -1 : Next<int (*)(int)>("fdatasync")(descriptor);
}

int syncfs(int descriptor)
{
    DieIfLast();
    NoteFlush(descriptor);
    return Fails("syncfs", PathOf(descriptor).c_str()) ? -1 : Next<int (*)(int)>("syncfs")(descriptor);
}

int fsync(int descriptor)
{
    DieIfLast();
    NoteFlush(descriptor);
    return Fails("fsync", PathOf(descriptor).c_str()) ? -1 : Next<int (*)(int)>("fsync")(descriptor);
}

int futimens(int descriptor, const timespec times[2])
{
    DieIfLast();
    return Fails("futimens", PathOf(descriptor).c_str())
               ? -1
               : Next<int (*)(int, const timespec*)>("futimens")(descriptor, times);
}

int utimensat(int folder, const char* path, const timespec times[2], int flags)
{
    DieIfLast();
    return Fails("utimensat", path)
               ? -1
               : Next<int (*)(int, const char*, const timespec*, int)>("utimensat")(folder, path, times, flags);
}

int rename(const char* from, const char* to)
{
    DieIfLast();
    return Fails("rename", to) ? -1 : Next<int (*)(const char*, const char*)>("rename")(from, to);
}

int unlink(const char* path)
{
    DieIfLast();
    return Fails("unlink", path) ? -1 : Next<int (*)(const char*)>("unlink")(path);
}

int mkdir(const char* path, mode_t mode)
{
    DieIfLast();
    return Fails("mkdir", path) ? -1 : Next<int (*)(const char*, mode_t)>("mkdir")(path, mode);
}

int rmdir(const char* path)
{
    DieIfLast();
    return Fails("rmdir", path) ? -1 : Next<int (*)(const char*)>("rmdir")(path);
}

int ftruncate64(int descriptor, off64_t size)
{
    DieIfLast();
    return Next<int (*)(int, off64_t)>("ftruncate64")(descriptor, size);
}

}  // extern "C"
