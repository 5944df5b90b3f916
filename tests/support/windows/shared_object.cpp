#include "support/shared_object.h"

#include <windows.h>

#include <stdexcept>

namespace kesta::test {
namespace {

std::string Failure(const std::string& what)
{
    return what + ": system error " + std::to_string(GetLastError());
}

}  // namespace

SharedObject::SharedObject(const std::string& path) : handle_(LoadLibraryA(path.c_str()))
{
    if (handle_ == nullptr) {
        throw std::runtime_error(Failure(path));
    }
}

SharedObject::~SharedObject()
{
    FreeLibrary(static_cast<HMODULE>(handle_));
}

SharedObject::Address SharedObject::symbol(const char* name) const
{
    const FARPROC address = GetProcAddress(static_cast<HMODULE>(handle_), name);
    if (address == nullptr) {
        throw std::runtime_error(Failure(name));
    }
    return reinterpret_cast<Address>(reinterpret_cast<void*>(address));
}

bool SharedObject::isLoaded(const std::string& path)
{
    return GetModuleHandleA(path.c_str()) != nullptr;
}

size_t CountHandles()
{
    DWORD count = 0;
    if (!GetProcessHandleCount(GetCurrentProcess(), &count)) {
        throw std::runtime_error(Failure("handle count"));
    }
    return count;
}

}  // namespace kesta::test
