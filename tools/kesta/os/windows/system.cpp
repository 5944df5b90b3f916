#include "os/system.h"

#include <windows.h>
// windows.h comes first, or the others lack its types.
#include <ntsecapi.h>
#include <shellapi.h>
#include <shlobj.h>

#include <atomic>
#include <chrono>
#include <stdexcept>

#include "os/files.h"
#include "os/windows/error_status.h"
#include "os/windows/wide_text.h"

namespace kesta::os {
namespace {

std::atomic<bool> interrupted{false};

BOOL WINAPI NoteInterrupt(DWORD)
{
    interrupted = true;
    return TRUE;
}

}  // namespace

std::vector<std::string> Arguments(int, char**)
{
    int count = 0;
    wchar_t** texts = CommandLineToArgvW(GetCommandLineW(), &count);
    if (texts == nullptr) {
        throw std::runtime_error("the command line cannot be read");
    }
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) {
        arguments.push_back(FromWide(texts[i]));
    }
    (void)LocalFree(texts);
    return arguments;
}

int64_t Now()
{
    return std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
}

std::optional<int64_t> LocalSeconds(int64_t utcSeconds)
{
    constexpr int64_t kTicksPerSecond = 10'000'000;
    constexpr int64_t kSecondsFrom1601To1970 = 11'644'473'600;
    constexpr int64_t kSecondsFrom1601To1899 = 9'435'312'000;  // to 30 December
    constexpr int64_t kLastSecond = 253'402'300'799;           // of the year 9999
    if (utcSeconds < -kSecondsFrom1601To1970 || utcSeconds > kLastSecond) {
        return std::nullopt;
    }
    const int64_t ticks = (utcSeconds + kSecondsFrom1601To1970) * kTicksPerSecond;
    const FILETIME utc{static_cast<DWORD>(ticks & 0xFFFFFFFF), static_cast<DWORD>(ticks >> 32)};
    SYSTEMTIME utcFields, localFields;
    FILETIME local;
    // Unlike FileTimeToLocalFileTime this takes daylight saving as it was on that day, not as it is today.
    if (!FileTimeToSystemTime(&utc, &utcFields) ||
        !SystemTimeToTzSpecificLocalTime(nullptr, &utcFields, &localFields) ||
        !SystemTimeToFileTime(&localFields, &local)) {
        return std::nullopt;
    }
    const auto localTicks = static_cast<int64_t>((uint64_t{local.dwHighDateTime} << 32) | local.dwLowDateTime);
    return localTicks / kTicksPerSecond - kSecondsFrom1601To1899;
}

char32_t UpperCase(char32_t character)
{
    if (character >= 0x10000) {
        return character;  // The file systems' tables end here.
    }
    const auto from = static_cast<wchar_t>(character);
    wchar_t to = 0;
    const int length = LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, &from, 1, &to, 1, nullptr, nullptr, 0);
    return length == 1 ? static_cast<char32_t>(to) : character;
}

uint64_t RandomNumber()
{
    uint64_t number = 0;
    if (!RtlGenRandom(&number, sizeof number)) {
        throw std::runtime_error("the system gives no random numbers");
    }
    return number;
}

std::string DataDirectory()
{
    wchar_t path[MAX_PATH];
    const HRESULT result = SHGetFolderPathW(nullptr, CSIDL_APPDATA | CSIDL_FLAG_CREATE, nullptr, 0, path);
    return SUCCEEDED(result) ? FromNative(path) : std::string();
}

bool MakePrivateDirectories(const std::string& path)
{
    FileInfo info;
    if (ReadInfo(path, info).ok()) {
        return info.kind == FileKind::kDirectory;
    }
    const std::string parent = ParentOf(path);
    // The application-data folder gives its own permissions on.
    return parent != path && MakePrivateDirectories(parent) && MakeDirectory(path).ok();
}

void CatchInterrupts()
{
    (void)SetConsoleCtrlHandler(NoteInterrupt, TRUE);
}

bool Interrupted()
{
    return interrupted;
}

void PrepareOutput()
{
    (void)SetConsoleOutputCP(CP_UTF8);
}

bool IsTerminal()
{
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != 0;
}

size_t TerminalWidth()
{
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info)) {
        return 80;
    }
    const int width = info.srWindow.Right - info.srWindow.Left + 1;
    // A character in the last column moves the cursor on to the next line.
    return width > 1 ? static_cast<size_t>(width - 1) : 80;
}

}  // namespace kesta::os
