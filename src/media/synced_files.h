// The file engine: which files have been synced to a phone. It works for every kind of media; each routine takes the
// lock itself and reports failures under its own name.
#pragma once

#include "core/caller_memory.h"
#include "core/results.h"
#include "kesta_db/kesta_db.h"
#include "media/media_tables.h"

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

namespace media {

/// 1 when the file is recorded; the record is then filled.
int32_t IsSyncedFile(const DbChar* imei, const MediaTables& tables, const DbChar* path,
                     SyncedFileRecord& file) noexcept;

/// Fills the empty list with all files, or with those of one folder when `folder` is not empty.
ResultCode GetSyncedFiles(const DbChar* imei, const MediaTables& tables, const DbChar* folder,
                          SyncedFileList& list) noexcept;

ResultCode SetAddedFile(const DbChar* imei, const MediaTables& tables, const SyncedFileRecord& file) noexcept;
ResultCode SetDeletedFile(const DbChar* imei, const MediaTables& tables, const SyncedFileRecord& file) noexcept;
ResultCode SetUpdatedFile(const DbChar* imei, const MediaTables& tables, const SyncedFileRecord& file) noexcept;

}  // namespace media
}  // namespace kesta
