#include "os/native_path.h"

#include "base/byte_escapes.h"

namespace kesta::os {

std::string ToNativePath(std::string_view path)
{
    return UnescapeBytes(path);
}

std::string FromNativePath(std::string_view path)
{
    return EscapeBytes(path);
}

}  // namespace kesta::os
