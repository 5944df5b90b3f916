// The file system of a folder as a whole. posix/ and windows/ implement it.
#pragma once

#include <cstdint>
#include <string>

#include "os/status.h"

namespace kesta::os {

/// When what is written is to survive a power failure: at once, or with what is flushed later.
enum class Flush { kNow, kLater };

/// Makes all that was written to a file system survive a power failure at once.
class Volume {
public:
    Volume() = default;
    Volume(const Volume&) = delete;
    Volume& operator=(const Volume&) = delete;
    ~Volume();

    /// Before anything is written that is to be flushed by it. False where files have to be flushed one by one: the
    /// system cannot do it, or would not tell of a failure.
    [[nodiscard]] bool open(const std::string& directory);
    Status flush();

private:
    [[maybe_unused]] intptr_t handle_ = -1;  // Windows has no such flush.
};

}  // namespace kesta::os
