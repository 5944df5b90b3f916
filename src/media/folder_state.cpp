#include "media/folder_state.h"

#include "core/call_frame.h"
#include "library/phone_lookup.h"

namespace kesta::media {
namespace {

constexpr int32_t kYes = 1;  // the answer also when there is no row

}  // namespace

int32_t IsFolderSelected(const DbChar* imei, const MediaTables& tables, const DbChar* path) noexcept
{
    return RunLocked("DB_INTERNAL_IsFolderSelected", kYes, [&](Routine self) {
        return self.firstNumber(1,
                                WideSql("SELECT [Selected] FROM %s WHERE [IMEI] = '%s' AND [Path] = '%s';",
                                        tables.folderView, Plain{imei}, Escaped{path}),
                                kYes);
    });
}

ResultCode SetFolderSelected(const DbChar* imei, const MediaTables& tables, const DbChar* path,
                             int32_t selected) noexcept
{
    return RunLocked("DB_INTERNAL_SetFolderSelected", ResultCode::kFailure, [&](Routine self) {
        return ForPhone(self, imei, [&](int32_t phoneId) {
            return self.run(2, WideSql("UPDATE %s SET [Selected] = %d WHERE [PhoneID] = %d AND [Path] = '%s';",
                                       tables.folders, selected, phoneId, Escaped{path}));
        });
    });
}

int32_t IsFolderDeleted(const DbChar* imei, const MediaTables& tables, const DbChar* path) noexcept
{
    return RunLocked("DB_INTERNAL_IsFolderDeleted", kYes, [&](Routine self) {
        // Deliberate: the views have no column [Name], so that the answer is 1 for every folder.
        return self.firstNumber(1,
                                WideSql("SELECT [Deleted] FROM %s WHERE [IMEI] = '%s' AND [Name] = '%s';",
                                        tables.folderView, Plain{imei}, Escaped{path}),
                                kYes);
    });
}

ResultCode GetFlag(Connection& db, const DbChar* imei, const MediaTables& tables, const DbChar* path, int32_t& flag)
{
    Routine self(db, Trail("DB_INTNOLOCK_GetFlag"));
    return self.first(1,
                      WideSql("SELECT [Flag] FROM %s WHERE [IMEI] = '%s' AND [Path] = '%s';", tables.folderView,
                              Plain{imei}, Escaped{path}),
                      PassThrough, [&](const Statement& row) { flag = row.int32(0); });
}

ResultCode SetFoldersState(const DbChar* imei, const MediaTables& tables, Name column, int32_t value) noexcept
{
    return RunLocked("DB_INTERNAL_SetFoldersState", ResultCode::kFailure, [&](Routine self) {
        return ForPhone(self, imei, [&](int32_t phoneId) {
            // Deliberate: the last number is that of FolderFlag::kDeleted whatever the column.
            return self.run(2, NarrowSql("UPDATE %s SET %s = %d WHERE [PhoneID] = %d AND %s <> %d;", tables.folders,
                                         column, value, phoneId, column, static_cast<int32_t>(FolderFlag::kDeleted)));
        });
    });
}

ResultCode SetFolderState(Connection& db, const DbChar* imei, const MediaTables& tables, const DbChar* path,
                          Name column, int32_t value)
{
    Routine self(db, Trail("DB_INTNOLOCK_SetFolderState"));
    return ForPhone(self, imei, [&](int32_t phoneId) {
        return self.run(2, WideSql("UPDATE %s SET %s = %d WHERE [PhoneID] = %d AND [Path] = '%s';", tables.folders,
                                   column, value, phoneId, Escaped{path}));
    });
}

ResultCode SetFolderState(const DbChar* imei, const MediaTables& tables, const DbChar* path, Name column, int32_t value)
{
    const ScopedAccess access;
    Connection* db = TheModule().openConnection();
    if (db == nullptr) {
        return ResultCode::kFailure;
    }
    return SetFolderState(*db, imei, tables, path, column, value);
}

ResultCode DeleteFilesOf(Routine self, int32_t phoneId, const MediaTables& tables, const DbChar* path)
{
    return self.run(
        1, WideSql("DELETE FROM %s WHERE [PhoneID] = %d AND [BasePath] = '%s';", tables.files, phoneId, Escaped{path}));
}

ResultCode DeleteFolderAndFiles(Routine self, int32_t phoneId, const MediaTables& tables, const DbChar* path)
{
    (void)self.run(
        1, WideSql("DELETE FROM %s WHERE [PhoneID] = %d AND [Path] = '%s';", tables.folders, phoneId, Escaped{path}));
    return DeleteFilesOf(self, phoneId, tables, path);
}

ResultCode SetDeletedFolder(const DbChar* imei, const MediaTables& tables, const DbChar* path,
                            Deletion deletion) noexcept
{
    return RunLocked("DB_INTERNAL_SetDeletedFolder", ResultCode::kFailure, [&](Routine self) {
        return ForPhone(self, imei, [&](int32_t phoneId) {
            const auto flag = static_cast<FolderFlag>(GetPathFlag(self.db, phoneId, tables.folders, path));
            if (deletion == Deletion::kNow || flag == FolderFlag::kUnconfirmed) {
                return DeleteFolderAndFiles(self, phoneId, tables, path);
            }
            if (flag != FolderFlag::kSynced) {
                return ResultCode::kFailure;
            }
            return SetFolderState(self.db, imei, tables, path, Name{"[Flag]"},
                                  static_cast<int32_t>(FolderFlag::kDeleted));
        });
    });
}

ResultCode SetFolderDeleted(const DbChar* imei, const MediaTables& tables, const DbChar* path, int32_t deleted) noexcept
{
    bool removeNow = false;
    const ResultCode result = RunLocked("DB_INTERNAL_SetFolderDeleted", ResultCode::kFailure, [&](Routine self) {
        return ForPhone(self, imei, [&](int32_t phoneId) {
            if (deleted != 0) {
                int32_t flag = 0;
                removeNow = GetFlag(self.db, imei, tables, path, flag) == ResultCode::kSuccess &&
                            static_cast<FolderFlag>(flag) == FolderFlag::kNothingSynced;
                if (removeNow) {
                    return ResultCode::kSuccess;
                }
            }
            return self.run(2, WideSql("UPDATE %s SET [Deleted] = %d WHERE [PhoneID] = %d AND [PATH] = '%s';",
                                       tables.folders, deleted, phoneId, Escaped{path}));
        });
    });
    // Deliberate: the removal is a step of its own, after the lock was let go.
    return removeNow ? SetDeletedFolder(imei, tables, path, Deletion::kNow) : result;
}

}  // namespace kesta::media
