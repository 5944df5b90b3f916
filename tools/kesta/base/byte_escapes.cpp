#include "base/byte_escapes.h"

#include <cstdint>

#include "base/text.h"

namespace kesta {
namespace {

// Of U+EF80 to U+EFFF in UTF-8. Hardly any name has it, so that it is all that has to be looked for.
constexpr char kFirstByte = '\xEE';

}  // namespace

std::string EscapeBytes(std::string_view name)
{
    if (name.find(kFirstByte) == std::string_view::npos && IsValidUtf8(name)) {
        return std::string(name);
    }
    std::string text;
    while (!name.empty()) {
        std::string_view rest = name;
        const char32_t c = NextCharacter(rest);
        const std::string_view bytes = name.substr(0, name.size() - rest.size());
        if (c <= kLastCharacter && EscapedByte(c) == 0) {
            text += bytes;
        } else {
            for (const char byte : bytes) {
                AppendCharacter(text, char32_t{0xEF00} + static_cast<uint8_t>(byte));
            }
        }
        name = rest;
    }
    return text;
}

std::string UnescapeBytes(std::string_view text)
{
    if (text.find(kFirstByte) == std::string_view::npos) {
        return std::string(text);
    }
    std::string name;
    while (!text.empty()) {
        std::string_view rest = text;
        const unsigned byte = EscapedByte(NextCharacter(rest));
        if (byte != 0) {
            name += static_cast<char>(byte);
        } else {
            name += text.substr(0, text.size() - rest.size());
        }
        text = rest;
    }
    return name;
}

bool HasEscapedBytes(std::string_view text)
{
    while (!text.empty()) {
        if (EscapedByte(NextCharacter(text)) != 0) {
            return true;
        }
    }
    return false;
}

}  // namespace kesta
