#include "os/watch_thread.h"

#include <windows.h>

namespace kesta::os {
namespace {

void Write(DWORD stream, std::string_view text)
{
    DWORD written = 0;
    (void)WriteFile(GetStdHandle(stream), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

DWORD WINAPI Run(void* argument)
{
    reinterpret_cast<void (*)()>(argument)();
    return 0;
}

}  // namespace

void StartThread(void (*run)())
{
    if (const HANDLE thread = CreateThread(nullptr, 0, Run, reinterpret_cast<void*>(run), 0, nullptr)) {
        (void)CloseHandle(thread);
    }
}

void PauseMs(int milliseconds)
{
    Sleep(static_cast<DWORD>(milliseconds));
}

void WriteToErrors(std::string_view text)
{
    Write(STD_ERROR_HANDLE, text);
}

void EndAtOnce(int exitCode, std::string_view lastWords)
{
    Write(STD_OUTPUT_HANDLE, lastWords);
    Write(STD_ERROR_HANDLE, "kesta: interrupted\n");
    // Not ExitProcess, which waits for a library that is just being loaded.
    (void)TerminateProcess(GetCurrentProcess(), static_cast<UINT>(exitCode));
    Sleep(INFINITE);
    __builtin_unreachable();
}

}  // namespace kesta::os
