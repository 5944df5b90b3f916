// The allocator that library and callers share for what callers free themselves.
#pragma once

#include <cstddef>

namespace kesta::platform {

/// Null when there is no memory.
void* AllocateForCaller(size_t bytes) noexcept;
/// Null when there is no memory; the old block then stays as it is.
void* ReallocateForCaller(void* memory, size_t bytes) noexcept;

}  // namespace kesta::platform
