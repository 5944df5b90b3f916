#include "media/synced_files.h"

#include "core/call_frame.h"
#include "core/list.h"
#include "core/text.h"
#include "library/phone_lookup.h"
#include "media/folder_index.h"
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

namespace {

/// Of the module's connection, with which its contents go. Never destroyed: another thread may still be inside a call
/// when the process ends.
union Eternal {
    Eternal() : index() {}
    ~Eternal() {}
    FolderIndex index;
};

Eternal eternal;
FolderIndex& folderIndex = eternal.index;

/// The files of a folder whose rows are known; none if the statements have to be asked.
std::optional<ResultCode> ReadKnownRows(Routine self, const DbChar* imei, const MediaTables& tables,
                                        const DbChar* folder, SyncedFileList& list)
{
    if (!folderIndex.follows(self.db, tables, imei)) {
        return std::nullopt;
    }
    // Takes the file's lock, and keeps it until the last row has been read. Where it fails, counting the files would.
    Statement lock =
        self.prepare(1, WideSql("SELECT 1 FROM %s WHERE [IMEI] = '%s' LIMIT 1;", tables.fileView, Plain{imei}));
    if (!lock.prepared()) {
        return ResultCode::kFailure;
    }
    if (!lock.step()) {
        return ResultCode::kSuccess;
    }
    const FolderIndex::Rows* known = folderIndex.find(self.db, tables, imei, folder);
    if (known == nullptr) {
        return std::nullopt;
    }
    if (known->empty()) {
        return ResultCode::kSuccess;
    }
    AllocateList(list, static_cast<int32_t>(known->size()));
    for (const int64_t rowId : *known) {
        const ResultCode read = self.first(
            3,
            WideSql("SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM %s WHERE ROWID = %I64d;",
                    tables.files, rowId),
            PassThrough, [&](const Statement& row) { ReadSyncedFile(row, list.Items[list.Count++]); });
        if (read != ResultCode::kSuccess) {
            return read;
        }
    }
    return ResultCode::kSuccess;
}

ResultCode ReadFilesOf(Routine self, const DbChar* imei, const MediaTables& tables, const DbChar* folder,
                       SyncedFileList& list)
{
    // Deliberate: no blank before AND.
    return ReadList(self, list,
                    WideSql("SELECT COUNT(*) FROM %s WHERE [IMEI] = '%s'AND [BasePath] = '%s';", tables.fileView,
                            Plain{imei}, Escaped{folder}),
                    WideSql("SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM %s "
                            "WHERE [IMEI] = '%s'AND [BasePath] = '%s';",
                            tables.fileView, Plain{imei}, Escaped{folder}),
                    ReadSyncedFile);
}

}  // namespace

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
        if (const std::optional<ResultCode> read = ReadKnownRows(self, imei, tables, folder, list)) {
            return *read;
        }
        const ResultCode result = ReadFilesOf(self, imei, tables, folder, list);
        folderIndex.noteListing(self.db, tables, imei);
        self.db.whenClosed([]() noexcept { folderIndex.forget(); });
        return result;
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
