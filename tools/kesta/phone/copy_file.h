// Copies one file so that its path holds either what it held before or the whole new file, whenever the run dies. Where
// the mount does not rename, the file is written in place: the journal has to know of it then.
#pragma once

#include <functional>
#include <string>

#include "os/files.h"
#include "phone/mount_abilities.h"
#include "phone/put_text.h"

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
    MountAbilities abilities;
    // Sees to what is replaced, once the new file is complete or, in place, can be read. May be called again.
    std::function<os::Status()> makeWay = [] { return os::Status(); };
    // Before the path holds a part of the new file.
    std::function<os::Status()> beforeInPlace = [] { return os::Status(); };
    std::function<bool(size_t bytes)> onBytes = [](size_t) { return true; };  // false stops the copy
    std::function<void()> onRestart = [] {};
};

struct CopyResult {
    CopyOutcome outcome = CopyOutcome::kDone;
    std::string reason;
    os::FileInfo source;     // of what was copied
    bool timeKept = true;    // false: the phone does not take modification times
    bool isInPlace = false;  // it could not be renamed into its place
    os::FileInfo copy = {};  // as it lies on the phone
};

/// The target's folder must exist. Whatever the outcome, no temporary file and no part of one stays behind.
[[nodiscard]] CopyResult CopySafely(const CopyRequest& request);

/// The first half of it, for a mount that renames: the contents and their time under a temporary name of its own, where
/// nothing lies. A part of it may stay behind.
[[nodiscard]] CopyResult StageCopy(const CopyRequest& request, const std::string& temporary, os::Flush flush);
/// The second half: to its path, once the first one has been flushed. Its folder is still to be flushed. When it fails,
/// the file stays under the temporary name.
[[nodiscard]] CopyResult PlaceCopy(const CopyRequest& request, const std::string& temporary, CopyResult staged);

}  // namespace kesta
