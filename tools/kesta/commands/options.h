// What the command line asks for.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "sync/sync_options.h"

namespace kesta {

struct StatusOptions {
    std::optional<std::string> imei;
    bool json = false;
};

struct FilesOptions {
    std::string imei;
    std::string category;  // one of kFilesCategories
    std::optional<std::string> folder;
    bool json = false;
};

/// What kesta files lists: the categories of media and the other families.
inline constexpr std::array<std::string_view, 11> kFilesCategories{"music",    "images",    "videos",    "documents",
                                                                   "gallery",  "playlists", "bookmarks", "backups",
                                                                   "contacts", "calendar",  "log"};

struct WhyOptions {
    std::string path;
    std::optional<std::string> imei;
    bool json = false;
};

/// A folder or playlist that is to be selected, or no longer.
struct Selection {
    std::string what;
    bool selected = true;
};

struct SettingsOptions {
    std::string imei;
    std::vector<std::string> changes;  // name=value
    std::vector<Selection> folders;    // of media
    std::vector<Selection> playlists;
    bool json = false;
};

struct TraceOptions {};

using Options = std::variant<SyncOptions, StatusOptions, FilesOptions, WhyOptions, SettingsOptions, TraceOptions>;

}  // namespace kesta
