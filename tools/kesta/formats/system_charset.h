// Character sets that the operating system converts.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kesta::formats {

/// What a character set is called on either kind of system.
struct SystemCharset {
    const char* posixName;
    unsigned windowsCodePage;
};

/// As UTF-8; what is not valid is replaced as the system does. std::nullopt if the system does not have the character
/// set. posix/ and windows/ implement it.
[[nodiscard]] std::optional<std::string> FromSystemCharset(std::string_view bytes, const SystemCharset& charset);

}  // namespace kesta::formats
