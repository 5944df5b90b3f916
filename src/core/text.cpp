#include "core/text.h"

#include <string>

namespace kesta {

size_t LengthOf(const DbChar* text) noexcept
{
    return std::char_traits<DbChar>::length(text);
}

}  // namespace kesta
