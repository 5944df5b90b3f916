// The file engine: which files have been synced to a phone. It works for every table of its shape; each routine takes
// the lock itself and reports failures under its own name.
#pragma once

#include "core/caller_memory.h"
#include "core/results.h"
#include "kesta_db/kesta_db.h"

namespace kesta {

template <>
struct Element<SyncedFileRecord> {
    static void construct(SyncedFileRecord& file, const DateValue& now) { file = {now, nullptr, nullptr, nullptr}; }
    static void destroy(SyncedFileRecord& file)
    {
        FreeText(file.Path);
        FreeText(file.BasePath);
        FreeText(file.PhonePath);
    }
};

/// 1 when the file is recorded; the record is then filled.
int32_t DB_INTERNAL_IsSyncedFile(const DbChar* imei, Name fileView, const DbChar* path,
                                 SyncedFileRecord& file) noexcept;

/// Fills the empty list with all files, or with those of one folder when `folder` is not empty.
ResultCode DB_INTERNAL_GetSyncedFiles(const DbChar* imei, Name fileView, const DbChar* folder,
                                      SyncedFileList& list) noexcept;

ResultCode DB_INTERNAL_SetAddedFile(const DbChar* imei, Name fileTable, const SyncedFileRecord& file) noexcept;
ResultCode DB_INTERNAL_SetDeletedFile(const DbChar* imei, Name fileTable, const SyncedFileRecord& file) noexcept;
ResultCode DB_INTERNAL_SetUpdatedFile(const DbChar* imei, Name fileTable, const SyncedFileRecord& file) noexcept;

}  // namespace kesta
