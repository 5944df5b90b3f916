#include "database/backups.h"

#include <functional>

#include "database/calls.h"

namespace kesta {
namespace {

using calls::Text;

// The list is given back by asking for the backups of a phone that does not exist.
std::optional<std::vector<RecordedBackup>> Read(const std::function<int32_t(BackupList*)>& read)
{
    calls::OwnedList<BackupList> list(
        [](BackupList* record) { (void)DB_BACKUP_GetPhoneBackups(calls::kNoPhone, record); });
    Result result;
    calls::AskUntilBelieved("DB_BACKUP_GetPhoneBackups", [&] {
        result = read(list.get());
        for (int again = 0; result.isOneRowTooMany() && again < 10; ++again) {
            result = read(list.get());
        }
        return !result.ok() || list.size() > 0;
    });
    if (!result.ok()) {
        return std::nullopt;
    }
    std::vector<RecordedBackup> backups;
    backups.reserve(list.size());
    for (const BackupRecord& record : list) {
        backups.push_back({record.bcID, FromDbText(record.Path), FromDbText(record.PhonePath), record.Size,
                           FromDateValue(record.ModifiedTime)});
    }
    return backups;
}

}  // namespace

std::optional<std::vector<RecordedBackup>> BackupRecords::all()
{
    return Read([](BackupList* list) { return DB_BACKUP_GetAllBackups(list); });
}

std::optional<std::vector<RecordedBackup>> BackupRecords::of(const std::string& imei)
{
    const DbText phone = Text(imei);
    return Read([&](BackupList* list) { return DB_BACKUP_GetPhoneBackups(phone.c_str(), list); });
}

bool BackupRecords::add(const std::string& imei, const RecordedBackup& backup)
{
    constexpr int32_t kRefreshed = 183;
    DbText path = Text(backup.path), phonePath = Text(backup.phonePath);
    BackupRecord record{-1, backup.size, ToDateValue(backup.modified), path.data(), phonePath.data()};
    const int32_t code = DB_BACKUP_AddBackup(Text(imei).c_str(), &record);
    // A record that was found but could not be refreshed comes back without its number.
    return (code == 0 || code == kRefreshed) && record.bcID != -1;
}

}  // namespace kesta
