// The log of what was done to files, with the bytes written: the bench plays it back to find what a power loss could
// leave on the disk. Written while armed, to a file that the bench names; tests/torture/disk.py reads it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kesta::torture {

enum class Operation : int32_t {
    kOpen = 1,  // file, flags as offset, path
    kWrite,     // file, offset, bytes
    kTruncate,  // file, size as offset
    kSync,      // file
    kUnlink,    // path
    kRename,    // path, zero byte, path
    kLink,      // path, zero byte, path
    kMakeFolder,
    kClose,
    kMark,  // the bench's own: the number as offset
};

/// Notes an operation that has succeeded.
void Log(Operation operation, int file, int64_t offset, const void* bytes, size_t length) noexcept;
void LogPath(Operation operation, const char* path) noexcept;
void LogPaths(Operation operation, const char* from, const char* to) noexcept;

}  // namespace kesta::torture
