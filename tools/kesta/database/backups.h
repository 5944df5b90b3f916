// The backups that the database has of a phone, where it has any.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "database/database.h"

namespace kesta {

/// std::nullopt if the database has no table for backups, or it cannot be read: the library does not tell these apart.
/// A database made by the library has none; one that another program has given the table keeps them.
[[nodiscard]] inline std::optional<std::vector<RecordedBackup>> BackupsOf(const Database& database,
                                                                          const std::string& imei)
{
    try {
        return database.backups().of(imei);
    } catch (const kesta_db::Error& failure) {
        if (failure.code() == kesta_db::Code::kUnreadable) {
            throw;
        }
        return std::nullopt;
    }
}

inline void RemoveBackupsOf(const Database& database, const std::string& imei)
{
    if (const auto backups = BackupsOf(database, imei); backups && !backups->empty()) {
        database.backups().removeOf(imei);
    }
}

}  // namespace kesta
