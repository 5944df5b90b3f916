/**
 * @file
 * @brief C++: the backups made of phones. A database made by the library has no table for them.
 */
#pragma once

#include <kesta_db/cpp/base.hpp>

namespace kesta_db {

/// One backup.
struct Backup {
    int32_t id = -1;
    std::string path{};       ///< on the PC; the key over all phones
    std::string phonePath{};  ///< what on the phone it was made of
    int64_t size = 0;
    std::optional<LocalTime> modified{};
};

/// Where the database has no table for backups, every call throws kFailed or that table's SQLite code.
class Backups {
public:
    /// Of one phone, which must be known.
    [[nodiscard]] std::vector<Backup> of(std::string_view imei)
    {
        const detail::Utf16 identity = detail::KnownIdentifier(imei);
        return read([&](BackupList* list) { return DB_BACKUP_GetPhoneBackups(identity.c_str(), list); });
    }
    /// Of all phones.
    [[nodiscard]] std::vector<Backup> all()
    {
        return read([](BackupList* list) { return DB_BACKUP_GetAllBackups(list); });
    }
    /// Records the backup, or refreshes the record of that path, and returns its id.
    int32_t add(std::string_view imei, const Backup& backup)
    {
        constexpr int32_t kRefreshed = 183;
        detail::Utf16 path = detail::Text(backup.path);
        detail::Utf16 phonePath = detail::Text(backup.phonePath);
        BackupRecord record{-1, backup.size, detail::ToDateValue(backup.modified), path.data(), phonePath.data()};
        const int32_t result = DB_BACKUP_AddBackup(detail::KnownIdentifier(imei).c_str(), &record);
        if (result != kRefreshed) detail::Require("DB_BACKUP_AddBackup", result);
        if (record.bcID == -1) throw Error("DB_BACKUP_AddBackup", Code::kNotStored);
        return record.bcID;
    }
    /// All records of one phone.
    void removeOf(std::string_view imei)
    {
        detail::Require("DB_BACKUP_DeleteBackups", DB_BACKUP_DeleteBackups(detail::KnownIdentifier(imei).c_str()));
    }
    void remove(int32_t id) { detail::Require("DB_BACKUP_DeleteBackup", DB_BACKUP_DeleteBackup(id)); }

private:
    template <class Read>
    static std::vector<Backup> read(Read&& read)
    {
        auto release = [](BackupList* list) { (void)DB_BACKUP_GetPhoneBackups(detail::kUnknown, list); };
        detail::OwnedList<BackupList, decltype(release)> list(release);
        detail::ReadCountedList("DB_BACKUP_GetPhoneBackups", *list.get(), [&] { return read(list.get()); });
        return list.records([](const BackupRecord& record) {
            return Backup{record.bcID, detail::Utf8(record.Path), detail::Utf8(record.PhonePath), record.Size,
                          detail::FromDateValue(record.ModifiedTime)};
        });
    }
};

}  // namespace kesta_db
