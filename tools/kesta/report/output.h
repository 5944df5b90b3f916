// Standard output.
#pragma once

#include <cerrno>
#include <cstdio>
#include <string_view>

namespace kesta {

/// Whether something could not be written: the disk is full, say. A reader that has gone away (kesta files | head) is
/// no failure: nobody misses the rest.
inline bool outputHasFailed = false;

inline void Print(std::string_view text)
{
    errno = 0;
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    // Windows knows a broken pipe as an invalid argument.
    if (!isWritten && errno != EPIPE && errno != EINVAL) {
        outputHasFailed = true;
    }
}

}  // namespace kesta
