// What can be taken out of the database of a phone. The phone itself cannot: the library keeps it.
#pragma once

#include <string>

#include "database/database.h"

namespace kesta {

/// How many files, playlists and rows of the logs of contacts and calendars are recorded for the phone.
[[nodiscard]] size_t CountRecords(const Database& database, const std::string& imei);

/// Takes out all that is recorded for the phone: files, folders, playlists, bookmarks, backups, and which contacts and
/// calendar entries it has. The store of contacts and calendars, and the phone's settings, stay. Throws when something
/// cannot be taken out.
void ForgetAll(const Database& database, const std::string& imei);

}  // namespace kesta
