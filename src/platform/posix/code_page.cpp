#include "platform/code_page.h"

#include <utf8cpp/utf8/unchecked.h>

namespace kesta::platform {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsLead(char32_t unit) noexcept
{
    return unit >= 0xD800 && unit < 0xDC00;
}
bool IsTrail(char32_t unit) noexcept
{
    return unit >= 0xDC00 && unit < 0xE000;
}

/// Takes the next code point off the text.
char32_t NextCodePoint(const DbChar*& text, const DbChar* end) noexcept
{
    const char32_t unit = *text++;
    if (IsLead(unit) && text != end && IsTrail(*text)) {
        return 0x10000 + ((unit - 0xD800) << 10) + (static_cast<char32_t>(*text++) - 0xDC00);
    }
    return IsLead(unit) || IsTrail(unit) ? kReplacement : unit;
}

constexpr ptrdiff_t kMostBytes = 4;

ptrdiff_t BytesOf(char32_t character) noexcept
{
    return character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : kMostBytes;
}

}  // namespace

size_t Utf8FromWide(const DbChar* text, size_t length, char* out, size_t room) noexcept
{
    const DbChar* const end = text + length;
    char* const begin = out;
    const char* const full = out + room;
    while (text != end) {
        const char32_t character = NextCodePoint(text, end);
        if (full - out < kMostBytes && full - out < BytesOf(character)) {
            return kDoesNotFit;
        }
        out = utf8::unchecked::append(character, out);
    }
    return static_cast<size_t>(out - begin);
}

size_t AnsiFromWide(const DbChar* text, size_t length, char* out, size_t room) noexcept
{
    return Utf8FromWide(text, length, out, room);
}

}  // namespace kesta::platform
