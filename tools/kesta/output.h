// Standard output.
#pragma once

#include <cstdio>
#include <string_view>

namespace kesta {

/// A reader that has gone away (kesta files | head) is no failure: nobody misses the rest.
inline void Print(std::string_view text)
{
    (void)std::fwrite(text.data(), 1, text.size(), stdout);
    (void)std::fflush(stdout);
}

}  // namespace kesta
