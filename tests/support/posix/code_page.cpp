#include "support/text.h"

namespace kesta::test {

std::string Ansi(const DbChar* text)
{
    return Utf8(text);
}

}  // namespace kesta::test
