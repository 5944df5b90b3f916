#include "bookmarks/bookmarks.h"

#include "core/list.h"
#include "library/phone_lookup.h"

namespace kesta::bookmarks {
namespace {

/// Deliberate: Id and Type are not read for a list.
void ReadBookmark(const Statement& row, BookmarkRecord& bookmark)
{
    bookmark.Title = row.newText(0);
    bookmark.Path = row.newText(1);
    bookmark.PhoneMID = row.newText(2);
    bookmark.Flag = row.int32(3);
}

}  // namespace

ResultCode ClearAll(Routine self, const DbChar* imei)
{
    return ForPhone(self, imei, [&](int32_t phoneId) {
        return self.run(1, NarrowSql("DELETE FROM tBFile WHERE [PhoneID] = %d;", phoneId));
    });
}

bool IsSyncedMark(Routine self, const DbChar* imei, const DbChar* url)
{
    const int32_t type = GetBookMarkTypeByImei(self.db, imei);
    Statement rows =
        self.prepare(1, WideSql("SELECT * FROM vBFile WHERE [IMEI] = '%s' AND [Path] = '%s' AND [Type] = %d;",
                                Plain{imei}, Escaped{url}, type));
    return rows.prepared() && rows.step();
}

ResultCode GetSyncedMarks(Routine self, const DbChar* imei, BookmarkList& list)
{
    const int32_t type = GetBookMarkTypeByImei(self.db, imei);
    return ReadList(
        self, list, NarrowSql("SELECT COUNT(*) FROM vBFile WHERE [IMEI] = '%s' AND [Type] = %d;", Ansi{imei}, type),
        NarrowSql("SELECT [Title], [Path], [PhoneMID], [Flag] FROM vBFile WHERE [IMEI] = '%s' AND [Type] = %d;",
                  Ansi{imei}, type),
        ReadBookmark);
}

ResultCode GetSyncedMark(Routine self, const DbChar* imei, const DbChar* url, BookmarkRecord& bookmark)
{
    const int32_t type = GetBookMarkTypeByImei(self.db, imei);
    // Deliberate: position 3 for the first step.
    return self.first(3,
                      NarrowSql("SELECT [Title], [PhoneMID], [Flag], [Id] FROM vBFile "
                                "WHERE [IMEI] = '%s' AND [Path] = '%s' AND [Type] = %d;",
                                Ansi{imei}, EscapedAnsi{url}, type),
                      NoRowIsFailure, [&](const Statement& row) {
                          bookmark.Title = row.newText(0);
                          bookmark.PhoneMID = row.newText(1);
                          bookmark.Flag = row.int32(2);
                          bookmark.Id = row.int32(3);
                          bookmark.Path = DuplicateText(url);
                          bookmark.Type = type;
                      });
}

namespace {

/// What `body(phoneId, type)` comes to. The type is looked up first, for an unknown phone too.
template <class Body>
ResultCode ForPhoneAndType(Routine self, const DbChar* imei, Body&& body)
{
    const int32_t type = GetBookMarkTypeByImei(self.db, imei);
    return ForPhone(self, imei, [&](int32_t phoneId) { return body(phoneId, type); });
}

}  // namespace

ResultCode SetAddedMark(Routine self, const DbChar* imei, const BookmarkRecord& bookmark)
{
    return ForPhoneAndType(self, imei, [&](int32_t phoneId, int32_t type) {
        return PassThrough(
            self.exec(3, WideSql("INSERT INTO tBFile ([PhoneID], [Title], [Path], [PhoneMID], [Id], [Flag], [Type]) "
                                 "VALUES (%d, '%s', '%s', '%s', %d, %d, %d);",
                                 phoneId, Escaped{bookmark.Title}, Escaped{bookmark.Path}, Escaped{bookmark.PhoneMID},
                                 bookmark.Id, bookmark.Flag, type)));
    });
}

ResultCode SetDeletedMark(Routine self, const DbChar* imei, const DbChar* url)
{
    return ForPhoneAndType(self, imei, [&](int32_t phoneId, int32_t type) {
        return self.run(1, WideSql("DELETE FROM tBFile WHERE [PhoneID] = %d AND [Path] = '%s' AND [Type] = %d;",
                                   phoneId, Escaped{url}, type));
    });
}

ResultCode SetUpdatedMark(Routine self, const DbChar* imei, const BookmarkRecord& bookmark)
{
    return ForPhoneAndType(self, imei, [&](int32_t phoneId, int32_t type) {
        return self.run(1, WideSql("UPDATE tBFile SET [Title] = '%s', [PhoneMID] = '%s', [Flag] = %d "
                                   "WHERE [PhoneID] = %d AND [Path] = '%s' AND [Type] = %d;",
                                   Escaped{bookmark.Title}, Escaped{bookmark.PhoneMID}, bookmark.Flag, phoneId,
                                   Escaped{bookmark.Path}, type));
    });
}

}  // namespace kesta::bookmarks
