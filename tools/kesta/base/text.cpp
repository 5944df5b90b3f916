#include "base/text.h"

#include <utf8.h>

#include <cstdint>
#include <iterator>

#include "base/byte_escapes.h"

namespace kesta {
namespace {

constexpr char32_t kInvalidByte = kLastCharacter + 1;  // plus the byte

// Whether a terminal would act on the character instead of showing it: C0, C1, and what reorders text.
bool IsControl(char32_t c)
{
    return c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == 0x200E || c == 0x200F || (c >= 0x2028 && c <= 0x202E) ||
           (c >= 0x2066 && c <= 0x2069) || c == 0xFEFF;
}

// By hand, like the combining characters: wcwidth() goes by the locale, and Windows has nothing of the kind.
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

char32_t NextCharacter(std::string_view& text)
{
    auto at = text.begin();
    try {
        const char32_t character = utf8::next(at, text.end());
        text.remove_prefix(static_cast<size_t>(at - text.begin()));
        return character;
    } catch (const utf8::exception&) {
        const auto byte = static_cast<uint8_t>(text.front());
        text.remove_prefix(1);
        return kInvalidByte + byte;
    }
}

void AppendCharacter(std::string& text, char32_t character)
{
    utf8::unchecked::append(character, std::back_inserter(text));
}

bool IsValidUtf8(std::string_view text)
{
    return utf8::is_valid(text.begin(), text.end());
}

std::string Printable(std::string_view text)
{
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const char32_t c = NextCharacter(text);
        if (c > kLastCharacter) {
            shown += "\\x";
            AppendHex(shown, c - kInvalidByte, 2);
        } else if (const unsigned byte = EscapedByte(c); byte != 0) {
            shown += "\\x";
            AppendHex(shown, byte, 2);
        } else if (IsControl(c)) {
            shown += "\\u";
            AppendHex(shown, c, 4);
        } else {
            AppendCharacter(shown, c);
        }
    }
    return shown;
}

size_t DisplayWidth(std::string_view text)
{
    size_t width = 0;
    while (!text.empty()) {
        const char32_t c = NextCharacter(text);
        width += IsCombining(c) ? 0u : IsWide(c) ? 2u : 1u;
    }
    return width;
}

}  // namespace kesta
