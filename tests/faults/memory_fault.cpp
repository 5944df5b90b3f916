#include "faults/memory_fault.h"

#include <cerrno>
#include <cstddef>

// The C library's own allocator, behind the functions that this program puts in its place.
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
}

namespace kesta::test {
namespace {

thread_local bool armed = false;
thread_local bool struck = false;
thread_local int remaining = 0;

bool Strike() noexcept
{
    if (!armed || struck || remaining-- > 0) {
        return false;
    }
    struck = true;
    errno = ENOMEM;
    return true;
}

}  // namespace

void MemoryFault::arm(int nth) noexcept
{
    remaining = nth;
    struck = false;
    armed = true;
}

bool MemoryFault::disarm() noexcept
{
    armed = false;
    return struck;
}

}  // namespace kesta::test

extern "C" {

void* malloc(size_t size)
{
    return kesta::test::Strike() ? nullptr : __libc_malloc(size);
}

void* calloc(size_t count, size_t size)
{
    return kesta::test::Strike() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, size_t size)
{
    return kesta::test::Strike() ? nullptr : __libc_realloc(memory, size);
}
}
