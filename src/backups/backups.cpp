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

ResultCode RunOnly(Connection& db, Trail trail, const Sql& sql)
{
    const SqliteCode code = db.exec(sql);
    if (code != SqliteCode::kOk) trail.error(1);
    return PassThrough(code);
}

/// Refreshes a recorded backup. Its phone stays what it was.
bool Update(Connection& db, Trail trail, int32_t id, const BackupRecord& backup)
{
    if (db.exec(WideSql(
            "UPDATE tBackups SET [PhonePath] = '%s', [Size] = %I64d, [ModifiedTime] = '%s' WHERE [bcID] = %d;",
            Escaped{backup.PhonePath}, backup.Size, FormatDateTime(backup.ModifiedTime), id)) == SqliteCode::kOk) {
        return true;
    }
    trail.error(2);
    return false;
}

bool Insert(Connection& db, Trail trail, int32_t phoneId, const BackupRecord& backup)
{
    if (db.exec(WideSql("INSERT INTO tBackups ([phoneID], [Path], [PhonePath], [Size], [ModifiedTime]) "
                        "\t\t\t\t\t\t\t\tVALUES (%d, '%s', '%s', %I64d, '%s');",
                        phoneId, Escaped{backup.Path}, Escaped{backup.PhonePath}, backup.Size,
                        FormatDateTime(backup.ModifiedTime))) == SqliteCode::kOk) {
        return true;
    }
    trail.error(3);
    return false;
}

}  // namespace

ResultCode AddBackup(Connection& db, Trail trail, const DbChar* imei, const BackupRecord& backup, int32_t& id)
{
    ResultCode result = ResultCode::kFailure;
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return result;
    {
        // Deliberate: by path alone, whichever phone it was recorded for.
        Statement rows = db.prepare(WideSql("SELECT [bcID] FROM tBackups WHERE [Path] = '%s';", Escaped{backup.Path}));
        if (!rows.prepared()) {
            trail.error(1);
            return result;
        }
        if (rows.step()) {
            id = rows.int32(0);
            result = kBackupExists;
        }
    }
    if (result == kBackupExists) {
        if (!Update(db, trail, id, backup)) {
            id = kNoBackup;
            return result;
        }
        if (id != kNoBackup) return result;
    }
    if (!Insert(db, trail, phoneId, backup)) {
        id = kNoBackup;
        return result;
    }
    id = static_cast<int32_t>(db.lastInsertRowId());
    return ResultCode::kSuccess;
}

ResultCode DeleteBackups(Connection& db, Trail trail, const DbChar* imei)
{
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return ResultCode::kFailure;
    return RunOnly(db, trail, NarrowSql("DELETE FROM tBackups WHERE [phoneID] = %d;", phoneId));
}

ResultCode DeleteBackup(Connection& db, Trail trail, int32_t id)
{
    return RunOnly(db, trail, NarrowSql("DELETE FROM tBackups WHERE [bcID] = %d;", id));
}

bool FileExist(Connection& db, Trail trail, const DbChar* path)
{
    Statement rows = db.prepare(WideSql("SELECT COUNT(*) FROM tBackups WHERE [Path] = '%s';", Escaped{path}));
    if (!rows.prepared()) trail.error(1);
    return rows.prepared() && rows.step() && rows.int32(0) > 0;
}

ResultCode GetAllBackups(Connection& db, Trail trail, BackupList& list)
{
    return ReadList(
        db, trail, list, [] { return NarrowSql("SELECT COUNT(*) FROM tBackups;"); },
        [] { return NarrowSql("SELECT [bcID], [Path], [PhonePath], [Size], DATETIME([ModifiedTime]) FROM tBackups;"); },
        ReadBackup);
}

ResultCode GetPhoneBackups(Connection& db, Trail trail, const DbChar* imei, BackupList& list)
{
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return ResultCode::kFailure;
    return ReadList(
        db, trail, list, [&] { return NarrowSql("SELECT COUNT(*) FROM tBackups WHERE [phoneID] = %d;", phoneId); },
        [&] {
            return NarrowSql(
                "SELECT [bcID], [Path], [PhonePath], [Size], DATETIME([ModifiedTime]) FROM tBackups "
                "WHERE [phoneID] = %d;",
                phoneId);
        },
        ReadBackup);
}

}  // namespace kesta::backups
