// The items of the PIM store, contents opaque, and the profile of the store as a whole.
// The routines run under the lock of the exports that call them; look-ups report failures under their own name.
#pragma once

#include "core/caller_memory.h"
#include "core/connection.h"
#include "core/results.h"
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

/// Appends the items of a folder, as far as the area has room.
ResultCode DB_INTERNAL_PIM_GetItemIDs(Connection& db, IdArea& ids, int32_t folderId);
int32_t DB_INTERNAL_PIM_GetItemID(Connection& db, const DbChar* pimId);
/// Success also when there is no such item: the record then stays as it is.
ResultCode DB_INTERNAL_PIM_GetItem(Connection& db, PimItemRecord& item, int32_t itemId);

namespace pim {

ResultCode GetItems(Connection& db, PimItemList& list, const DbChar* folderPimId, int32_t type, bool recursive);
ResultCode AddItem(Connection& db, Trail trail, const PimItemRecord& item, const DbChar* folderPath);
ResultCode UpdateItem(Connection& db, Trail trail, const PimItemRecord& item);
ResultCode DeleteItem(Connection& db, Trail trail, const DbChar* pimId);
ResultCode GetProfile(Connection& db, Trail trail, DbChar*& profile);
ResultCode SetProfile(Connection& db, Trail trail, const DbChar* profile);
ResultCode ClearAll(Connection& db, Trail trail, int32_t type, bool keepFolders);

}  // namespace pim
}  // namespace kesta
