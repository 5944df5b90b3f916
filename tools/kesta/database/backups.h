// The database's records of backups. A database made by the library has no table for them; one that another program has
// given the table keeps them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "database/database.h"

namespace kesta {

struct RecordedBackup {
    int32_t id = -1;
    std::string path;       // of the archive on the PC
    std::string phonePath;  // what of the phone it holds
    int64_t size = 0;
    std::optional<LocalTime> modified;
};

class BackupRecords {
public:
    explicit BackupRecords(Database&) {}

    /// std::nullopt if the database has no table for backups, or it cannot be read: the library does not tell these
    /// apart.
    [[nodiscard]] std::optional<std::vector<RecordedBackup>> all();
    [[nodiscard]] std::optional<std::vector<RecordedBackup>> of(const std::string& imei);
    /// Records the backup, or refreshes the record of that path; true when it is in the database.
    [[nodiscard]] bool add(const std::string& imei, const RecordedBackup& backup);
};

}  // namespace kesta
