// File names that are not valid UTF-8, as text: each byte that is none becomes one of the characters U+EF80 to U+EFFF,
// which are nobody's, and comes back as that byte. Those characters themselves are escaped byte by byte, so that no two
// names become one.
#pragma once

#include <string>
#include <string_view>

namespace kesta {

/// Valid UTF-8 for any name; the name itself where nothing has to be escaped.
[[nodiscard]] std::string EscapeBytes(std::string_view name);
[[nodiscard]] std::string UnescapeBytes(std::string_view text);
/// The byte that the character stands for; 0 for any other character.
[[nodiscard]] constexpr unsigned EscapedByte(char32_t character)
{
    return character >= 0xEF80 && character <= 0xEFFF ? static_cast<unsigned>(character - 0xEF00) : 0;
}
[[nodiscard]] bool HasEscapedBytes(std::string_view text);

}  // namespace kesta
