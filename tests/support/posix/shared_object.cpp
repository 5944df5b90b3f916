#include "support/shared_object.h"

#include <dlfcn.h>

#include <filesystem>
#include <iterator>
#include <stdexcept>

namespace kesta::test {

SharedObject::SharedObject(const std::string& path) : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (handle_ == nullptr) {
        throw std::runtime_error(dlerror());
    }
}

SharedObject::~SharedObject()
{
    dlclose(handle_);
}

SharedObject::Address SharedObject::symbol(const char* name) const
{
    void* address = dlsym(handle_, name);
    if (address == nullptr) {
        throw std::runtime_error(dlerror());
    }
    return reinterpret_cast<Address>(address);
}

bool SharedObject::isLoaded(const std::string& path)
{
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle == nullptr) {
        return false;
    }
    dlclose(handle);
    return true;
}

size_t CountHandles()
{
    const auto files = std::filesystem::directory_iterator("/proc/self/fd");
    return static_cast<size_t>(std::distance(begin(files), end(files)));
}

}  // namespace kesta::test
