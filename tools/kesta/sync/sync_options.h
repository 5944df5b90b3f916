// What a sync is asked to do.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "database/category.h"

namespace kesta {

struct SyncOptions {
    std::string phone;
    std::optional<std::string> imei;
    std::optional<std::string> name;
    std::array<std::vector<std::string>, kCategories.size()> folders;  // by category
    std::optional<std::string> playlists;                              // a folder
    std::optional<std::string> bookmarks;                              // a file
    std::vector<std::string> contacts;                                 // files
    std::vector<std::string> calendars;                                // files
    std::optional<std::string> backup;                                 // the folder for archives
    bool dryRun = false;
    bool force = false;
    bool quiet = false;
    bool noTrash = false;
    bool acceptFolder = false;  // a folder without a marker, though a phone is expected there
};

}  // namespace kesta
