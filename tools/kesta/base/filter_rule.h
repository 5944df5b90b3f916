// What the user says of files that are to stay on the PC.
#pragma once

#include <string>

namespace kesta {

struct FilterRule {
    bool isInclude = false;
    std::string glob;

    bool operator==(const FilterRule&) const = default;
};

}  // namespace kesta
