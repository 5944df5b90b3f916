// Text at the client's edges: UTF-8 inside, UTF-16 towards the library, nothing that moves the cursor on a terminal.
#pragma once

#include <kesta_db/kesta_db.h>

#include <optional>
#include <string>
#include <string_view>

namespace kesta {

using DbText = std::basic_string<DbChar>;

[[nodiscard]] bool IsValidUtf8(std::string_view text);
/// std::nullopt if the text is not valid UTF-8 or holds a zero character.
[[nodiscard]] std::optional<DbText> ToDbText(std::string_view text);
/// Null gives the empty text; a lone surrogate becomes U+FFFD.
[[nodiscard]] std::string FromDbText(const DbChar* text);

/// Takes the next character off the text; invalid bytes come out one by one as values above kLastCharacter.
[[nodiscard]] char32_t NextCharacter(std::string_view& text);
inline constexpr char32_t kLastCharacter = 0x10FFFF;
void AppendCharacter(std::string& text, char32_t character);

/// For the terminal: control characters and invalid bytes are written out as \xNN or \uNNNN.
[[nodiscard]] std::string Printable(std::string_view text);
/// How many columns the text takes on a terminal: two for wide characters, none for combining ones.
[[nodiscard]] size_t DisplayWidth(std::string_view text);

}  // namespace kesta
