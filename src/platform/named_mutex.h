// A recursive mutex shared by all processes of one user under a name. When its holder dies, the next caller gets it.
#pragma once

namespace kesta::platform {

class NamedMutex {
public:
    constexpr NamedMutex() = default;
    NamedMutex(const NamedMutex&) = delete;
    NamedMutex& operator=(const NamedMutex&) = delete;

    /// Creates or joins the mutex, not held. Where the system refuses it, it serialises this process alone.
    void open(const char* name) noexcept;
    void close() noexcept;

    void lock() noexcept;
    void unlock() noexcept;

private:
    void* handle_ = nullptr;  // the system's mutex
};

}  // namespace kesta::platform
