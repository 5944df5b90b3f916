// What kesta status tells of one phone.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "commands/json.h"
#include "database/database.h"
#include "database/main_folders.h"
#include "database/pim_kind.h"
#include "state/last_run.h"

namespace kesta {

struct FolderStatus {
    RecordedFolder folder;
    size_t filesOnPhone = 0;
};

struct LogStatus {
    std::string profile;  // empty when there is no log
    size_t entries = 0;
};

struct PhoneStatus {
    PhoneSettings settings;
    std::optional<LocalTime> lastSync;
    std::optional<LastRun> lastRun;
    std::map<MainFolder, bool> mainFolders;  // whether they are selected
    std::map<Category, std::vector<FolderStatus>> folders;
    std::map<Category, size_t> files;
    std::vector<RecordedFolder> gallery;
    size_t galleryLeftOut = 0;  // folders that are pictures' or videos', but not in the merged list
    std::vector<RecordedPlaylist> playlists;
    size_t playlistFiles = 0;
    size_t bookmarks = 0;                                // of the present bookmark type
    std::optional<std::vector<RecordedBackup>> backups;  // std::nullopt: no table for them
    std::map<PimKind, LogStatus> logs;
};

[[nodiscard]] PhoneStatus Collect(const Database& database, PhoneSettings settings);
[[nodiscard]] Json ToJson(const PhoneStatus& status);
[[nodiscard]] std::string ToText(const PhoneStatus& status);

/// As in the status of a phone and in the list of the gallery.
[[nodiscard]] Json GalleryFolderJson(const RecordedFolder& folder);
[[nodiscard]] Json PlaylistJson(const RecordedPlaylist& list);
[[nodiscard]] Json BackupJson(const RecordedBackup& backup);

}  // namespace kesta
