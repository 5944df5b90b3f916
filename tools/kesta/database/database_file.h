// The library's database as a file: where it lies, what the library has kept of earlier ones, whether it is intact.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "database/sqlite_file.h"

namespace kesta {

/// Empty when there is no folder for application data.
[[nodiscard]] std::string DatabasePath();

/// The names of the databases that the library has replaced, oldest first: it keeps the latest of them beside its own.
[[nodiscard]] std::vector<std::string> ReplacedDatabases();

struct PhoneRow {
    int64_t id = 0;
    std::string imei, name;
};
os::Status ReadPhoneRows(SqliteFile& database, std::vector<PhoneRow>& phones);

/// What SQLite finds when it reads all of it, and what the library would not take: empty when it is intact. Fails when
/// the check could not be made.
os::Status CheckIntegrity(SqliteFile& database, std::vector<std::string>& problems);

}  // namespace kesta
