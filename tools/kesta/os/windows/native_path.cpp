#include "os/native_path.h"

namespace kesta::os {

// They are taken in UTF-8, and names that are none are not handed out.
std::string ToNativePath(std::string_view path)
{
    return std::string(path);
}

std::string FromNativePath(std::string_view path)
{
    return std::string(path);
}

}  // namespace kesta::os
