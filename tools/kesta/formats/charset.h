// Foreign bytes to UTF-8. What comes out is always valid UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace kesta::formats {

[[nodiscard]] bool IsUtf8(std::string_view bytes);

/// Windows-1252, which is what Latin-1 means in practice: the bytes 80 to 9F hold letters and punctuation, too.
[[nodiscard]] std::string FromLatin1(std::string_view bytes);

/// The text as UTF-8 if it is valid UTF-8, else from Latin-1.
[[nodiscard]] std::string FromUtf8OrLatin1(std::string_view bytes);

/// By the name of a character set as files spell it: ISO-8859-2, Shift_JIS, Windows-1251. UTF-8, unknown names and none
/// go by validity.
[[nodiscard]] std::string FromNamedCharset(std::string_view bytes, std::string_view charset);

/// A whole file: UTF-16 with a byte order mark is converted, UTF-8's byte order mark is dropped, all else is left as it
/// is.
[[nodiscard]] std::string WithoutByteOrderMark(std::string_view file);

}  // namespace kesta::formats
