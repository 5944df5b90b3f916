// The bookmarks of one run: one file on the phone that any browser opens, and a record in the database for each mark.
#pragma once

#include <string>
#include <vector>

#include "commands/options.h"
#include "database/database.h"
#include "phone/phone_folder.h"
#include "report/progress.h"
#include "report/summary.h"
#include "sync/deletion_guard.h"

namespace kesta {

/// Brings the phone's bookmark file in line with the file that the options name. A dry run changes nothing.
void SyncBookmarks(Database& database, const std::string& imei, PhoneFolder& phone, const SyncOptions& options,
                   DeletionGuard& guard, Progress& progress, Summary& summary);

/// The phone paths that the database knows of bookmark files.
[[nodiscard]] std::vector<std::string> PhonePathsOfBookmarks(Database& database, const std::string& imei);

}  // namespace kesta
