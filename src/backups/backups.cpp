#include "backups/backups.h"

#include "core/list.h"
#include "library/phone_lookup.h"

namespace kesta::backups {
namespace {

void ReadBackup(const Statement& row, BackupRecord& backup)
{
    backup.bcID = row.int32(0);
    backup.Path = row.newText(1);
    backup.PhonePath = row.newText(2);
    backup.Size = row.int64(3);
    backup.ModifiedTime = row.date(4);
}

/// Refreshes a recorded backup. Its phone stays what it was.
ResultCode Update(Routine self, int32_t id, const BackupRecord& backup)
{
    return self.run(
        2, WideSql("UPDATE tBackups SET [PhonePath] = '%s', [Size] = %I64d, [ModifiedTime] = '%s' WHERE [bcID] = %d;",
                   Escaped{backup.PhonePath}, backup.Size, FormatDateTime(backup.ModifiedTime), id));
}

ResultCode Insert(Routine self, int32_t phoneId, const BackupRecord& backup)
{
    return self.run(3, WideSql("INSERT INTO tBackups ([phoneID], [Path], [PhonePath], [Size], [ModifiedTime]) "
                               "\t\t\t\t\t\t\t\tVALUES (%d, '%s', '%s', %I64d, '%s');",
                               phoneId, Escaped{backup.Path}, Escaped{backup.PhonePath}, backup.Size,
                               FormatDateTime(backup.ModifiedTime)));
}

}  // namespace

ResultCode AddBackup(Routine self, const DbChar* imei, const BackupRecord& backup, int32_t& id)
{
    return ForPhone(self, imei, [&](int32_t phoneId) {
        // Deliberate: by path alone, whichever phone it was recorded for.
        bool known = false;
        const ResultCode looked =
            self.first(1, WideSql("SELECT [bcID] FROM tBackups WHERE [Path] = '%s';", Escaped{backup.Path}),
                       NoRowIsSuccess, [&](const Statement& row) {
                           id = row.int32(0);
                           known = true;
                       });
        if (looked != ResultCode::kSuccess) {
            return looked;
        }
        const ResultCode unlessInserted = known ? kBackupExists : ResultCode::kFailure;
        if (known) {
            if (Update(self, id, backup) != ResultCode::kSuccess) {
                id = kNoBackup;
                return unlessInserted;
            }
            if (id != kNoBackup) {
                return unlessInserted;
            }
        }
        if (Insert(self, phoneId, backup) != ResultCode::kSuccess) {
            id = kNoBackup;
            return unlessInserted;
        }
        id = static_cast<int32_t>(self.db.lastInsertRowId());
        return ResultCode::kSuccess;
    });
}

ResultCode DeleteBackups(Routine self, const DbChar* imei)
{
    return ForPhone(self, imei, [&](int32_t phoneId) {
        return PassThrough(self.exec(1, NarrowSql("DELETE FROM tBackups WHERE [phoneID] = %d;", phoneId)));
    });
}

ResultCode DeleteBackup(Routine self, int32_t id)
{
    return PassThrough(self.exec(1, NarrowSql("DELETE FROM tBackups WHERE [bcID] = %d;", id)));
}

bool FileExist(Routine self, const DbChar* path)
{
    constexpr int32_t kNone = 0;
    return self.firstNumber(1, WideSql("SELECT COUNT(*) FROM tBackups WHERE [Path] = '%s';", Escaped{path}), kNone) > 0;
}

ResultCode GetAllBackups(Routine self, BackupList& list)
{
    return ReadList(self, list, NarrowSql("SELECT COUNT(*) FROM tBackups;"),
                    NarrowSql("SELECT [bcID], [Path], [PhonePath], [Size], DATETIME([ModifiedTime]) FROM tBackups;"),
                    ReadBackup);
}

ResultCode GetPhoneBackups(Routine self, const DbChar* imei, BackupList& list)
{
    return ForPhone(self, imei, [&](int32_t phoneId) {
        return ReadList(self, list, NarrowSql("SELECT COUNT(*) FROM tBackups WHERE [phoneID] = %d;", phoneId),
                        NarrowSql("SELECT [bcID], [Path], [PhonePath], [Size], DATETIME([ModifiedTime]) FROM tBackups "
                                  "WHERE [phoneID] = %d;",
                                  phoneId),
                        ReadBackup);
    });
}

}  // namespace kesta::backups
