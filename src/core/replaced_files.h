// Second names for a database that is about to be removed: "<name>.replaced-YYYYMMDD-HHMMSS" beside it, its journal
// and its write-ahead log under the same name with their suffixes. Whatever fails here, the removal goes on without it.
#pragma once

#include <string>

#include "platform/files.h"

namespace kesta {

class ReplacedFiles {
public:
    explicit ReplacedFiles(const platform::Path& file) : file_(file) {}

    /// Gives the file and what belongs to it second names.
    void keep() noexcept;
    /// Takes them away again.
    void undo() noexcept;
    /// Removes all but the newest three that lie beside the file.
    void prune() noexcept;

private:
    const platform::Path& file_;
    std::string suffix_;  // of the names given; empty for none
};

}  // namespace kesta
