#include "unit/failing_system.h"

#include <pthread.h>
#include <pwd.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace kesta::test {
namespace {

thread_local FailingSystem* current = nullptr;

int ErrorOf(const char* function)
{
    return current != nullptr ? current->next(function) : 0;
}

bool Fails(const char* function)
{
    const int error = ErrorOf(function);
    if (error != 0) {
        errno = error;
    }
    return error != 0;
}

}  // namespace

FailingSystem::FailingSystem(Plan plan) : plan_(std::move(plan))
{
    current = this;
}

FailingSystem::~FailingSystem()
{
    current = nullptr;
}

bool FailingSystem::allStruck() const
{
    return plan_.empty();
}

int FailingSystem::next(const char* function)
{
    const auto planned = plan_.find(function);
    if (planned == plan_.end()) {
        return 0;
    }
    const int error = planned->second.front();
    planned->second.erase(planned->second.begin());
    if (planned->second.empty()) {
        plan_.erase(planned);
    }
    return error;
}

}  // namespace kesta::test

using kesta::test::current;
using kesta::test::ErrorOf;
using kesta::test::Fails;

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
extern "C" {

int __real_renameat2(int, const char*, int, const char*, unsigned);
int __real_rename(const char*, const char*);
int __real_link(const char*, const char*);
int __real_unlink(const char*);
int __real_open(const char*, int, ...);
int __real_openat(int, const char*, int, ...);
int __real_fcntl(int, int, ...);
int __real_fsync(int);
int __real_fstat(int, struct stat*);
int __real_stat(const char*, struct stat*);
int __real_lstat(const char*, struct stat*);
ssize_t __real_read(int, void*, size_t);
ssize_t __real_write(int, const void*, size_t);
int __real_getpwuid_r(uid_t, passwd*, char*, size_t, passwd**);
int __real_shmctl(int, int, shmid_ds*);
void* __real_shmat(int, const void*, int);
int __real_pthread_mutexattr_init(pthread_mutexattr_t*);
int __real_pthread_mutexattr_settype(pthread_mutexattr_t*, int);
int __real_pthread_mutexattr_setpshared(pthread_mutexattr_t*, int);
int __real_pthread_mutexattr_setrobust(pthread_mutexattr_t*, int);
int __real_pthread_mutex_init(pthread_mutex_t*, const pthread_mutexattr_t*);

int __wrap_renameat2(int from, const char* file, int to, const char* target, unsigned flags)
{
    return Fails("renameat2") ? -1 : __real_renameat2(from, file, to, target, flags);
}

int __wrap_rename(const char* file, const char* target)
{
    return Fails("rename") ? -1 : __real_rename(file, target);
}

int __wrap_link(const char* file, const char* second)
{
    return Fails("link") ? -1 : __real_link(file, second);
}

int __wrap_unlink(const char* path)
{
    return Fails("unlink") ? -1 : __real_unlink(path);
}

int __wrap_open(const char* path, int flags, mode_t mode)
{
    return Fails("open") ? -1 : __real_open(path, flags, mode);
}

int __wrap_openat(int folder, const char* path, int flags, mode_t mode)
{
    return Fails("openat") ? -1 : __real_openat(folder, path, flags, mode);
}

int __wrap_fcntl(int file, int command, void* argument)
{
    return Fails("fcntl") ? -1 : __real_fcntl(file, command, argument);
}

int __wrap_fsync(int file)
{
    return Fails("fsync") ? -1 : __real_fsync(file);
}

int __wrap_fstat(int file, struct stat* status)
{
    return Fails("fstat") ? -1 : __real_fstat(file, status);
}

int __wrap_stat(const char* path, struct stat* status)
{
    return Fails("stat") ? -1 : __real_stat(path, status);
}

int __wrap_lstat(const char* path, struct stat* status)
{
    return Fails("lstat") ? -1 : __real_lstat(path, status);
}

ssize_t __wrap_read(int file, void* bytes, size_t count)
{
    return Fails("read") ? -1 : __real_read(file, bytes, count);
}

ssize_t __wrap_write(int file, const void* bytes, size_t count)
{
    if (Fails("write")) {
        return -1;
    }
    return __real_write(file, bytes, current != nullptr && current->writesByteByByte() && count > 1 ? 1 : count);
}

int __wrap_getpwuid_r(uid_t user, passwd* entry, char* buffer, size_t size, passwd** found)
{
    const int error = ErrorOf("getpwuid_r");
    if (error == 0) {
        return __real_getpwuid_r(user, entry, buffer, size, found);
    }
    *found = nullptr;
    return error == ENOENT ? 0 : error;  // a user without an entry is no error
}

int __wrap_shmctl(int segment, int command, shmid_ds* status)
{
    return Fails("shmctl") ? -1 : __real_shmctl(segment, command, status);
}

void* __wrap_shmat(int segment, const void* place, int flags)
{
    return Fails("shmat") ? reinterpret_cast<void*>(-1)  // NOLINT(performance-no-int-to-ptr): what shmat fails with
                          : __real_shmat(segment, place, flags);
}

int __wrap_pthread_mutexattr_init(pthread_mutexattr_t* attributes)
{
    const int error = ErrorOf("pthread_mutexattr_init");
    return error != 0 ? error : __real_pthread_mutexattr_init(attributes);
}

int __wrap_pthread_mutexattr_settype(pthread_mutexattr_t* attributes, int type)
{
    const int error = ErrorOf("pthread_mutexattr_settype");
    return error != 0 ? error : __real_pthread_mutexattr_settype(attributes, type);
}

int __wrap_pthread_mutexattr_setpshared(pthread_mutexattr_t* attributes, int shared)
{
    const int error = ErrorOf("pthread_mutexattr_setpshared");
    return error != 0 ? error : __real_pthread_mutexattr_setpshared(attributes, shared);
}

int __wrap_pthread_mutexattr_setrobust(pthread_mutexattr_t* attributes, int robust)
{
    const int error = ErrorOf("pthread_mutexattr_setrobust");
    return error != 0 ? error : __real_pthread_mutexattr_setrobust(attributes, robust);
}

int __wrap_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes)
{
    const int error = ErrorOf("pthread_mutex_init");
    return error != 0 ? error : __real_pthread_mutex_init(mutex, attributes);
}
}
// NOLINTEND(bugprone-reserved-identifier)
