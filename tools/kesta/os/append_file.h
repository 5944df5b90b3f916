// A file that is only added to.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "os/status.h"

namespace kesta::os {

class AppendFile {
public:
    AppendFile() = default;
    AppendFile(const AppendFile&) = delete;
    AppendFile& operator=(const AppendFile&) = delete;
    ~AppendFile();

    /// Creates it where it is not there.
    Status open(const std::string& path);
    [[nodiscard]] bool isOpen() const { return handle_ != -1; }
    Status add(std::string_view text);

private:
    intptr_t handle_ = -1;
};

}  // namespace kesta::os
