#include "platform/code_page.h"

#include <windows.h>

#include <algorithm>
#include <climits>

namespace kesta::platform {
namespace {

size_t Convert(UINT codePage, const DbChar* text, size_t length, char* out, size_t room) noexcept
{
    // The system takes an empty text for an error and no room for a question.
    if (length == 0) return 0;
    if (room == 0 || length > INT_MAX) return kDoesNotFit;
    const int size = static_cast<int>(std::min<size_t>(room, INT_MAX));
    const int written = WideCharToMultiByte(codePage, 0, text, static_cast<int>(length), out, size, nullptr, nullptr);
    return written > 0 ? static_cast<size_t>(written) : kDoesNotFit;
}

}  // namespace

size_t Utf8FromWide(const DbChar* text, size_t length, char* out, size_t room) noexcept
{
    return Convert(CP_UTF8, text, length, out, room);
}

size_t AnsiFromWide(const DbChar* text, size_t length, char* out, size_t room) noexcept
{
    return Convert(CP_ACP, text, length, out, room);
}

}  // namespace kesta::platform
