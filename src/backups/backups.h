// The backups made of phones, in the table tBackups. A database made by this library has no such table (it has
// tBackup): there every routine fails at its first statement, until another program makes the table. The routines run
// under the lock of the exports that call them.
#pragma once

#include "core/caller_memory.h"
#include "core/routine.h"
#include "kesta_db/kesta_db.h"

namespace kesta {

inline constexpr int32_t kNoBackup = -1;

template <>
struct Element<BackupRecord> {
    static void construct(BackupRecord& backup, const DateValue& now)
    {
        backup = {kNoBackup, 0, now, nullptr, nullptr};
    }
    static void destroy(BackupRecord& backup)
    {
        FreeText(backup.Path);
        FreeText(backup.PhonePath);
        backup.Size = 0;
    }
};

namespace backups {

/// What AddBackup answers for a path that was recorded already.
inline constexpr auto kBackupExists = static_cast<ResultCode>(183);

/// Records a backup, or refreshes the one recorded for its path. `id` becomes the record's id, or kNoBackup.
ResultCode AddBackup(Routine self, const DbChar* imei, const BackupRecord& backup, int32_t& id);
/// The results of these two are SQLite's own codes.
ResultCode DeleteBackups(Routine self, const DbChar* imei);
ResultCode DeleteBackup(Routine self, int32_t id);
bool FileExist(Routine self, const DbChar* path);
/// Both fill the empty list.
ResultCode GetAllBackups(Routine self, BackupList& list);
ResultCode GetPhoneBackups(Routine self, const DbChar* imei, BackupList& list);

}  // namespace backups
}  // namespace kesta
