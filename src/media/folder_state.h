// The folder engine, second half: what is known of a folder's state, and its removal. Routines named DB_INTERNAL_ take
// the lock themselves, those named DB_INTNOLOCK_ run under their caller's. Failures are reported under the routine's
// own name.
#pragma once

#include <cstdint>

#include "core/connection.h"
#include "core/results.h"
#include "core/trace.h"
#include "kesta_db/kesta_db.h"

namespace kesta {

/// The [Flag] of a folder or playlist row.
enum class FolderFlag : int32_t {
    kSynced = 0,         // at least one file of it was recorded
    kNothingSynced = 1,  // added, and no file of it was recorded yet
    kUnconfirmed = 3,    // playlists: to be deleted at once when its deletion is recorded
    kDeleted = 4,        // marked deleted, the row is kept
};

enum class Deletion { kNow, kByFlag };

/// 1 also when the folder is not known: what nobody decided about is synced.
int32_t DB_INTERNAL_IsFolderSelected(const DbChar* imei, Name folderView, const DbChar* path) noexcept;

ResultCode DB_INTERNAL_SetFolderSelected(const DbChar* imei, Name folderTable, const DbChar* path,
                                         int32_t selected) noexcept;

/// 1 for every folder.
int32_t DB_INTERNAL_IsFolderDeleted(const DbChar* imei, Name folderView, const DbChar* path) noexcept;

/// The result is the last step's code when the folder is not known.
ResultCode DB_INTNOLOCK_GetFlag(Connection& db, const DbChar* imei, Name folderTable, const DbChar* path,
                                int32_t& flag);

/// Sets a column of all folders of a phone, except where it holds FolderFlag::kDeleted.
ResultCode DB_INTERNAL_SetFoldersState(const DbChar* imei, Name folderTable, Name column, int32_t value) noexcept;

ResultCode DB_INTNOLOCK_SetFolderState(Connection& db, const DbChar* imei, Name folderTable, const DbChar* path,
                                       Name column, int32_t value);

/// As DB_INTNOLOCK_SetFolderState, for callers without the lock. It has no catch-all of its own.
ResultCode DB_INTERNAL_SetFolderState(const DbChar* imei, Name folderTable, const DbChar* path, Name column,
                                      int32_t value);

/// Removes the rows of a folder and of its files. The files make the result, the folder's failure is only told.
ResultCode DeleteFolderAndFiles(Connection& db, Trail trail, int32_t phoneId, Name folderTable, const DbChar* path);

/// Removes the rows of a folder's files.
ResultCode DeleteFilesOf(Connection& db, Trail trail, int32_t phoneId, Name folderTable, const DbChar* path);

/// Removes a folder and its files; with Deletion::kByFlag one that has been synced is only marked.
ResultCode DB_INTERNAL_SetDeletedFolder(const DbChar* imei, Name folderTable, const DbChar* path,
                                        Deletion deletion) noexcept;

/// Notes that a folder is gone or back. One of which nothing was ever synced is removed.
ResultCode DB_INTERNAL_SetFolderDeleted(const DbChar* imei, Name folderTable, const DbChar* path,
                                        int32_t deleted) noexcept;

}  // namespace kesta
