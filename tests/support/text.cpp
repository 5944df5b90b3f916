#include "support/text.h"

#include <stdexcept>

namespace kesta::test {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

/// How many bytes follow a first byte.
int FollowingBytes(unsigned char first)
{
    if (first < 0x80) {
        return 0;
    }
    if (first >= 0xC2 && first < 0xE0) {
        return 1;
    }
    if (first >= 0xE0 && first < 0xF0) {
        return 2;
    }
    if (first >= 0xF0 && first < 0xF5) {
        return 3;
    }
    throw std::invalid_argument("a test's text is not UTF-8");
}

char32_t NextCodePoint(std::string_view& utf8)
{
    const auto first = static_cast<unsigned char>(utf8[0]);
    const int following = FollowingBytes(first);
    if (utf8.size() <= static_cast<size_t>(following)) {
        throw std::invalid_argument("a test's text ends in a character");
    }
    char32_t code = following == 0 ? first : first & (0x3Fu >> following);
    for (int i = 1; i <= following; ++i) {
        code = code << 6 | (static_cast<unsigned char>(utf8[static_cast<size_t>(i)]) & 0x3Fu);
    }
    utf8.remove_prefix(static_cast<size_t>(following) + 1);
    return code;
}

void AppendUtf8(std::string& out, char32_t code)
{
    const auto byte = [&](char32_t bits) { out.push_back(static_cast<char>(static_cast<unsigned char>(bits))); };
    if (code < 0x80) {
        byte(code);
    } else if (code < 0x800) {
        byte(0xC0 | code >> 6);
        byte(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        byte(0xE0 | code >> 12);
        byte(0x80 | (code >> 6 & 0x3F));
        byte(0x80 | (code & 0x3F));
    } else {
        byte(0xF0 | code >> 18);
        byte(0x80 | (code >> 12 & 0x3F));
        byte(0x80 | (code >> 6 & 0x3F));
        byte(0x80 | (code & 0x3F));
    }
}

bool IsLead(char32_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}
bool IsTrail(char32_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

}  // namespace

Text::Text(std::string_view utf8)
{
    while (!utf8.empty()) {
        const char32_t code = NextCodePoint(utf8);
        if (code >= 0x10000) {
            units_.push_back(static_cast<DbChar>(0xD800 + ((code - 0x10000) >> 10)));
            units_.push_back(static_cast<DbChar>(0xDC00 + ((code - 0x10000) & 0x3FF)));
        } else {
            units_.push_back(static_cast<DbChar>(code));
        }
    }
    units_.push_back(0);
}

Text Text::ofUnits(std::initializer_list<unsigned> units)
{
    Text text;
    for (const unsigned unit : units) {
        text.units_.push_back(static_cast<DbChar>(unit));
    }
    text.units_.push_back(0);
    return text;
}

std::string Utf8(const DbChar* text)
{
    if (text == nullptr) {
        return "<null>";
    }
    std::string out;
    while (*text != 0) {
        const char32_t unit = *text++;
        if (IsLead(unit) && IsTrail(*text)) {
            AppendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (static_cast<char32_t>(*text++) - 0xDC00));
        } else {
            AppendUtf8(out, IsLead(unit) || IsTrail(unit) ? kReplacement : unit);
        }
    }
    return out;
}

std::string AnsiCharacter()
{
    const std::string emoji = "\xF0\x9F\x98\x80";
    return Ansi(W(emoji)) == emoji ? emoji : "\xC2\xA7";
}

}  // namespace kesta::test
