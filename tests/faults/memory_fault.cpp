#include "faults/memory_fault.h"

#include <cerrno>
#include <cstddef>

// The C library's own allocator, behind the functions that this program puts in its place.
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void __libc_free(void* memory);
}

namespace kesta::test {
namespace {

thread_local bool armed = false;
thread_local bool struck = false;
thread_local int remaining = 0;
thread_local int64_t held = 0;

bool Strike() noexcept
{
    if (!armed || struck || remaining-- > 0) {
        return false;
    }
    struck = true;
    errno = ENOMEM;
    return true;
}

void* Counted(void* memory) noexcept
{
    held += memory != nullptr ? 1 : 0;
    return memory;
}

void Release(void* memory) noexcept
{
    held -= memory != nullptr ? 1 : 0;
    __libc_free(memory);
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

int64_t MemoryFault::balance() noexcept
{
    return held;
}

}  // namespace kesta::test

extern "C" {

void* malloc(size_t size)
{
    return kesta::test::Strike() ? nullptr : kesta::test::Counted(__libc_malloc(size));
}

void* calloc(size_t count, size_t size)
{
    return kesta::test::Strike() ? nullptr : kesta::test::Counted(__libc_calloc(count, size));
}

void* realloc(void* memory, size_t size)
{
    if (kesta::test::Strike()) {
        return nullptr;
    }
    return memory == nullptr ? kesta::test::Counted(__libc_malloc(size)) : __libc_realloc(memory, size);
}

void free(void* memory)
{
    kesta::test::Release(memory);
}
}
