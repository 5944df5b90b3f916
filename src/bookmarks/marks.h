// The web bookmarks synced to a phone. Only those of the phone's present bookmark type are seen and written.
// The routines run under the lock of the exports that call them.
#pragma once

#include "core/caller_memory.h"
#include "core/connection.h"
#include "core/results.h"
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
ResultCode ClearAll(Connection& db, Trail trail, const DbChar* imei);
bool IsSyncedMark(Connection& db, Trail trail, const DbChar* imei, const DbChar* url);
/// Fills the empty list.
ResultCode GetSyncedMarks(Connection& db, Trail trail, const DbChar* imei, BookmarkList& list);
/// Fills the record, whose texts are empty.
ResultCode GetSyncedMark(Connection& db, Trail trail, const DbChar* imei, const DbChar* url, BookmarkRecord& mark);
/// The result of a failed insert is SQLite's own code.
ResultCode SetAddedMark(Connection& db, Trail trail, const DbChar* imei, const BookmarkRecord& mark);
ResultCode SetDeletedMark(Connection& db, Trail trail, const DbChar* imei, const DbChar* url);
ResultCode SetUpdatedMark(Connection& db, Trail trail, const DbChar* imei, const BookmarkRecord& mark);

}  // namespace bookmarks
}  // namespace kesta
