// The folders of the PIM store. Callers name them by their PimID; row numbers stay inside.
// The routines run under the lock of the exports that call them; look-ups report failures under their own name.
#pragma once

#include "core/caller_memory.h"
#include "core/connection.h"
#include "core/results.h"
#include "kesta_db/kesta_db.h"
#include "pim/id_area.h"

namespace kesta {

inline constexpr int32_t kRootLevel = -2;  // what an absent folder name is looked up as, and what a root's parent is
inline constexpr int32_t kNoFolder = -1;   // not found, or it could not be looked up

template <>
struct Element<PimFolderRecord> {
    static void construct(PimFolderRecord& folder, const DateValue& /*now*/)
    {
        folder = {nullptr, nullptr, nullptr, 0};
    }
    static void destroy(PimFolderRecord& folder)
    {
        FreeText(folder.PimID);
        FreeText(folder.ParentPimID);
        FreeText(folder.Path);
    }
};

int32_t DB_INTERNAL_PIM_GetFolderID(Connection& db, const DbChar* pimId);
int32_t DB_INTERNAL_PIM_GetFolderIDByPath(Connection& db, const DbChar* path);

/// Appends the folders of one type below a folder, or those of the root level, as far as the area has room.
ResultCode DB_INTERNAL_PIM_GetFolderIDs(Connection& db, IdArea& ids, int32_t parentId, int32_t type);

/// Appends what is below each folder of the area, breadth first, until nothing is left or the area is full.
void AppendDescendants(Connection& db, IdArea& ids, int32_t type);

/// Fills an empty record.
ResultCode DB_INTERNAL_PIM_GetFolder(Connection& db, PimFolderRecord& folder, int32_t folderId);

namespace pim {

ResultCode GetFolders(Connection& db, PimFolderList& list, const DbChar* parentPimId, int32_t type, bool recursive);
ResultCode AddFolder(Connection& db, Trail trail, const PimFolderRecord& folder, const DbChar* parentPimId);
ResultCode GetFolder(Connection& db, PimFolderRecord& folder, const DbChar* pimId);
ResultCode UpdateFolder(Connection& db, Trail trail, const PimFolderRecord& folder);
ResultCode DeleteFolder(Connection& db, Trail trail, const DbChar* pimId);

}  // namespace pim
}  // namespace kesta
