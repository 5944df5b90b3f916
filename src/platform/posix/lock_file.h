// A file whose lock excludes other processes. It belongs to the open file, not to the thread or process: threads have
// to exclude each other by other means. The system lets go of it when its holder dies.
#pragma once

#include "platform/files.h"

namespace kesta::platform {

class LockFile {
public:
    constexpr LockFile() = default;
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

    /// "<name>.lock" in the user's runtime folder, else in `otherFolder()`; false when it can be had in neither.
    bool open(const char* name, Path (*otherFolder)()) noexcept;
    void close() noexcept;
    [[nodiscard]] bool isOpen() const { return file_ >= 0; }

    void lock() noexcept;
    void unlock() noexcept;

    /// Opens the file once more, not locked. In a forked process the inherited one shares its lock with the parent.
    void openAnew() noexcept;

private:
    [[nodiscard]] bool wasRemoved() const noexcept;
    bool openAt(const char* folder, const char* name) noexcept;

    int file_ = -1;
    char path_[4096] = {};
};

}  // namespace kesta::platform
