// Copies one file so that its path holds either what it held before or the whole new file, whenever the run dies.
#pragma once

#include <functional>
#include <string>

#include "os/files.h"

namespace kesta {

enum class CopyOutcome {
    kDone,
    kInterrupted,
    kSourceGone,
    kSourceFailed,
    kSourceChanging,  // it changed while it was read, twice
    kPlaceTaken,      // something appeared where the new file was to go
    kPhoneFull,
    kPhoneReadOnly,
    kPhoneFailed
};

struct CopyRequest {
    std::string source;
    std::string target;
    bool mayReplace = false;
    // Sees to what is replaced, once the new file is complete.
    std::function<os::Status()> makeWay = [] { return os::Status(); };
    std::function<bool(size_t bytes)> onBytes = [](size_t) { return true; };  // false stops the copy
    std::function<void()> onRestart = [] {};
};

struct CopyResult {
    CopyOutcome outcome = CopyOutcome::kDone;
    std::string reason;
    os::FileInfo source;     // of what was copied
    bool timeKept = true;    // false: the phone does not take modification times
    os::FileInfo copy = {};  // as it lies on the phone
};

/// The target's folder must exist. Whatever the outcome, no temporary file stays behind.
[[nodiscard]] CopyResult CopySafely(const CopyRequest& request);

}  // namespace kesta
