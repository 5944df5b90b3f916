// DB_BOOKMARK_*: the web bookmarks synced to a phone.
#include "bookmarks/bookmarks.h"
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
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [&] { TraceEnter(kSelf.name, imei); }, [&](Routine self) { return bookmarks::ClearAll(self, imei); });
}

extern "C" int32_t DB_BOOKMARK_IsSyncedMark(const DbChar* imei, const DbChar* url)
{
    constexpr int32_t kNo = 0;
    static constexpr Export kSelf = {__func__, kNo};
    return RunExport(
        kSelf, [&] { DbTrace(kEnterUpper, Name{kSelf.name}, Plain{imei}, Plain{url}); },
        [&](Routine self) { return bookmarks::IsSyncedMark(self, imei, url) ? 1 : kNo; });
}

extern "C" int32_t DB_BOOKMARK_GetSyncedMarks(const DbChar* imei, BookmarkList* list)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [&] { TraceEnter(kSelf.name, imei); }, [&] { EmptyList(Required(list)); },
        [&](Routine self) { return bookmarks::GetSyncedMarks(self, imei, *list); });
}

extern "C" int32_t DB_BOOKMARK_GetSyncedMark(const DbChar* imei, const DbChar* url, BookmarkRecord* bookmark)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [&] { DbTrace(kEnterLower, Name{kSelf.name}, Plain{imei}, Plain{url}); },
        // Deliberate: the numbers keep what the caller gave.
        [&] { Element<BookmarkRecord>::destroy(Required(bookmark)); },
        [&](Routine self) { return bookmarks::GetSyncedMark(self, imei, url, *bookmark); });
}

extern "C" int32_t DB_BOOKMARK_SetAddedMark(const DbChar* imei, const BookmarkRecord* bookmark)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [&] { DbTrace(kEnterUpper, Name{kSelf.name}, Plain{imei}, Plain{Required(bookmark).Path}); },
        [&](Routine self) { return bookmarks::SetAddedMark(self, imei, *bookmark); });
}

extern "C" int32_t DB_BOOKMARK_SetDeletedMark(const DbChar* imei, const DbChar* url)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [&] { DbTrace(kEnterLower, Name{kSelf.name}, Plain{imei}, Plain{url}); },
        [&](Routine self) { return bookmarks::SetDeletedMark(self, imei, url); });
}

extern "C" int32_t DB_BOOKMARK_SetUpdatedMark(const DbChar* imei, const BookmarkRecord* bookmark)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [&] { DbTrace(kEnterLower, Name{kSelf.name}, Plain{imei}, Plain{Required(bookmark).Path}); },
        [&](Routine self) { return bookmarks::SetUpdatedMark(self, imei, *bookmark); });
}
