// The items of the PIM store, contents opaque, and the profile of the store as a whole.
// The routines run under the lock of the exports that call them; look-ups report failures under their own name.
#pragma once

#include "core/caller_memory.h"
#include "core/routine.h"
#include "kesta_db/kesta_db.h"
#include "pim/id_area.h"

namespace kesta {

inline constexpr int32_t kNoItem = -1;

template <>
struct Element<PimItemRecord> {
    static void construct(PimItemRecord& item, const DateValue& /*now*/) { item = {nullptr, 0, 0, nullptr}; }
    static void destroy(PimItemRecord& item)
    {
        FreeText(item.PimID);
        FreeBytes(item.Data);
    }
};

namespace pim {

// Look-ups, each under a name of its own in the trace.

/// Appends the items of a folder, as far as the area has room.
ResultCode GetItemIDs(Connection& db, IdArea& ids, int32_t folderId);
int32_t GetItemID(Connection& db, const DbChar* pimId);
/// Success also when there is no such item: the record then stays as it is.
ResultCode GetItem(Connection& db, PimItemRecord& item, int32_t itemId);

// The bodies of the exports.

ResultCode GetItems(Routine self, PimItemList& list, const DbChar* folderPimId, int32_t type, bool recursive);
ResultCode AddItem(Routine self, const PimItemRecord& item, const DbChar* folderPath);
ResultCode UpdateItem(Routine self, const PimItemRecord& item);
ResultCode DeleteItem(Routine self, const DbChar* pimId);
ResultCode GetProfile(Routine self, DbChar*& profile);
ResultCode SetProfile(Routine self, const DbChar* profile);
ResultCode ClearAll(Routine self, int32_t type, bool keepFolders);

}  // namespace pim
}  // namespace kesta
