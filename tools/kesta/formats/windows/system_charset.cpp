#include "formats/system_charset.h"

#include <windows.h>

#include <limits>

namespace kesta::formats {

std::optional<std::string> FromSystemCharset(std::string_view bytes, const SystemCharset& charset)
{
    if (bytes.empty()) {
        return std::string();
    }
    if (bytes.size() > static_cast<size_t>(std::numeric_limits<int>::max()) / 4) {
        return std::nullopt;
    }
    const int length = static_cast<int>(bytes.size());
    const int units = MultiByteToWideChar(charset.windowsCodePage, 0, bytes.data(), length, nullptr, 0);
    if (units <= 0) {
        return std::nullopt;
    }
    std::wstring wide(static_cast<size_t>(units), L'\0');
    if (MultiByteToWideChar(charset.windowsCodePage, 0, bytes.data(), length, wide.data(), units) != units) {
        return std::nullopt;
    }
    const int size = WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
    if (size <= 0) {
        return std::nullopt;
    }
    std::string text(static_cast<size_t>(size), '\0');
    if (WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, text.data(), size, nullptr, nullptr) != size) {
        return std::nullopt;
    }
    return text;
}

}  // namespace kesta::formats
