// Patterns for names and paths, as users write them to leave something out.
#pragma once

#include <string_view>

namespace kesta {

/// '*' stands for any characters but '/', '**' for any at all, '?' for one, [a-z] and [!a-z] for one of a set. A '['
/// without its end stands for itself. ASCII letters match in either case, as on the file systems of phones.
[[nodiscard]] bool MatchesGlob(std::string_view glob, std::string_view path);

}  // namespace kesta
