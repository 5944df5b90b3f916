// The folder engine, first half: folders are added and read. It works for every table of its shape; each routine takes
// the lock itself and reports failures under its own name.
#pragma once

#include "core/caller_memory.h"
#include "core/results.h"
#include "kesta_db/kesta_db.h"

namespace kesta {

template <>
struct Element<FolderRecord> {
    static void construct(FolderRecord& folder, const DateValue& now)
    {
        folder = {-1, nullptr, 0, 0, 0, 0, 0, 0, now, 0};
    }
    static void destroy(FolderRecord& folder) { FreeText(folder.Path); }
};

enum class FolderOrder { kTable, kAddTime };

/// Refreshes the folder's figures, and adds it when it is not known.
ResultCode DB_INTERNAL_AddFolder(const DbChar* imei, Name folderTable, const FolderRecord& folder) noexcept;

/// Fills the list; one of a phone without folders stays as it is.
ResultCode DB_INTERNAL_GetFolders(const DbChar* imei, Name folderTable, FolderList& list, FolderOrder order) noexcept;

ResultCode DB_INTERNAL_GetFolder(const DbChar* imei, Name folderTable, const DbChar* path,
                                 FolderRecord& folder) noexcept;

}  // namespace kesta
