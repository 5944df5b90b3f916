// UTF-8 as the wide functions take it, and back. The library's texts are wide here, too: they are converted alike.
#pragma once

#include <kesta_db/cpp/base.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace kesta::os {

/// std::nullopt if the text is not valid UTF-8 or holds a zero character.
[[nodiscard]] inline std::optional<std::wstring> ToWide(std::string_view utf8)
{
    try {
        return kesta_db::detail::Text(utf8);
    } catch (const kesta_db::Error&) {
        return std::nullopt;
    }
}

/// A lone surrogate becomes U+FFFD.
[[nodiscard]] inline std::string FromWide(const wchar_t* text)
{
    return kesta_db::detail::Utf8(text);
}

}  // namespace kesta::os
