// A recursive mutex shared by all processes of one user under a name. When its holder dies, the next caller gets it.
#pragma once

#include "platform/files.h"

namespace kesta::platform {

class NamedMutex {
public:
    constexpr NamedMutex() = default;
    NamedMutex(const NamedMutex&) = delete;
    NamedMutex& operator=(const NamedMutex&) = delete;

    /// Creates or joins the mutex, not held. Where the system refuses it, or what is there under its name cannot be
    /// trusted, a lock file takes its place: in the user's runtime folder, else in `lockFolder()`. Without either it
    /// serialises this process alone.
    void open(const char* name, Path (*lockFolder)()) noexcept;
    void close() noexcept;

    void lock() noexcept;
    void unlock() noexcept;

    /// In a forked process, where the parent's thread holds it and goes on to do so: gives the child one that it does
    /// not hold.
    void startAnewInChild() noexcept;

private:
    void* handle_ = nullptr;  // the system's mutex
};

}  // namespace kesta::platform
