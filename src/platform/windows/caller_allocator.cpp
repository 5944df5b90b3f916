#include "platform/caller_allocator.h"

#include <windows.h>

#include <objbase.h>

namespace kesta::platform {

void* AllocateForCaller(size_t bytes) noexcept
{
    return CoTaskMemAlloc(bytes);
}

void* ReallocateForCaller(void* memory, size_t bytes) noexcept
{
    return CoTaskMemRealloc(memory, bytes);
}

}  // namespace kesta::platform
