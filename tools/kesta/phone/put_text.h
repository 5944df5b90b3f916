// Puts a small text of the client's own making on the phone: a list, the marker, the journal.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "os/status.h"
#include "os/volume.h"
#include "phone/mount_abilities.h"

namespace kesta {

struct TextRequest {
    std::string target;  // a native path, whose folder exists
    std::string_view text;
    MountAbilities abilities;
    // Sees to what is replaced, once the new text is complete. May be called again.
    std::function<os::Status()> makeWay = [] { return os::Status(); };
    // Before the path holds a part of the text, where it cannot get there in one step.
    std::function<os::Status()> beforeInPlace = [] { return os::Status(); };
};

/// Where the mount renames, the path holds what it held before or the whole text, whenever the run dies. Where it does
/// not, the whole text is under the temporary name for as long as it is not at its path.
os::Status PutText(const TextRequest& request);

/// Makes a new file of the size of the text, flushed if it is not to be later. What stays of it after a failure is the
/// caller's to remove.
os::Status CreateText(const std::string& path, std::string_view text, os::Flush flush = os::Flush::kNow);

/// Fails when the file does not have the size with which it was written: some drivers lose the end without a word.
os::Status CheckSize(const std::string& path, uint64_t size);

}  // namespace kesta
