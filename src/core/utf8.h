// UTF-8, in which the file stores texts, to code units: length first, then straight into the text's final place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "core/ascii.h"

namespace kesta {

/// What a lead byte announces: how many bytes, and which value may come after it.
struct Utf8Lead {
    size_t bytes;  // 0: no lead byte
    char32_t bits;
    char32_t least;
};

constexpr Utf8Lead ReadUtf8Lead(unsigned char lead) noexcept
{
    if (lead >= 0xC0 && lead < 0xE0) return {2, lead & 0x1Fu, 0x80};
    if (lead >= 0xE0 && lead < 0xF0) return {3, lead & 0x0Fu, 0x800};
    if (lead >= 0xF0 && lead < 0xF8) return {4, lead & 0x07u, 0x10000};
    return {0, 0, 0};
}

/// Takes one character that is not ASCII off the text; nothing when it is not sound.
inline std::optional<char32_t> TakeUtf8(std::string_view& text) noexcept
{
    const Utf8Lead lead = ReadUtf8Lead(static_cast<unsigned char>(text.front()));
    if (lead.bytes == 0 || lead.bytes > text.size()) return std::nullopt;
    char32_t value = lead.bits;
    for (size_t i = 1; i < lead.bytes; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0) != 0x80) return std::nullopt;
        value = value << 6 | (byte & 0x3F);
    }
    if (value < lead.least || value > 0x10FFFF || (value >= 0xD800 && value < 0xE000)) return std::nullopt;
    text.remove_prefix(lead.bytes);
    return value;
}

/// The text's length in code units; nothing when it is not sound UTF-8.
inline std::optional<size_t> WideLength(std::string_view text) noexcept
{
    if (IsAscii(text)) return text.size();
    size_t units = 0;
    while (!text.empty()) {
        if (static_cast<unsigned char>(text.front()) < 0x80) {
            text.remove_prefix(1);
            ++units;
        } else if (const std::optional<char32_t> character = TakeUtf8(text)) {
            units += *character > 0xFFFF ? size_t{2} : size_t{1};
        } else {
            return std::nullopt;
        }
    }
    return units;
}

/// Converts sound UTF-8 into `units` code units, as WideLength counted them.
inline void WidenUtf8(std::string_view text, DbChar* out, size_t units) noexcept
{
    if (units == text.size()) return WidenAscii(text, out);
    while (!text.empty()) {
        if (static_cast<unsigned char>(text.front()) < 0x80) {
            *out++ = static_cast<DbChar>(text.front());
            text.remove_prefix(1);
            continue;
        }
        const char32_t character = TakeUtf8(text).value_or(0xFFFD);
        if (character > 0xFFFF) {
            *out++ = static_cast<DbChar>(0xD800 + ((character - 0x10000) >> 10));
            *out++ = static_cast<DbChar>(0xDC00 + (character & 0x3FF));
        } else {
            *out++ = static_cast<DbChar>(character);
        }
    }
}

}  // namespace kesta
