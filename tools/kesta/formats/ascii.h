// Letters without regard to their case, and hexadecimal digits, in ASCII only: the keywords of all formats are ASCII.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace kesta::formats {

[[nodiscard]] constexpr char ToUpper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
[[nodiscard]] constexpr bool IsLetter(char c)
{
    return ToUpper(c) >= 'A' && ToUpper(c) <= 'Z';
}
[[nodiscard]] constexpr bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}
[[nodiscard]] constexpr bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}
[[nodiscard]] constexpr bool IsSpace(char c)
{
    return IsBlank(c) || c == '\r' || c == '\n' || c == '\f' || c == '\v';
}

[[nodiscard]] inline std::string ToUpper(std::string_view text)
{
    std::string upper(text);
    std::ranges::transform(upper, upper.begin(), [](char c) { return ToUpper(c); });
    return upper;
}

[[nodiscard]] constexpr bool EqualsIgnoringCase(std::string_view a, std::string_view b)
{
    return std::ranges::equal(a, b, [](char x, char y) { return ToUpper(x) == ToUpper(y); });
}

[[nodiscard]] constexpr bool StartsIgnoringCase(std::string_view text, std::string_view start)
{
    return EqualsIgnoringCase(text.substr(0, start.size()), start);
}

[[nodiscard]] constexpr std::string_view Trimmed(std::string_view text)
{
    while (!text.empty() && IsSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

/// The value of a hexadecimal digit; -1 for any other character.
[[nodiscard]] constexpr int HexValue(char c)
{
    if (IsDigit(c)) {
        return c - '0';
    }
    const char upper = ToUpper(c);
    return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

/// Puts the byte in the place of each prefix and the two hexadecimal digits that follow it. A prefix without them
/// stands for itself.
[[nodiscard]] inline std::string HexDecoded(std::string_view text, char prefix)
{
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        const int high = text[i] == prefix && i + 2 < text.size() ? HexValue(text[i + 1]) : -1;
        const int low = high >= 0 ? HexValue(text[i + 2]) : -1;
        if (low < 0) {
            bytes += text[i];
            continue;
        }
        bytes += static_cast<char>(high << 4 | low);
        i += 2;
    }
    return bytes;
}

}  // namespace kesta::formats
