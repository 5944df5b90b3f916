// The system's loader of libraries.
#pragma once

#include <string>

namespace kesta::test {

/// Loads a library and lets go of it in the end.
class SharedObject {
public:
    /// Throws std::runtime_error when the library cannot be loaded.
    explicit SharedObject(const std::string& path);
    ~SharedObject();
    SharedObject(const SharedObject&) = delete;
    SharedObject& operator=(const SharedObject&) = delete;

    /// The function of that name; throws std::runtime_error when there is none.
    template <class Function>
    void find(const char* name, Function*& function) const
    {
        function = reinterpret_cast<Function*>(symbol(name));
    }

    /// Whether a library of that path is in the process.
    static bool isLoaded(const std::string& path);

private:
    using Address = void (*)();
    [[nodiscard]] Address symbol(const char* name) const;

    void* handle_;
};

/// What the process holds of the system: open files on Linux, handles on Windows.
size_t CountHandles();

}  // namespace kesta::test
