// The allocator: operator new comes here as well, through malloc.
#include <cerrno>
#include <cstddef>

#include "plan.h"

using namespace kesta::torture;

extern "C" {

// The C library's own, behind the functions that stand in their place here.
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

void* malloc(size_t size)
{
    return Fails(Kind::kMemory) ? nullptr : __libc_malloc(size);
}

void* calloc(size_t count, size_t size)
{
    return Fails(Kind::kMemory) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, size_t size)
{
    return Fails(Kind::kMemory) ? nullptr : __libc_realloc(memory, size);
}

void* aligned_alloc(size_t alignment, size_t size)
{
    return Fails(Kind::kMemory) ? nullptr : __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, size_t alignment, size_t size)
{
    if (Fails(Kind::kMemory)) {
        return ENOMEM;
    }
    *memory = __libc_memalign(alignment, size);
    return *memory != nullptr ? 0 : ENOMEM;
}
}
