#include "media/folder_records.h"

#include "core/call_frame.h"
#include "core/list.h"
#include "library/main_folders.h"
#include "library/phone_lookup.h"
#include "media/folder_state.h"

namespace kesta::media {

ResultCode AddFolder(const DbChar* imei, const MediaTables& tables, const FolderRecord& folder) noexcept
{
    return RunLocked("DB_INTERNAL_AddFolder", ResultCode::kFailure, [&](Routine self) {
        return ForPhone(self, imei, [&](int32_t phoneId) {
            // Deliberate: every category raises the music flag.
            MainFolderChangeFlags.music.store(1, std::memory_order_relaxed);
            // A known folder keeps selection and flag; for it the insert then fails on the key. Neither shows in the
            // result, nor in the trace.
            (void)self.db.exec(
                WideSql("UPDATE %s SET [Count] = %d, [Size] = %I64d, [TotalSize] = %I64d, [Sized] = %d, [Deleted] = 0 "
                        "WHERE [PhoneID] = %d AND [Path] = '%s';",
                        tables.folders, folder.Count, folder.Size, folder.TotalSize, folder.Sized, phoneId,
                        Escaped{folder.Path}));
            (void)self.db.exec(WideSql(
                "INSERT INTO %s ([PhoneID], [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted], "
                "[Flag], [AddTime]) VALUES (%d, '%s', %d, %I64d, %I64d, %d, 1, 0, %d, '%s');",
                tables.folders, phoneId, Escaped{folder.Path}, folder.Count, folder.Size, folder.TotalSize,
                folder.Sized, static_cast<int32_t>(FolderFlag::kNothingSynced), FormatDateTime(Now())));
            return ResultCode::kSuccess;
        });
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

void ReadFolderWithTime(const Statement& row, FolderRecord& folder)
{
    ReadFolder(row, folder);
    folder.AddTime = row.date(8);
}

int32_t CountFolders(Connection& db, const MediaTables& tables, int32_t phoneId)
{
    Statement counting =
        db.prepare(NarrowSql("SELECT COUNT(*) FROM %s WHERE [PhoneID] = %d;", tables.folders, phoneId));
    return counting.prepared() && counting.step() ? counting.int32(0) : -1;
}

}  // namespace

ResultCode GetFolders(const DbChar* imei, const MediaTables& tables, FolderList& list, FolderOrder order) noexcept
{
    return RunLocked("DB_INTERNAL_GetFolders", ResultCode::kFailure, [&](Routine self) {
        return ForPhone(self, imei, [&](int32_t phoneId) {
            const int32_t count = CountFolders(self.db, tables, phoneId);
            if (count < 0) {
                return ResultCode::kFailure;  // Deliberate: without a line
            }
            if (count == 0) {
                return ResultCode::kSuccess;
            }
            EmptyList(list);
            AllocateList(list, count);
            return self.query(
                1,
                NarrowSql("SELECT ROWID, [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted], "
                          "DATETIME([AddTime]) FROM %s WHERE [PhoneID] = %d%s;",
                          tables.folders, phoneId, Name{order == FolderOrder::kAddTime ? " ORDER BY [AddTime]" : ""}),
                [&](Statement& rows) { return FillList(list, count, rows, ReadFolderWithTime); });
        });
    });
}

ResultCode GetFolder(const DbChar* imei, const MediaTables& tables, const DbChar* path, FolderRecord& folder) noexcept
{
    return RunLocked("DB_INTERNAL_GetFolder", ResultCode::kFailure, [&](Routine self) {
        return ForPhone(self, imei, [&](int32_t phoneId) {
            return self.first(
                1,
                WideSql("SELECT ROWID, [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted] FROM %s "
                        "WHERE [PhoneID] = %d AND [Path] = '%s';",
                        tables.folders, phoneId, Escaped{path}),
                NoRowIsFailure, [&](const Statement& row) { ReadFolder(row, folder); });
        });
    });
}

}  // namespace kesta::media
