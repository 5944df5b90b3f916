// What is synced to a phone: given on the command line, and remembered for the next time.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "base/filter_rule.h"
#include "database/category.h"
#include "os/status.h"

namespace kesta {

struct SyncSources {
    std::array<std::vector<std::string>, kCategories.size()> folders;  // by category
    std::optional<std::string> playlists;                              // a folder
    std::optional<std::string> bookmarks;                              // a file
    std::vector<std::string> contacts;                                 // files, and folders of them
    std::vector<std::string> calendars;                                // files
    std::optional<std::string> backup;                                 // the folder for archives
    std::vector<FilterRule> rules;                                     // the last one that fits decides

    /// Whether there is anything to do.
    [[nodiscard]] bool hasAny() const;
    /// Takes in what the other ones have more, or otherwise.
    void add(const SyncSources& other);
    /// Takes out the path or glob wherever it is. False if it is not there.
    bool drop(const std::string& what);

    bool operator==(const SyncSources&) const = default;
};

/// Empty ones for a phone of which nothing is remembered. Fails when what is remembered cannot be read.
os::Status ReadSyncSources(const std::string& imei, SyncSources& sources);
os::Status WriteSyncSources(const std::string& imei, const SyncSources& sources);

}  // namespace kesta
