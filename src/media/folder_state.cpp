#include "media/folder_state.h"

#include "core/call_frame.h"
#include "library/phone_lookup.h"
#include "media/table_names.h"

namespace kesta {
namespace {

constexpr int32_t kYes = 1;

/// The first column of the first row, an answer of 0 or 1; 1 when there is none.
int32_t Answer(Statement rows, Trail trail)
{
    if (!rows.prepared()) trail.error(1);
    return rows.prepared() && rows.step() ? rows.int32(0) : kYes;
}

}  // namespace

int32_t DB_INTERNAL_IsFolderSelected(const DbChar* imei, Name folderView, const DbChar* path) noexcept
{
    constexpr Trail trail("DB_INTERNAL_IsFolderSelected");
    return RunLocked(trail, kYes, [&](Connection& db) {
        return Answer(db.prepare(WideSql("SELECT [Selected] FROM %s WHERE [IMEI] = '%s' AND [Path] = '%s';", folderView,
                                         Plain{imei}, Escaped{path})),
                      trail);
    });
}

ResultCode DB_INTERNAL_SetFolderSelected(const DbChar* imei, Name folderTable, const DbChar* path,
                                         int32_t selected) noexcept
{
    constexpr Trail trail("DB_INTERNAL_SetFolderSelected");
    return RunLocked(trail, ResultCode::kFailure, [&](Connection& db) {
        const int32_t phoneId = GetPhoneIdByImei(db, imei);
        if (phoneId == kNoPhone) return ResultCode::kFailure;
        return trail.check(db.exec(WideSql("UPDATE %s SET [Selected] = %d WHERE [PhoneID] = %d AND [Path] = '%s';",
                                           folderTable, selected, phoneId, Escaped{path})),
                           2);
    });
}

int32_t DB_INTERNAL_IsFolderDeleted(const DbChar* imei, Name folderView, const DbChar* path) noexcept
{
    constexpr Trail trail("DB_INTERNAL_IsFolderDeleted");
    return RunLocked(trail, kYes, [&](Connection& db) {
        // Deliberate: the views have no column [Name], so that the answer is 1 for every folder.
        return Answer(db.prepare(WideSql("SELECT [Deleted] FROM %s WHERE [IMEI] = '%s' AND [Name] = '%s';", folderView,
                                         Plain{imei}, Escaped{path})),
                      trail);
    });
}

ResultCode DB_INTNOLOCK_GetFlag(Connection& db, const DbChar* imei, Name folderTable, const DbChar* path, int32_t& flag)
{
    Statement rows = db.prepare(WideSql("SELECT [Flag] FROM %s WHERE [IMEI] = '%s' AND [Path] = '%s';",
                                        Name(ViewOf(folderTable)), Plain{imei}, Escaped{path}));
    if (!rows.prepared()) {
        Trail("DB_INTNOLOCK_GetFlag").error(1);
        return ResultCode::kFailure;
    }
    if (!rows.step()) return PassThrough(rows.last());
    flag = rows.int32(0);
    return ResultCode::kSuccess;
}

ResultCode DB_INTERNAL_SetFoldersState(const DbChar* imei, Name folderTable, Name column, int32_t value) noexcept
{
    constexpr Trail trail("DB_INTERNAL_SetFoldersState");
    return RunLocked(trail, ResultCode::kFailure, [&](Connection& db) {
        const int32_t phoneId = GetPhoneIdByImei(db, imei);
        if (phoneId == kNoPhone) return ResultCode::kFailure;
        // Deliberate: the last number is that of FolderFlag::kDeleted whatever the column.
        return trail.check(
            db.exec(NarrowSql("UPDATE %s SET %s = %d WHERE [PhoneID] = %d AND %s <> %d;", folderTable, column, value,
                              phoneId, column, static_cast<int32_t>(FolderFlag::kDeleted))),
            2);
    });
}

ResultCode DB_INTNOLOCK_SetFolderState(Connection& db, const DbChar* imei, Name folderTable, const DbChar* path,
                                       Name column, int32_t value)
{
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return ResultCode::kFailure;
    return Trail("DB_INTNOLOCK_SetFolderState")
        .check(db.exec(WideSql("UPDATE %s SET %s = %d WHERE [PhoneID] = %d AND [Path] = '%s';", folderTable, column,
                               value, phoneId, Escaped{path})),
               2);
}

ResultCode DB_INTERNAL_SetFolderState(const DbChar* imei, Name folderTable, const DbChar* path, Name column,
                                      int32_t value)
{
    const ScopedAccess access;
    Connection* db = TheModule().openConnection();
    if (db == nullptr) return ResultCode::kFailure;
    return DB_INTNOLOCK_SetFolderState(*db, imei, folderTable, path, column, value);
}

ResultCode DeleteFilesOf(Connection& db, Trail trail, int32_t phoneId, Name folderTable, const DbChar* path)
{
    return trail.check(db.exec(WideSql("DELETE FROM %s WHERE [PhoneID] = %d AND [BasePath] = '%s';",
                                       Name(FileTableOf(folderTable)), phoneId, Escaped{path})),
                       1);
}

ResultCode DeleteFolderAndFiles(Connection& db, Trail trail, int32_t phoneId, Name folderTable, const DbChar* path)
{
    (void)trail.check(
        db.exec(WideSql("DELETE FROM %s WHERE [PhoneID] = %d AND [Path] = '%s';", folderTable, phoneId, Escaped{path})),
        1);
    return DeleteFilesOf(db, trail, phoneId, folderTable, path);
}

ResultCode DB_INTERNAL_SetDeletedFolder(const DbChar* imei, Name folderTable, const DbChar* path,
                                        Deletion deletion) noexcept
{
    constexpr Trail trail("DB_INTERNAL_SetDeletedFolder");
    return RunLocked(trail, ResultCode::kFailure, [&](Connection& db) {
        const int32_t phoneId = GetPhoneIdByImei(db, imei);
        if (phoneId == kNoPhone) return ResultCode::kFailure;
        const auto flag = static_cast<FolderFlag>(GetPathFlag(db, phoneId, folderTable, path));
        if (deletion == Deletion::kNow || flag == FolderFlag::kUnconfirmed) {
            return DeleteFolderAndFiles(db, trail, phoneId, folderTable, path);
        }
        if (flag != FolderFlag::kSynced) return ResultCode::kFailure;
        return DB_INTNOLOCK_SetFolderState(db, imei, folderTable, path, Name{"[Flag]"},
                                           static_cast<int32_t>(FolderFlag::kDeleted));
    });
}

ResultCode DB_INTERNAL_SetFolderDeleted(const DbChar* imei, Name folderTable, const DbChar* path,
                                        int32_t deleted) noexcept
{
    constexpr Trail trail("DB_INTERNAL_SetFolderDeleted");
    bool removeNow = false;
    const ResultCode result = RunLocked(trail, ResultCode::kFailure, [&](Connection& db) {
        const int32_t phoneId = GetPhoneIdByImei(db, imei);
        if (phoneId == kNoPhone) return ResultCode::kFailure;
        if (deleted != 0) {
            int32_t flag = 0;
            removeNow = DB_INTNOLOCK_GetFlag(db, imei, folderTable, path, flag) == ResultCode::kSuccess &&
                        static_cast<FolderFlag>(flag) == FolderFlag::kNothingSynced;
            if (removeNow) return ResultCode::kSuccess;
        }
        return trail.check(db.exec(WideSql("UPDATE %s SET [Deleted] = %d WHERE [PhoneID] = %d AND [PATH] = '%s';",
                                           folderTable, deleted, phoneId, Escaped{path})),
                           2);
    });
    // Deliberate: the removal is a step of its own, after the lock was let go.
    return removeNow ? DB_INTERNAL_SetDeletedFolder(imei, folderTable, path, Deletion::kNow) : result;
}

}  // namespace kesta
