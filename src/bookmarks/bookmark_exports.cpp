// DB_BOOKMARK_*: the web bookmarks synced to a phone.
#include "bookmarks/marks.h"
#include "core/call_frame.h"
#include "core/list.h"
#include "kesta_db/kesta_db.h"

using namespace kesta;

namespace {

// Deliberate: some of the exports say "URL" and some say "Url".
constexpr Format<Name, Plain, Plain> kEnterUpper = "Enter %s(IMEI: %s, URL: %s).\n";
constexpr Format<Name, Plain, Plain> kEnterLower = "Enter %s(IMEI: %s, Url: %s).\n";

}  // namespace

extern "C" int32_t DB_BOOKMARK_ClearAll(const DbChar* imei)
{
    static constexpr Export kSelf = {"DB_BOOKMARK_ClearAll"};
    return RunExport(
        kSelf, [&] { TraceEnter(kSelf.name, imei); },
        [&](Connection& db) { return bookmarks::ClearAll(db, Trail(kSelf.name), imei); });
}

extern "C" int32_t DB_BOOKMARK_IsSyncedMark(const DbChar* imei, const DbChar* url)
{
    constexpr int32_t kNo = 0;
    static constexpr Export kSelf = {"DB_BOOKMARK_IsSyncedMark", kNo};
    return RunExport(
        kSelf, [&] { DbTrace(kEnterUpper, Name{kSelf.name}, Plain{imei}, Plain{url}); },
        [&](Connection& db) { return bookmarks::IsSyncedMark(db, Trail(kSelf.name), imei, url) ? 1 : kNo; });
}

extern "C" int32_t DB_BOOKMARK_GetSyncedMarks(const DbChar* imei, BookmarkList* list)
{
    static constexpr Export kSelf = {"DB_BOOKMARK_GetSyncedMarks"};
    return RunExport(
        kSelf, [&] { TraceEnter(kSelf.name, imei); }, [&] { EmptyList(Required(list)); },
        [&](Connection& db) { return bookmarks::GetSyncedMarks(db, Trail(kSelf.name), imei, *list); });
}

extern "C" int32_t DB_BOOKMARK_GetSyncedMark(const DbChar* imei, const DbChar* url, BookmarkRecord* mark)
{
    static constexpr Export kSelf = {"DB_BOOKMARK_GetSyncedMark"};
    return RunExport(
        kSelf, [&] { DbTrace(kEnterLower, Name{kSelf.name}, Plain{imei}, Plain{url}); },
        // Deliberate: the numbers keep what the caller gave.
        [&] { Element<BookmarkRecord>::destroy(Required(mark)); },
        [&](Connection& db) { return bookmarks::GetSyncedMark(db, Trail(kSelf.name), imei, url, *mark); });
}

extern "C" int32_t DB_BOOKMARK_SetAddedMark(const DbChar* imei, const BookmarkRecord* mark)
{
    static constexpr Export kSelf = {"DB_BOOKMARK_SetAddedMark"};
    return RunExport(
        kSelf, [&] { DbTrace(kEnterUpper, Name{kSelf.name}, Plain{imei}, Plain{Required(mark).Path}); },
        [&](Connection& db) { return bookmarks::SetAddedMark(db, Trail(kSelf.name), imei, *mark); });
}

extern "C" int32_t DB_BOOKMARK_SetDeletedMark(const DbChar* imei, const DbChar* url)
{
    static constexpr Export kSelf = {"DB_BOOKMARK_SetDeletedMark"};
    return RunExport(
        kSelf, [&] { DbTrace(kEnterLower, Name{kSelf.name}, Plain{imei}, Plain{url}); },
        [&](Connection& db) { return bookmarks::SetDeletedMark(db, Trail(kSelf.name), imei, url); });
}

extern "C" int32_t DB_BOOKMARK_SetUpdatedMark(const DbChar* imei, const BookmarkRecord* mark)
{
    static constexpr Export kSelf = {"DB_BOOKMARK_SetUpdatedMark"};
    return RunExport(
        kSelf, [&] { DbTrace(kEnterLower, Name{kSelf.name}, Plain{imei}, Plain{Required(mark).Path}); },
        [&](Connection& db) { return bookmarks::SetUpdatedMark(db, Trail(kSelf.name), imei, *mark); });
}
