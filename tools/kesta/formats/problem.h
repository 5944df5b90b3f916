// What a reader could not make sense of. Every reader goes on behind it and returns the rest.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kesta::formats {

struct Problem {
    size_t line = 0;  // the first line is 1; 0 stands for the file as a whole
    std::string text;

    bool operator==(const Problem&) const = default;
};

/// While this is not empty the file's list is not known to be complete: what it lacks must not be taken for removed.
using Problems = std::vector<Problem>;

}  // namespace kesta::formats
