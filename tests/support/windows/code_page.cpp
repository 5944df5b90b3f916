#include <windows.h>

#include "support/text.h"

namespace kesta::test {

std::string Ansi(const DbChar* text)
{
    std::string out(static_cast<size_t>(WideCharToMultiByte(CP_ACP, 0, text, -1, nullptr, 0, nullptr, nullptr)), '\0');
    WideCharToMultiByte(CP_ACP, 0, text, -1, out.data(), static_cast<int>(out.size()), nullptr, nullptr);
    out.pop_back();  // the terminator
    return out;
}

}  // namespace kesta::test
