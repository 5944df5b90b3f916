// Contacts and calendars: the database's store is brought up to the files of the PC, then the phone up to the store.
#pragma once

#include <string>

#include "commands/options.h"
#include "database/database.h"
#include "phone/phone_folder.h"
#include "report/progress.h"
#include "report/summary.h"
#include "sync/deletion_guard.h"

namespace kesta {

/// The phone must have been announced, but for a dry run. What fails goes to the summary.
void SyncPim(Database& database, const std::string& imei, PhoneFolder& phone, const SyncOptions& options,
             DeletionGuard& guard, Progress& progress, Summary& summary);

}  // namespace kesta
