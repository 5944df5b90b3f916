// The debug output of the system, which shows it to a debugger or a viewer, or to nobody.
#include <windows.h>

#include <ctime>

#include "platform/services.h"

namespace kesta::platform {
namespace {

int64_t Now() noexcept
{
    return _time64(nullptr);
}

void SleepFor(uint32_t milliseconds) noexcept
{
    Sleep(milliseconds);
}

// Whether somebody reads cannot be told beforehand.
bool TraceIsRead() noexcept
{
    return true;
}

void WriteTraceLine(const DbChar* line, size_t /*length*/) noexcept
{
    OutputDebugStringW(line);
}

}  // namespace

constinit Services services = {&Now, &SleepFor, &TraceIsRead, &TraceIsRead, &WriteTraceLine};

void OpenTrace() noexcept
{
}

void CloseTrace() noexcept
{
}

void BeginTracedCall() noexcept
{
}

}  // namespace kesta::platform
