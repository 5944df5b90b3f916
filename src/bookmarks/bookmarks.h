// The web bookmarks synced to a phone. Only those of the phone's present bookmark type are seen and written.
// The routines run under the lock of the exports that call them.
#pragma once

#include "core/caller_memory.h"
#include "core/routine.h"
#include "kesta_db/kesta_db.h"

namespace kesta {

template <>
struct Element<BookmarkRecord> {
    static void construct(BookmarkRecord& bookmark, const DateValue& /*now*/) { bookmark = {}; }
    static void destroy(BookmarkRecord& bookmark)
    {
        FreeText(bookmark.Title);
        FreeText(bookmark.Path);
        FreeText(bookmark.PhoneMID);
    }
};

namespace bookmarks {

/// Removes the bookmarks of every type.
ResultCode ClearAll(Routine self, const DbChar* imei);
bool IsSyncedMark(Routine self, const DbChar* imei, const DbChar* url);
/// Fills the empty list.
ResultCode GetSyncedMarks(Routine self, const DbChar* imei, BookmarkList& list);
/// Fills the record, whose texts are empty.
ResultCode GetSyncedMark(Routine self, const DbChar* imei, const DbChar* url, BookmarkRecord& bookmark);
/// The result of a failed insert is SQLite's own code.
ResultCode SetAddedMark(Routine self, const DbChar* imei, const BookmarkRecord& bookmark);
ResultCode SetDeletedMark(Routine self, const DbChar* imei, const DbChar* url);
ResultCode SetUpdatedMark(Routine self, const DbChar* imei, const BookmarkRecord& bookmark);

}  // namespace bookmarks
}  // namespace kesta
