#include "media/synced_files.h"

#include "core/call_frame.h"
#include "core/list.h"
#include "core/text.h"
#include "library/phone_lookup.h"
#include "media/folder_state.h"

namespace kesta::media {
namespace {

void ReadSyncedFile(const Statement& row, SyncedFileRecord& file)
{
    file.Path = row.newText(0);
    file.BasePath = row.newText(1);
    file.PhonePath = row.newText(2);
    file.ModifiedTime = row.date(3);
}

}  // namespace

int32_t IsSyncedFile(const DbChar* imei, const MediaTables& tables, const DbChar* path, SyncedFileRecord& file) noexcept
{
    constexpr int32_t kNo = 0;
    constexpr int32_t kYes = 1;
    return RunLocked("DB_INTERNAL_IsSyncedFile", kNo, [&](Routine self) {
        const ResultCode found =
            self.first(1,
                       WideSql("SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM %s "
                               "WHERE [IMEI] = '%s' AND [Path] = '%s';",
                               tables.fileView, Plain{imei}, Escaped{path}),
                       NoRowIsFailure, [&](const Statement& row) { ReadSyncedFile(row, file); });
        return found == ResultCode::kSuccess ? kYes : kNo;
    });
}

ResultCode GetSyncedFiles(const DbChar* imei, const MediaTables& tables, const DbChar* folder,
                          SyncedFileList& list) noexcept
{
    return RunLocked("DB_INTERNAL_GetSyncedFiles", ResultCode::kFailure, [&](Routine self) {
        if (IsEmpty(folder)) {
            return ReadList(
                self, list, WideSql("SELECT COUNT(*) FROM %s WHERE [IMEI] = '%s';", tables.fileView, Plain{imei}),
                WideSql("SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM %s WHERE [IMEI] = '%s';",
                        tables.fileView, Plain{imei}),
                ReadSyncedFile);
        }
        // Deliberate: no blank before AND.
        return ReadList(self, list,
                        WideSql("SELECT COUNT(*) FROM %s WHERE [IMEI] = '%s'AND [BasePath] = '%s';", tables.fileView,
                                Plain{imei}, Escaped{folder}),
                        WideSql("SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM %s "
                                "WHERE [IMEI] = '%s'AND [BasePath] = '%s';",
                                tables.fileView, Plain{imei}, Escaped{folder}),
                        ReadSyncedFile);
    });
}

ResultCode SetAddedFile(const DbChar* imei, const MediaTables& tables, const SyncedFileRecord& file) noexcept
{
    return RunLocked("DB_INTERNAL_SetAddedFile", ResultCode::kFailure, [&](Routine self) {
        return ForPhone(self, imei, [&](int32_t phoneId) {
            const SqliteCode inserted =
                self.exec(3, WideSql("INSERT INTO %s ([PhoneID], [Path], [BasePath], [PhonePath], [ModifiedTime]) "
                                     "VALUES (%d, '%s', '%s', '%s', '%s');",
                                     tables.files, phoneId, Escaped{file.Path}, Escaped{file.BasePath},
                                     Escaped{file.PhonePath}, FormatDateTime(file.ModifiedTime)));
            if (inserted != SqliteCode::kOk) {
                return PassThrough(inserted);
            }
            // Deliberate: the column is spelled [PATH] here. The file is recorded, whatever becomes of its folder's
            // flag.
            (void)self.run(2,
                           WideSql("UPDATE %s SET [Flag] = %d WHERE [PhoneID] = %d AND [PATH] = '%s';", tables.folders,
                                   static_cast<int32_t>(FolderFlag::kSynced), phoneId, Escaped{file.BasePath}));
            return ResultCode::kSuccess;
        });
    });
}

ResultCode SetDeletedFile(const DbChar* imei, const MediaTables& tables, const SyncedFileRecord& file) noexcept
{
    return RunLocked("DB_INTERNAL_SetDeletedFile", ResultCode::kFailure, [&](Routine self) {
        return ForPhone(self, imei, [&](int32_t phoneId) {
            return self.run(1, WideSql("DELETE FROM %s WHERE [PhoneID] = %d AND [Path] = '%s';", tables.files, phoneId,
                                       Escaped{file.Path}));
        });
    });
}

ResultCode SetUpdatedFile(const DbChar* imei, const MediaTables& tables, const SyncedFileRecord& file) noexcept
{
    return RunLocked("DB_INTERNAL_SetUpdatedFile", ResultCode::kFailure, [&](Routine self) {
        return ForPhone(self, imei, [&](int32_t phoneId) {
            return self.run(1, WideSql("UPDATE %s SET [PhonePath] = '%s', [ModifiedTime] = '%s' "
                                       "WHERE [PhoneID] = %d AND [Path] = '%s';",
                                       tables.files, Escaped{file.PhonePath}, FormatDateTime(file.ModifiedTime),
                                       phoneId, Escaped{file.Path}));
        });
    });
}

}  // namespace kesta::media
