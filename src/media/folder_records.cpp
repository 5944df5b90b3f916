#include "media/folder_records.h"

#include "core/call_frame.h"
#include "core/list.h"
#include "library/main_folders.h"
#include "library/phone_lookup.h"
#include "media/folder_state.h"

namespace kesta {

ResultCode DB_INTERNAL_AddFolder(const DbChar* imei, Name folderTable, const FolderRecord& folder) noexcept
{
    return RunLocked(Trail("DB_INTERNAL_AddFolder"), ResultCode::kFailure, [&](Connection& db) {
        const int32_t phoneId = GetPhoneIdByImei(db, imei);
        if (phoneId == kNoPhone) return ResultCode::kFailure;
        // Deliberate: every category raises the music mark.
        MainFolderChangeFlags.music.store(1, std::memory_order_relaxed);
        // A known folder keeps selection and flag; for it the insert then fails on the key. Neither shows in the
        // result.
        (void)db.exec(WideSql(
            "UPDATE %s SET [Count] = %d, [Size] = %I64d, [TotalSize] = %I64d, [Sized] = %d, [Deleted] = 0 "
            "WHERE [PhoneID] = %d AND [Path] = '%s';",
            folderTable, folder.Count, folder.Size, folder.TotalSize, folder.Sized, phoneId, Escaped{folder.Path}));
        (void)db.exec(
            WideSql("INSERT INTO %s ([PhoneID], [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted], "
                    "[Flag], [AddTime]) VALUES (%d, '%s', %d, %I64d, %I64d, %d, 1, 0, %d, '%s');",
                    folderTable, phoneId, Escaped{folder.Path}, folder.Count, folder.Size, folder.TotalSize,
                    folder.Sized, static_cast<int32_t>(FolderFlag::kNothingSynced), FormatDateTime(Now())));
        return ResultCode::kSuccess;
    });
}

namespace {

/// Reads what both queries select, ROWID to [Deleted].
void ReadFolder(const Statement& row, FolderRecord& folder)
{
    folder.RowId = row.int64(0);
    folder.Path = row.newText(1);
    folder.Count = row.int32(2);
    folder.Size = row.int64(3);
    folder.TotalSize = row.int64(4);
    folder.Sized = row.int32(5);
    folder.Selected = row.int32(6);
    folder.Deleted = row.int32(7);
}

int32_t CountFolders(Connection& db, Name folderTable, int32_t phoneId)
{
    Statement counting = db.prepare(NarrowSql("SELECT COUNT(*) FROM %s WHERE [PhoneID] = %d;", folderTable, phoneId));
    return counting.prepared() && counting.step() ? counting.int32(0) : -1;
}

Sql FoldersSql(Name folderTable, int32_t phoneId, FolderOrder order)
{
    return NarrowSql(
        "SELECT ROWID, [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted], DATETIME([AddTime]) FROM "
        "%s "
        "WHERE [PhoneID] = %d%s;",
        folderTable, phoneId, Name{order == FolderOrder::kAddTime ? " ORDER BY [AddTime]" : ""});
}

}  // namespace

ResultCode DB_INTERNAL_GetFolders(const DbChar* imei, Name folderTable, FolderList& list, FolderOrder order) noexcept
{
    constexpr Trail trail("DB_INTERNAL_GetFolders");
    return RunLocked(trail, ResultCode::kFailure, [&](Connection& db) {
        const int32_t phoneId = GetPhoneIdByImei(db, imei);
        if (phoneId == kNoPhone) return ResultCode::kFailure;
        const int32_t count = CountFolders(db, folderTable, phoneId);
        if (count < 0) return ResultCode::kFailure;  // Deliberate: without a line
        if (count == 0) return ResultCode::kSuccess;
        EmptyList(list);
        AllocateList(list, count);
        Statement rows = db.prepare(FoldersSql(folderTable, phoneId, order));
        if (!rows.prepared()) {
            trail.error(1);
            return ResultCode::kFailure;
        }
        return FillList(list, count, rows, [](const Statement& row, FolderRecord& folder) {
            ReadFolder(row, folder);
            folder.AddTime = row.date(8);
        });
    });
}

ResultCode DB_INTERNAL_GetFolder(const DbChar* imei, Name folderTable, const DbChar* path,
                                 FolderRecord& folder) noexcept
{
    constexpr Trail trail("DB_INTERNAL_GetFolder");
    return RunLocked(trail, ResultCode::kFailure, [&](Connection& db) {
        const int32_t phoneId = GetPhoneIdByImei(db, imei);
        if (phoneId == kNoPhone) return ResultCode::kFailure;
        Statement rows = db.prepare(
            WideSql("SELECT ROWID, [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted] FROM %s "
                    "WHERE [PhoneID] = %d AND [Path] = '%s';",
                    folderTable, phoneId, Escaped{path}));
        if (!rows.prepared()) {
            trail.error(1);
            return ResultCode::kFailure;
        }
        if (!rows.step()) return ResultCode::kFailure;
        ReadFolder(rows, folder);
        return ResultCode::kSuccess;
    });
}

}  // namespace kesta
