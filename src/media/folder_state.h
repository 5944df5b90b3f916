// The folder engine, second half: what is known of a folder's state, and its removal. Routines that are given a
// connection or another routine run under their caller's lock, the others take the lock themselves. Failures are
// reported under the routine's own name.
#pragma once

#include <cstdint>

#include "core/routine.h"
#include "kesta_db/kesta_db.h"
#include "media/media_tables.h"

namespace kesta {

/// The [Flag] of a folder or playlist row.
enum class FolderFlag : int32_t {
    kSynced = 0,         // at least one file of it was recorded
    kNothingSynced = 1,  // added, and no file of it was recorded yet
    kUnconfirmed = 3,    // playlists: to be deleted at once when its deletion is recorded
    kDeleted = 4,        // marked deleted, the row is kept
};

namespace media {

enum class Deletion { kNow, kByFlag };

/// 1 also when the folder is not known: what nobody decided about is synced.
int32_t IsFolderSelected(const DbChar* imei, const MediaTables& tables, const DbChar* path) noexcept;

ResultCode SetFolderSelected(const DbChar* imei, const MediaTables& tables, const DbChar* path,
                             int32_t selected) noexcept;

/// 1 for every folder.
int32_t IsFolderDeleted(const DbChar* imei, const MediaTables& tables, const DbChar* path) noexcept;

/// The result is the last step's code when the folder is not known.
ResultCode GetFlag(Connection& db, const DbChar* imei, const MediaTables& tables, const DbChar* path, int32_t& flag);

/// Sets a column of all folders of a phone, except where it holds FolderFlag::kDeleted.
ResultCode SetFoldersState(const DbChar* imei, const MediaTables& tables, Name column, int32_t value) noexcept;

ResultCode SetFolderState(Connection& db, const DbChar* imei, const MediaTables& tables, const DbChar* path,
                          Name column, int32_t value);

/// The same for callers without the lock. It has no catch-all of its own.
ResultCode SetFolderState(const DbChar* imei, const MediaTables& tables, const DbChar* path, Name column,
                          int32_t value);

/// Removes the rows of a folder and of its files. The files make the result, the folder's failure is only told.
ResultCode DeleteFolderAndFiles(Routine self, int32_t phoneId, const MediaTables& tables, const DbChar* path);

/// Removes the rows of a folder's files.
ResultCode DeleteFilesOf(Routine self, int32_t phoneId, const MediaTables& tables, const DbChar* path);

/// Removes a folder and its files; with Deletion::kByFlag one that has been synced is only marked.
ResultCode SetDeletedFolder(const DbChar* imei, const MediaTables& tables, const DbChar* path,
                            Deletion deletion) noexcept;

/// Notes that a folder is gone or back. One of which nothing was ever synced is removed.
ResultCode SetFolderDeleted(const DbChar* imei, const MediaTables& tables, const DbChar* path,
                            int32_t deleted) noexcept;

}  // namespace media
}  // namespace kesta
