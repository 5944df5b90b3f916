// Text at the client's edges: valid UTF-8 inside, nothing that moves the cursor on a terminal.
#pragma once

#include <string>
#include <string_view>

namespace kesta {

[[nodiscard]] bool IsValidUtf8(std::string_view text);

/// Takes the next character off the text; invalid bytes come out one by one as values above kLastCharacter.
[[nodiscard]] char32_t NextCharacter(std::string_view& text);
inline constexpr char32_t kLastCharacter = 0x10FFFF;
void AppendCharacter(std::string& text, char32_t character);

/// For the terminal: control characters and invalid bytes are written out as \xNN or \uNNNN.
[[nodiscard]] std::string Printable(std::string_view text);
/// How many columns the text takes on a terminal: two for wide characters, none for combining ones.
[[nodiscard]] size_t DisplayWidth(std::string_view text);

}  // namespace kesta
