// From a Windows error code to a Status, and from UTF-8 paths to what the wide functions take.
#pragma once

#include <windows.h>

#include <string>

#include "os/status.h"

namespace kesta::os {

[[nodiscard]] Status FromErrorCode(DWORD code);
[[nodiscard]] Status LastError();

/// Absolute, with the prefix that lifts the limit of MAX_PATH.
[[nodiscard]] std::wstring ToNative(const std::string& path);
/// Takes the prefix away again. Lone surrogates become U+FFFD.
[[nodiscard]] std::string FromNative(std::wstring path);

/// Closes the handle it holds.
class Handle {
public:
    explicit Handle(HANDLE value) : value_(value) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle()
    {
        if (valid()) {
            (void)CloseHandle(value_);
        }
    }
    [[nodiscard]] bool valid() const { return value_ != INVALID_HANDLE_VALUE; }
    [[nodiscard]] HANDLE get() const { return value_; }

private:
    HANDLE value_;
};

}  // namespace kesta::os
