#include "platform/caller_allocator.h"

#include <cstdlib>

namespace kesta::platform {

void* AllocateForCaller(size_t bytes) noexcept
{
    return std::malloc(bytes);
}

void* ReallocateForCaller(void* memory, size_t bytes) noexcept
{
    return std::realloc(memory, bytes);
}

}  // namespace kesta::platform
