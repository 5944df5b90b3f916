// The playlists of one run: the lists on the phone, the music that they need, and the records of both.
#pragma once

#include <string>
#include <vector>

#include "commands/options.h"
#include "database/database.h"
#include "phone/phone_folder.h"
#include "report/progress.h"
#include "report/summary.h"
#include "stages/playlists/playlist_plan.h"
#include "sync/deletion_guard.h"

namespace kesta {

/// Brings the phone's playlists in line with those of the folder that the options name. A dry run changes nothing.
void SyncPlaylists(Database& database, const std::string& imei, PhoneFolder& phone, const SyncOptions& options,
                   const MediaPhonePaths& media, DeletionGuard& guard, Progress& progress, Summary& summary);

/// The phone paths that the database knows of lists and of their music.
[[nodiscard]] std::vector<std::string> PhonePathsOfPlaylists(Database& database, const std::string& imei);

}  // namespace kesta
