// The mutex by which the library lets one call at a time into the database, of all programs of the user.
#pragma once

#include <string>

namespace kesta::os {

struct LibraryMutex {
    bool isKnown = false;  // whether the system tells
    bool isHeld = false;
    long process = 0;  // that holds it; 0: the system does not tell
    std::string name;  // of the process
    /// Some program cannot use the mutex, and all of them take a lock file as well.
    bool needsLockFile = false;
};
[[nodiscard]] LibraryMutex ReadLibraryMutex();

}  // namespace kesta::os
