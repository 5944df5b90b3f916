#include "formats/charset.h"

#include <utf8.h>

#include <array>
#include <cstdint>
#include <iterator>

#include "formats/ascii.h"

namespace kesta::formats {
namespace {

// Windows-1252 from 80 to 9F; its five gaps stand for themselves.
constexpr std::array<char16_t, 32> kUpperControls = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                     0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                     0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                     0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

std::string FromUtf16(std::string_view bytes, bool bigEndian)
{
    std::u16string units;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        units += static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first);
    }
    std::string text;
    auto out = std::back_inserter(text);
    for (std::size_t i = 0; i < units.size(); ++i) {
        char32_t character = units[i];
        if (character >= 0xD800 && character < 0xE000) {
            const char32_t next = i + 1 < units.size() ? units[i + 1] : 0;
            if (character < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
                character = 0x10000 + ((character - 0xD800) << 10) + (next - 0xDC00);
                ++i;
            } else {
                character = 0xFFFD;
            }
        }
        out = utf8::append(character, out);
    }
    return text;
}

}  // namespace

bool IsUtf8(std::string_view bytes)
{
    return utf8::is_valid(bytes.begin(), bytes.end());
}

std::string FromLatin1(std::string_view bytes)
{
    std::string text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        char32_t character = static_cast<unsigned char>(c);
        if (character >= 0x80 && character < 0xA0) character = kUpperControls[character - 0x80];
        utf8::append(character, std::back_inserter(text));
    }
    return text;
}

std::string FromUtf8OrLatin1(std::string_view bytes)
{
    return IsUtf8(bytes) ? std::string(bytes) : FromLatin1(bytes);
}

std::string FromNamedCharset(std::string_view bytes, std::string_view charset)
{
    for (const std::string_view name : {"ISO-8859-1", "ISO8859-1", "ISO_8859-1", "LATIN1", "WINDOWS-1252", "CP1252"})
        if (EqualsIgnoringCase(charset, name)) return FromLatin1(bytes);
    return FromUtf8OrLatin1(bytes);
}

std::string WithoutByteOrderMark(std::string_view file)
{
    if (file.starts_with("\xFF\xFE")) return FromUtf16(file.substr(2), false);
    if (file.starts_with("\xFE\xFF")) return FromUtf16(file.substr(2), true);
    if (file.starts_with(kUtf8Mark)) file.remove_prefix(kUtf8Mark.size());
    return std::string(file);
}

}  // namespace kesta::formats
