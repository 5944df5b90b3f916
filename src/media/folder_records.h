// The folder engine, first half: folders are added and read. It works for every kind of media; each routine takes the
// lock itself and reports failures under its own name.
#pragma once

#include "core/caller_memory.h"
#include "core/results.h"
#include "kesta_db/kesta_db.h"
#include "media/media_tables.h"

namespace kesta {

template <>
struct Element<FolderRecord> {
    static void construct(FolderRecord& folder, const DateValue& now)
    {
        folder = {-1, nullptr, 0, 0, 0, 0, 0, 0, now, 0};
    }
    static void destroy(FolderRecord& folder) { FreeText(folder.Path); }
};

namespace media {

enum class FolderOrder { kTable, kAddTime };

/// Refreshes the folder's figures, and adds it when it is not known.
ResultCode AddFolder(const DbChar* imei, const MediaTables& tables, const FolderRecord& folder) noexcept;

/// Fills the list; one of a phone without folders stays as it is.
ResultCode GetFolders(const DbChar* imei, const MediaTables& tables, FolderList& list, FolderOrder order) noexcept;

ResultCode GetFolder(const DbChar* imei, const MediaTables& tables, const DbChar* path, FolderRecord& folder) noexcept;

}  // namespace media
}  // namespace kesta
