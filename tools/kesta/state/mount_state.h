// What the mount of each phone lets be done, as it was tried out there.
#pragma once

#include <optional>
#include <string>

#include "os/status.h"
#include "phone/mount_abilities.h"

namespace kesta {

/// Tells one mount of a phone from another one.
struct MountName {
    std::string path;        // canonical
    std::string fileSystem;  // as os::ReadFileSystemId tells it
    uint64_t volume = 0;     // of its root
};

/// std::nullopt if this mount has not been tried yet.
[[nodiscard]] std::optional<MountAbilities> ReadMountState(const std::string& imei, const MountName& mount);
os::Status SaveMountState(const std::string& imei, const MountName& mount, const MountAbilities& abilities);

}  // namespace kesta
