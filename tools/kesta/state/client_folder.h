// Where the client keeps notes of its own on the PC, beside the database.
#pragma once

#include <string>

#include "os/files.h"

namespace kesta {

/// Empty when there is no folder for application data.
[[nodiscard]] std::string ClientFolder();
/// Replaces a note in the folder, which is made when it is missing.
os::Status WriteStateFile(const std::string& path, const std::string& text);

}  // namespace kesta
