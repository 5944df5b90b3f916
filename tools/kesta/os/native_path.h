// Paths as the system has them. In the client they are text: on Linux, where a name is any bytes, those that are not
// UTF-8 are escaped (base/byte_escapes.h).
#pragma once

#include <string>
#include <string_view>

namespace kesta::os {

/// For functions of other libraries that open files.
[[nodiscard]] std::string ToNativePath(std::string_view path);
[[nodiscard]] std::string FromNativePath(std::string_view path);

}  // namespace kesta::os
