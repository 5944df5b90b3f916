// The log of contact and calendar syncs, per phone and kind of data: a profile text, and pairs of identifiers.
// The routines run under the lock of the exports that call them.
#pragma once

#include "core/caller_memory.h"
#include "core/routine.h"
#include "kesta_db/kesta_db.h"

namespace kesta {

template <>
struct Element<PimLogItem> {
    static void construct(PimLogItem& item, const DateValue& now) { item = {nullptr, nullptr, now, now}; }
    static void destroy(PimLogItem& item)
    {
        FreeText(item.Guid);
        FreeText(item.Luid);
    }
};

namespace pimlog {

/// Copies the profile into the caller's buffer, however long it is; without a log the buffer stays as it is.
ResultCode GetPimProfile(Routine self, const DbChar* imei, DbChar* buffer, int32_t type);
ResultCode SetPimProfile(Routine self, const DbChar* imei, const DbChar* profile, int32_t type);
/// Removes the items and the profile.
ResultCode ClearAll(Routine self, const DbChar* imei, int32_t type);
/// Replaces what the log holds, unless no items are recorded.
ResultCode ReadLog(Routine self, const DbChar* imei, PimLog& log);
/// Appends the log's items, for an unknown phone under number kNoPhone.
ResultCode SaveLog(Routine self, const DbChar* imei, const PimLog& log);

}  // namespace pimlog
}  // namespace kesta
