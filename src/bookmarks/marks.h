// The web bookmarks synced to a phone. Only those of the phone's present bookmark type are seen and written.
// The routines run under the lock of the exports that call them.
#pragma once

#include "core/caller_memory.h"
#include "core/routine.h"
#include "kesta_db/kesta_db.h"

namespace kesta {

template <>
struct Element<BookmarkRecord> {
    static void construct(BookmarkRecord& mark, const DateValue& /*now*/) { mark = {}; }
    static void destroy(BookmarkRecord& mark)
    {
        FreeText(mark.Title);
        FreeText(mark.Path);
        FreeText(mark.PhoneMID);
    }
};

namespace bookmarks {

/// Removes the marks of every type.
ResultCode ClearAll(Routine self, const DbChar* imei);
bool IsSyncedMark(Routine self, const DbChar* imei, const DbChar* url);
/// Fills the empty list.
ResultCode GetSyncedMarks(Routine self, const DbChar* imei, BookmarkList& list);
/// Fills the record, whose texts are empty.
ResultCode GetSyncedMark(Routine self, const DbChar* imei, const DbChar* url, BookmarkRecord& mark);
/// The result of a failed insert is SQLite's own code.
ResultCode SetAddedMark(Routine self, const DbChar* imei, const BookmarkRecord& mark);
ResultCode SetDeletedMark(Routine self, const DbChar* imei, const DbChar* url);
ResultCode SetUpdatedMark(Routine self, const DbChar* imei, const BookmarkRecord& mark);

}  // namespace bookmarks
}  // namespace kesta
