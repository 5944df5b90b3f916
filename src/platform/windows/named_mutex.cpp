#include "platform/named_mutex.h"

#include <windows.h>

#include <cstddef>

namespace kesta::platform {

void NamedMutex::open(const char* name, Path (* /*lockFolder*/)()) noexcept
{
    close();
    wchar_t wide[MAX_PATH];
    size_t length = 0;
    for (; name[length] != '\0' && length + 1 < MAX_PATH; ++length) wide[length] = static_cast<wchar_t>(name[length]);
    wide[length] = L'\0';
    handle_ = CreateMutexW(nullptr, FALSE, wide);
    // A process with more rights has made it: creating would ask for all rights to it, using it needs only these.
    if (handle_ == nullptr) handle_ = OpenMutexW(SYNCHRONIZE | MUTEX_MODIFY_STATE, FALSE, wide);
    if (handle_ == nullptr) handle_ = CreateMutexW(nullptr, FALSE, nullptr);
}

void NamedMutex::close() noexcept
{
    if (handle_ != nullptr) CloseHandle(handle_);
    handle_ = nullptr;
}

void NamedMutex::lock() noexcept
{
    // Abandoned by a holder that died counts as taken: the database heals itself by its journal.
    if (handle_ != nullptr) (void)WaitForSingleObject(handle_, INFINITE);
}

void NamedMutex::unlock() noexcept
{
    if (handle_ != nullptr) ReleaseMutex(handle_);
}

void NamedMutex::startAnewInChild() noexcept
{
    // No process is forked here.
}

}  // namespace kesta::platform
