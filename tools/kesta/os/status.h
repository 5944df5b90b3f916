// The outcome of one call into the operating system: what kind of failure it was, and the system's words for it.
#pragma once

#include <string>
#include <utility>

namespace kesta::os {

enum class Failure {
    kNone,
    kMissing,   // no such file or folder
    kExists,    // something of that name is there already
    kNotEmpty,  // a folder that still holds something
    kDenied,    // no permission
    kReadOnly,  // the file system cannot be written at all
    kFull,      // no space, or the quota is used up
    kTooLong,   // the path is longer than the system takes
    kBusy,      // another program holds it
    kGone,      // the device, or the program that serves the mount, is no longer there
    kOther
};

class [[nodiscard]] Status {
public:
    Status() = default;
    Status(Failure failure, std::string text) : failure_(failure), text_(std::move(text)) {}

    [[nodiscard]] bool ok() const { return failure_ == Failure::kNone; }
    [[nodiscard]] Failure failure() const { return failure_; }
    /// The reason in words, such as "Permission denied"; empty when nothing failed.
    [[nodiscard]] const std::string& text() const { return text_; }

private:
    Failure failure_ = Failure::kNone;
    std::string text_;
};

}  // namespace kesta::os
