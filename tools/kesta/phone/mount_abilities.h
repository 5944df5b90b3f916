// What the file system of a phone lets be done. Disks allow all of it; phones that are mounted by MTP refuse some.
#pragma once

#include <string>

#include "os/status.h"

namespace kesta {

struct MountAbilities {
    bool renames = true;     // a file, to a name that is free
    bool replaces = true;    // a file by another one that is renamed
    bool keepsTimes = true;  // modification times that are set
    bool readsBack = true;   // what has just been written

    bool operator==(const MountAbilities&) const = default;
};

/// Tries them out with files of the client's own in the folder. Fails where not even a file can be written.
os::Status ProbeMount(const std::string& folder, MountAbilities& abilities);

/// Whether this can be the answer of a file system that does not rename, or not onto a file. Otherwise another way to
/// the same path would fail as well.
[[nodiscard]] bool CanMeanNoRename(const os::Status& status);

}  // namespace kesta
