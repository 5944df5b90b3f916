// How the client knows its database again. The library replaces one that it cannot use by an empty one, without a word
// to whoever opens it; only this tells that what was recorded is not there any more.
#pragma once

#include <string>
#include <vector>

#include "os/files.h"

namespace kesta {

/// What speaks for another database being there than the one that the client knows.
struct DatabaseLoss {
    std::vector<std::string> replaced;       // the names of those that the library has replaced since, oldest first
    std::vector<std::string> missingPhones;  // their IMEIs

    [[nodiscard]] bool isSeen() const { return !replaced.empty() || !missingPhones.empty(); }
};
[[nodiscard]] DatabaseLoss FindDatabaseLoss();

/// Takes the database as it is for the known one. snapshot: the name of the copy that was made of it, as the file was.
os::Status RememberDatabase(const std::string& snapshot, const os::FileInfo& file);
/// Whether the file is as it was when that copy was made.
[[nodiscard]] bool IsAsInSnapshot(const std::string& snapshot, const os::FileInfo& file);

}  // namespace kesta
