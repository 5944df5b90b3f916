// Who may do what with a file.
#pragma once

#include <string>

#include "os/status.h"

namespace kesta::os {

/// Whether this user may write to the file.
Status CheckFileWritable(const std::string& path);
/// Whether other users may read or change a file or folder. Never so on Windows, where the folder for application data
/// gives its own permissions on.
[[nodiscard]] bool IsOpenToOthers(const std::string& path);
Status CloseToOthers(const std::string& path);

}  // namespace kesta::os
