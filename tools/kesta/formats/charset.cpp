#include "formats/charset.h"

#include <utf8.h>

#include <array>
#include <cstdint>
#include <iterator>

#include "formats/ascii.h"
#include "formats/system_charset.h"

namespace kesta::formats {
namespace {

// Windows-1252 from 80 to 9F; its five gaps stand for themselves.
constexpr std::array<char16_t, 32> kUpperControls = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                     0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                     0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                     0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// Files spell names in many ways: "ISO-8859-2", "iso_8859-2", "ISO8859-2". Letters and digits are compared.
struct NamedCharset {
    std::string_view name;
    SystemCharset charset;
};

constexpr std::array kCharsets{NamedCharset{"ISO88592", {"ISO-8859-2", 28592}},
                               NamedCharset{"LATIN2", {"ISO-8859-2", 28592}},
                               NamedCharset{"ISO88593", {"ISO-8859-3", 28593}},
                               NamedCharset{"ISO88594", {"ISO-8859-4", 28594}},
                               NamedCharset{"ISO88595", {"ISO-8859-5", 28595}},
                               NamedCharset{"ISO88596", {"ISO-8859-6", 28596}},
                               NamedCharset{"ISO88597", {"ISO-8859-7", 28597}},
                               NamedCharset{"ISO88598", {"ISO-8859-8", 28598}},
                               NamedCharset{"ISO88599", {"ISO-8859-9", 28599}},
                               NamedCharset{"LATIN5", {"ISO-8859-9", 28599}},
                               NamedCharset{"ISO885913", {"ISO-8859-13", 28603}},
                               NamedCharset{"ISO885915", {"ISO-8859-15", 28605}},
                               NamedCharset{"LATIN9", {"ISO-8859-15", 28605}},
                               NamedCharset{"WINDOWS1250", {"CP1250", 1250}},
                               NamedCharset{"WINDOWS1251", {"CP1251", 1251}},
                               NamedCharset{"WINDOWS1253", {"CP1253", 1253}},
                               NamedCharset{"WINDOWS1254", {"CP1254", 1254}},
                               NamedCharset{"WINDOWS1255", {"CP1255", 1255}},
                               NamedCharset{"WINDOWS1256", {"CP1256", 1256}},
                               NamedCharset{"WINDOWS1257", {"CP1257", 1257}},
                               NamedCharset{"WINDOWS1258", {"CP1258", 1258}},
                               NamedCharset{"KOI8R", {"KOI8-R", 20866}},
                               NamedCharset{"KOI8U", {"KOI8-U", 21866}},
                               NamedCharset{"SHIFTJIS", {"CP932", 932}},
                               NamedCharset{"SJIS", {"CP932", 932}},
                               NamedCharset{"XSJIS", {"CP932", 932}},
                               NamedCharset{"CP932", {"CP932", 932}},
                               NamedCharset{"WINDOWS31J", {"CP932", 932}},
                               NamedCharset{"EUCJP", {"EUC-JP", 20932}},
                               NamedCharset{"GB2312", {"GBK", 936}},
                               NamedCharset{"GBK", {"GBK", 936}},
                               NamedCharset{"GB18030", {"GB18030", 54936}},
                               NamedCharset{"BIG5", {"BIG5", 950}},
                               NamedCharset{"EUCKR", {"CP949", 949}},
                               NamedCharset{"KSC56011987", {"CP949", 949}},
                               NamedCharset{"TIS620", {"CP874", 874}}};

// "CP1251" and "WINDOWS-1251" are one name.
std::string Normalized(std::string_view charset)
{
    std::string name;
    for (const char c : charset) {
        const bool isLower = c >= 'a' && c <= 'z';
        if (isLower || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) {
            name += isLower ? static_cast<char>(c - 'a' + 'A') : c;
        }
    }
    return name.starts_with("CP125") ? "WINDOWS" + name.substr(2) : name;
}

constexpr std::string_view kUtf8ByteOrderMark = "\xEF\xBB\xBF";

std::string FromUtf16(std::string_view bytes, bool bigEndian)
{
    std::u16string units;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        units += static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first);
    }
    std::string text;
    auto out = std::back_inserter(text);
    for (size_t i = 0; i < units.size(); ++i) {
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
        if (character >= 0x80 && character < 0xA0) {
            character = kUpperControls[character - 0x80];
        }
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
    if (charset.empty()) {
        return FromUtf8OrLatin1(bytes);
    }
    const std::string normalized = Normalized(charset);
    for (const std::string_view name : {"ISO88591", "LATIN1", "WINDOWS1252"}) {
        if (normalized == name) {
            return FromLatin1(bytes);
        }
    }
    for (const auto& [name, systemCharset] : kCharsets) {
        if (normalized != name) {
            continue;
        }
        if (auto text = FromSystemCharset(bytes, systemCharset)) {
            return *std::move(text);
        }
    }
    return FromUtf8OrLatin1(bytes);
}

std::string WithoutByteOrderMark(std::string_view file)
{
    if (file.starts_with("\xFF\xFE")) {
        return FromUtf16(file.substr(2), false);
    }
    if (file.starts_with("\xFE\xFF")) {
        return FromUtf16(file.substr(2), true);
    }
    if (file.starts_with(kUtf8ByteOrderMark)) {
        file.remove_prefix(kUtf8ByteOrderMark.size());
    }
    return std::string(file);
}

}  // namespace kesta::formats
