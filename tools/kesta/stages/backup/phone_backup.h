// A copy of all that is on the phone, as one archive on the PC.
#pragma once

#include "commands/options.h"
#include "database/database.h"
#include "phone/marker.h"
#include "phone/phone_folder.h"
#include "report/progress.h"
#include "report/summary.h"

namespace kesta {

/// Writes the archive to the folder that the options name, and records it where the database has a table for backups.
/// A dry run only says what would be written.
void BackUpPhone(Database& database, const Marker& phoneMarker, PhoneFolder& phone, const SyncOptions& options,
                 Progress& progress, Summary& summary);

}  // namespace kesta
