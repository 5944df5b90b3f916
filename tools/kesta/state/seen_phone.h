// Where each phone was last seen. An empty mount point looks like any other empty folder; only this tells that a phone
// is expected there.
#pragma once

#include <string>
#include <vector>

#include "os/status.h"

namespace kesta {

struct SeenPhone {
    std::string imei, name;
    std::string path;        // canonical
    std::string fileSystem;  // as os::ReadFileSystemId tells it
};

[[nodiscard]] std::vector<SeenPhone> ReadSeenPhones();
/// Writes only what has changed.
os::Status SaveSeenPhone(const SeenPhone& seen);

}  // namespace kesta
