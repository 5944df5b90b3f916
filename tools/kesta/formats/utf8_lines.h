// Cards and calendars in UTF-8, which is what phones expect, whatever they were written in.
#pragma once

#include <string>
#include <string_view>

namespace kesta::formats {

/// A whole file or an entry of one, without a byte order mark. A line that says by CHARSET in what it is written is
/// converted from that, any other one from Latin-1 if it is not valid UTF-8: files of several programs put together mix
/// them. Quoted-printable lines stay as they are.
[[nodiscard]] std::string WithUtf8Lines(std::string_view file);

}  // namespace kesta::formats
