#include "media/synced_files.h"

#include "core/call_frame.h"
#include "core/list.h"
#include "core/text.h"
#include "library/phone_lookup.h"
#include "media/folder_state.h"
#include "media/table_names.h"

namespace kesta {
namespace {

void ReadSyncedFile(const Statement& row, SyncedFileRecord& file)
{
    file.Path = row.newText(0);
    file.BasePath = row.newText(1);
    file.PhonePath = row.newText(2);
    file.ModifiedTime = row.date(3);
}

}  // namespace

int32_t DB_INTERNAL_IsSyncedFile(const DbChar* imei, Name fileView, const DbChar* path, SyncedFileRecord& file) noexcept
{
    constexpr int32_t kNo = 0;
    constexpr int32_t kYes = 1;
    constexpr Trail trail("DB_INTERNAL_IsSyncedFile");
    return RunLocked(trail, kNo, [&](Connection& db) {
        Statement rows =
            db.prepare(WideSql("SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM %s "
                               "WHERE [IMEI] = '%s' AND [Path] = '%s';",
                               fileView, Plain{imei}, Escaped{path}));
        if (!rows.prepared()) trail.error(1);
        if (!rows.prepared() || !rows.step()) return kNo;
        ReadSyncedFile(rows, file);
        return kYes;
    });
}

ResultCode DB_INTERNAL_GetSyncedFiles(const DbChar* imei, Name fileView, const DbChar* folder,
                                      SyncedFileList& list) noexcept
{
    constexpr Trail trail("DB_INTERNAL_GetSyncedFiles");
    return RunLocked(trail, ResultCode::kFailure, [&](Connection& db) {
        // Deliberate: no blank before AND.
        if (!IsEmpty(folder)) {
            return ReadList(
                db, trail, list,
                [&] {
                    return WideSql("SELECT COUNT(*) FROM %s WHERE [IMEI] = '%s'AND [BasePath] = '%s';", fileView,
                                   Plain{imei}, Escaped{folder});
                },
                [&] {
                    return WideSql(
                        "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM %s "
                        "WHERE [IMEI] = '%s'AND [BasePath] = '%s';",
                        fileView, Plain{imei}, Escaped{folder});
                },
                ReadSyncedFile);
        }
        return ReadList(
            db, trail, list,
            [&] { return WideSql("SELECT COUNT(*) FROM %s WHERE [IMEI] = '%s';", fileView, Plain{imei}); },
            [&] {
                return WideSql(
                    "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM %s WHERE [IMEI] = '%s';",
                    fileView, Plain{imei});
            },
            ReadSyncedFile);
    });
}

ResultCode DB_INTERNAL_SetAddedFile(const DbChar* imei, Name fileTable, const SyncedFileRecord& file) noexcept
{
    constexpr Trail trail("DB_INTERNAL_SetAddedFile");
    return RunLocked(trail, ResultCode::kFailure, [&](Connection& db) {
        const int32_t phoneId = GetPhoneIdByImei(db, imei);
        if (phoneId == kNoPhone) return ResultCode::kFailure;
        const SqliteCode inserted =
            db.exec(WideSql("INSERT INTO %s ([PhoneID], [Path], [BasePath], [PhonePath], [ModifiedTime]) "
                            "VALUES (%d, '%s', '%s', '%s', '%s');",
                            fileTable, phoneId, Escaped{file.Path}, Escaped{file.BasePath}, Escaped{file.PhonePath},
                            FormatDateTime(file.ModifiedTime)));
        if (inserted != SqliteCode::kOk) {
            trail.error(3);
            return PassThrough(inserted);
        }
        // Deliberate: the column is spelled [PATH] here. The file is recorded, whatever becomes of its folder's flag.
        // Files come folder by folder, so this text is mostly that of the call before.
        const SqliteCode flagged = db.execKept(
            WideSql("UPDATE %s SET [Flag] = %d WHERE [PhoneID] = %d AND [PATH] = '%s';", Name(FolderTableOf(fileTable)),
                    static_cast<int32_t>(FolderFlag::kSynced), phoneId, Escaped{file.BasePath}));
        if (flagged != SqliteCode::kOk) trail.error(2);
        return ResultCode::kSuccess;
    });
}

ResultCode DB_INTERNAL_SetDeletedFile(const DbChar* imei, Name fileTable, const SyncedFileRecord& file) noexcept
{
    constexpr Trail trail("DB_INTERNAL_SetDeletedFile");
    return RunLocked(trail, ResultCode::kFailure, [&](Connection& db) {
        const int32_t phoneId = GetPhoneIdByImei(db, imei);
        if (phoneId == kNoPhone) return ResultCode::kFailure;
        return trail.check(db.exec(WideSql("DELETE FROM %s WHERE [PhoneID] = %d AND [Path] = '%s';", fileTable, phoneId,
                                           Escaped{file.Path})),
                           1);
    });
}

ResultCode DB_INTERNAL_SetUpdatedFile(const DbChar* imei, Name fileTable, const SyncedFileRecord& file) noexcept
{
    constexpr Trail trail("DB_INTERNAL_SetUpdatedFile");
    return RunLocked(trail, ResultCode::kFailure, [&](Connection& db) {
        const int32_t phoneId = GetPhoneIdByImei(db, imei);
        if (phoneId == kNoPhone) return ResultCode::kFailure;
        return trail.check(
            db.exec(WideSql(
                "UPDATE %s SET [PhonePath] = '%s', [ModifiedTime] = '%s' WHERE [PhoneID] = %d AND [Path] = '%s';",
                fileTable, Escaped{file.PhonePath}, FormatDateTime(file.ModifiedTime), phoneId, Escaped{file.Path})),
            1);
    });
}

}  // namespace kesta
