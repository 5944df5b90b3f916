// The folders of the PIM store. Callers name them by their PimID; row numbers stay inside.
// The routines run under the lock of the exports that call them; look-ups report failures under their own name.
#pragma once

#include "core/caller_memory.h"
#include "core/routine.h"
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

namespace pim {

// Look-ups, each under a name of its own in the trace.

int32_t GetFolderID(Connection& db, const DbChar* pimId);
int32_t GetFolderIDByPath(Connection& db, const DbChar* path);

/// Appends the folders of one type below a folder, or those of the root level, as far as the area has room.
ResultCode GetFolderIDs(Connection& db, IdArea& ids, int32_t parentId, int32_t type);

/// Appends what is below each folder of the area, breadth first, until nothing is left or the area is full.
void AppendDescendants(Connection& db, IdArea& ids, int32_t type);

/// Fills an empty record.
ResultCode GetFolder(Connection& db, PimFolderRecord& folder, int32_t folderId);

// The bodies of the exports.

ResultCode GetFolders(Routine self, PimFolderList& list, const DbChar* parentPimId, int32_t type, bool recursive);
ResultCode AddFolder(Routine self, const PimFolderRecord& folder, const DbChar* parentPimId);
ResultCode GetFolder(Routine self, PimFolderRecord& folder, const DbChar* pimId);
ResultCode UpdateFolder(Routine self, const PimFolderRecord& folder);
ResultCode DeleteFolder(Routine self, const DbChar* pimId);

}  // namespace pim
}  // namespace kesta
