#include "base/text.h"

#include <array>
#include <cstdint>

namespace kesta {
namespace {

constexpr char32_t kInvalidByte = kLastCharacter + 1;  // plus the byte
constexpr char32_t kReplacement = 0xFFFD;

bool IsSurrogate(char32_t character)
{
    return character >= 0xD800 && character <= 0xDFFF;
}

// Whether a terminal would act on the character instead of showing it: C0, C1, and what reorders text.
bool IsControl(char32_t c)
{
    return c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == 0x200E || c == 0x200F || (c >= 0x2028 && c <= 0x202E) ||
           (c >= 0x2066 && c <= 0x2069) || c == 0xFEFF;
}

bool IsWide(char32_t c)
{
    return (c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xA4CF) || (c >= 0xAC00 && c <= 0xD7A3) ||
           (c >= 0xF900 && c <= 0xFAFF) || (c >= 0xFE30 && c <= 0xFE6F) || (c >= 0xFF00 && c <= 0xFF60) ||
           (c >= 0xFFE0 && c <= 0xFFE6) || (c >= 0x1F300 && c <= 0x1F64F) || (c >= 0x1F680 && c <= 0x1F6FF) ||
           (c >= 0x1F900 && c <= 0x1FAFF) || (c >= 0x20000 && c <= 0x3FFFD);
}

bool IsCombining(char32_t c)
{
    return (c >= 0x0300 && c <= 0x036F) || (c >= 0x20D0 && c <= 0x20FF) || (c >= 0xFE00 && c <= 0xFE0F) || c == 0x200D;
}

void AppendHex(std::string& text, char32_t value, int digits)
{
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4) {
        text += "0123456789abcdef"[(value >> shift) & 0xF];
    }
}

}  // namespace

char32_t NextCharacter(std::string_view& utf8)
{
    const auto byte = [&](size_t at) { return static_cast<uint8_t>(utf8[at]); };
    const uint8_t first = byte(0);
    const size_t length = first < 0x80   ? 1
                          : first < 0xC2 ? 0
                          : first < 0xE0 ? 2
                          : first < 0xF0 ? 3
                          : first < 0xF5 ? 4
                                         : 0;
    if (length == 1) {
        utf8.remove_prefix(1);
        return first;
    }
    char32_t character = length == 2 ? first & 0x1Fu : length == 3 ? first & 0x0Fu : first & 0x07u;
    bool valid = length != 0 && utf8.size() >= length;
    for (size_t i = 1; valid && i < length; ++i) {
        valid = (byte(i) & 0xC0) == 0x80;
        character = (character << 6) | (byte(i) & 0x3Fu);
    }
    constexpr std::array<char32_t, 5> kSmallest{0, 0, 0x80, 0x800, 0x10000};
    valid = valid && character >= kSmallest[length] && character <= kLastCharacter && !IsSurrogate(character);
    utf8.remove_prefix(valid ? length : 1);
    return valid ? character : kInvalidByte + first;
}

void AppendCharacter(std::string& utf8, char32_t c)
{
    const auto put = [&](char32_t byte) { utf8 += static_cast<char>(byte); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | (c >> 6));
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | (c >> 12));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | (c >> 18));
        put(0x80 | ((c >> 12) & 0x3F));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

bool IsValidUtf8(std::string_view text)
{
    while (!text.empty()) {
        if (NextCharacter(text) > kLastCharacter) {
            return false;
        }
    }
    return true;
}

std::optional<DbText> ToDbText(std::string_view utf8)
{
    DbText text;
    text.reserve(utf8.size());
    while (!utf8.empty()) {
        const char32_t c = NextCharacter(utf8);
        if (c > kLastCharacter || c == 0) {
            return std::nullopt;
        }
        if (c >= 0x10000) {
            text += static_cast<DbChar>(0xD800 + ((c - 0x10000) >> 10));
            text += static_cast<DbChar>(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            text += static_cast<DbChar>(c);
        }
    }
    return text;
}

std::string FromDbText(const DbChar* text)
{
    std::string utf8;
    if (text == nullptr) {
        return utf8;
    }
    while (*text != 0) {
        char32_t c = static_cast<char32_t>(*text++);
        if (IsSurrogate(c)) {
            const char32_t next = static_cast<char32_t>(*text);
            const bool isPair = c < 0xDC00 && next >= 0xDC00 && next <= 0xDFFF;
            c = isPair ? 0x10000 + ((c - 0xD800) << 10) + (next - 0xDC00) : kReplacement;
            if (isPair) {
                ++text;
            }
        }
        AppendCharacter(utf8, c);
    }
    return utf8;
}

std::string Printable(std::string_view utf8)
{
    std::string text;
    text.reserve(utf8.size());
    while (!utf8.empty()) {
        const char32_t c = NextCharacter(utf8);
        if (c > kLastCharacter) {
            text += "\\x";
            AppendHex(text, c - kInvalidByte, 2);
        } else if (IsControl(c)) {
            text += "\\u";
            AppendHex(text, c, 4);
        } else {
            AppendCharacter(text, c);
        }
    }
    return text;
}

size_t DisplayWidth(std::string_view utf8)
{
    size_t width = 0;
    while (!utf8.empty()) {
        const char32_t c = NextCharacter(utf8);
        width += IsCombining(c) ? 0u : IsWide(c) ? 2u : 1u;
    }
    return width;
}

}  // namespace kesta
