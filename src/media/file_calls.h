// The bodies of the thin exports on synced files, which categories and playlists have alike.
#pragma once

#include "core/call_frame.h"
#include "core/results.h"
#include "kesta_db/kesta_db.h"
#include "media/synced_files.h"

namespace kesta {

/// ..._IsSyncedFile
inline int32_t IsSyncedFile(const char* name, const MediaTables& tables, const DbChar* imei, const DbChar* path,
                            SyncedFileRecord* file)
{
    return RunThinExport(
        name,
        [&] {
            TraceEnter(name, imei, path);
            (void)Required(file);
        },
        [&] { return media::IsSyncedFile(imei, tables, path, *file); });
}

using FileRoutine = ResultCode(const DbChar* imei, const MediaTables& tables, const SyncedFileRecord& file) noexcept;

/// ..._SetAddedFile, ..._SetDeletedFile and ..._SetUpdatedFile
inline int32_t RecordFile(const char* name, FileRoutine& routine, const MediaTables& tables, const DbChar* imei,
                          const SyncedFileRecord* file)
{
    return RunThinExport(
        name, [&] { TraceEnter(name, imei, Required(file).Path); }, [&] { return routine(imei, tables, *file); });
}

}  // namespace kesta
