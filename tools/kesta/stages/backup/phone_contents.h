// All that lies on a phone, for a backup of it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "os/files.h"

namespace kesta {

struct PhoneItem {
    std::string phonePath;
    os::FileInfo info;
};

struct PhoneProblem {
    std::string phonePath;
    std::string reason;
};

struct PhoneContents {
    std::vector<PhoneItem> files;         // sorted by their paths, without the client's own
    std::vector<PhoneItem> emptyFolders;  // the others follow from the files
    std::vector<PhoneProblem> problems;
    size_t others = 0;  // links and what else is neither file nor folder
    uint64_t bytes = 0;
};

/// Takes the phone's root. Ends early when keepGoing answers false.
[[nodiscard]] PhoneContents ListPhone(const std::string& root, const std::function<bool(size_t files)>& keepGoing);

}  // namespace kesta
