// Changing what the user has set for a phone: the settings record, and which folders and playlists are wanted.
#pragma once

#include <cstdint>
#include <string>

#include "database/database.h"

namespace kesta {

/// Methods that return a code leave it to the caller what follows from it: 0 is success.
class SettingsRecords {
public:
    SettingsRecords(Database& /*opened*/, std::string imei) : imei_(std::move(imei)) {}

    /// Writes what differs between the two; everything else keeps its value in the database, to the character.
    /// NeedMount cannot be written by itself.
    Result write(const PhoneSettings& before, const PhoneSettings& after);
    /// Success does not say that the database knows the folder.
    Result selectFolder(Category category, const std::string& path, bool selected);
    /// Success does not say that the database knows the playlist.
    Result selectPlaylist(const std::string& name, bool selected);

private:
    std::string imei_;
};

}  // namespace kesta
