// What an open handle tells about its file.
#pragma once

#include <windows.h>

#include "os/files.h"

namespace kesta::os {

Status InfoOfHandle(HANDLE handle, FileInfo& info);
[[nodiscard]] FILETIME ToFileTime(FileTime time);

}  // namespace kesta::os
