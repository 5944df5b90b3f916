#include "bookmarks/marks.h"

#include "core/list.h"
#include "library/phone_lookup.h"

namespace kesta::bookmarks {
namespace {

/// Deliberate: Id and Type are not read for a list.
void ReadMark(const Statement& row, BookmarkRecord& mark)
{
    mark.Title = row.newText(0);
    mark.Path = row.newText(1);
    mark.PhoneMID = row.newText(2);
    mark.Flag = row.int32(3);
}

}  // namespace

ResultCode ClearAll(Connection& db, Trail trail, const DbChar* imei)
{
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return ResultCode::kFailure;
    return trail.check(db.exec(NarrowSql("DELETE FROM tBFile WHERE [PhoneID] = %d;", phoneId)), 1);
}

bool IsSyncedMark(Connection& db, Trail trail, const DbChar* imei, const DbChar* url)
{
    const int32_t type = GetBookMarkTypeByImei(db, imei);
    Statement rows = db.prepare(WideSql("SELECT * FROM vBFile WHERE [IMEI] = '%s' AND [Path] = '%s' AND [Type] = %d;",
                                        Plain{imei}, Escaped{url}, type));
    if (!rows.prepared()) trail.error(1);
    return rows.prepared() && rows.step();
}

ResultCode GetSyncedMarks(Connection& db, Trail trail, const DbChar* imei, BookmarkList& list)
{
    const int32_t type = GetBookMarkTypeByImei(db, imei);
    return ReadList(
        db, trail, list,
        [&] { return NarrowSql("SELECT COUNT(*) FROM vBFile WHERE [IMEI] = '%s' AND [Type] = %d;", Ansi{imei}, type); },
        [&] {
            return NarrowSql(
                "SELECT [Title], [Path], [PhoneMID], [Flag] FROM vBFile WHERE [IMEI] = '%s' AND [Type] = %d;",
                Ansi{imei}, type);
        },
        ReadMark);
}

ResultCode GetSyncedMark(Connection& db, Trail trail, const DbChar* imei, const DbChar* url, BookmarkRecord& mark)
{
    const int32_t type = GetBookMarkTypeByImei(db, imei);
    Statement rows = db.prepare(NarrowSql(
        "SELECT [Title], [PhoneMID], [Flag], [Id] FROM vBFile WHERE [IMEI] = '%s' AND [Path] = '%s' AND [Type] = %d;",
        Ansi{imei}, EscapedAnsi{url}, type));
    if (!rows.prepared()) {
        trail.error(3);  // Deliberate: position 3 for the first step
        return ResultCode::kFailure;
    }
    if (!rows.step()) return ResultCode::kFailure;
    mark.Title = rows.newText(0);
    mark.PhoneMID = rows.newText(1);
    mark.Flag = rows.int32(2);
    mark.Id = rows.int32(3);
    mark.Path = DuplicateText(url);
    mark.Type = type;
    return ResultCode::kSuccess;
}

ResultCode SetAddedMark(Connection& db, Trail trail, const DbChar* imei, const BookmarkRecord& mark)
{
    const int32_t type = GetBookMarkTypeByImei(db, imei);
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return ResultCode::kFailure;
    const SqliteCode inserted = db.exec(
        WideSql("INSERT INTO tBFile ([PhoneID], [Title], [Path], [PhoneMID], [Id], [Flag], [Type]) "
                "VALUES (%d, '%s', '%s', '%s', %d, %d, %d);",
                phoneId, Escaped{mark.Title}, Escaped{mark.Path}, Escaped{mark.PhoneMID}, mark.Id, mark.Flag, type));
    if (inserted != SqliteCode::kOk) trail.error(3);
    return PassThrough(inserted);
}

ResultCode SetDeletedMark(Connection& db, Trail trail, const DbChar* imei, const DbChar* url)
{
    const int32_t type = GetBookMarkTypeByImei(db, imei);
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return ResultCode::kFailure;
    return trail.check(db.exec(WideSql("DELETE FROM tBFile WHERE [PhoneID] = %d AND [Path] = '%s' AND [Type] = %d;",
                                       phoneId, Escaped{url}, type)),
                       1);
}

ResultCode SetUpdatedMark(Connection& db, Trail trail, const DbChar* imei, const BookmarkRecord& mark)
{
    const int32_t type = GetBookMarkTypeByImei(db, imei);
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return ResultCode::kFailure;
    return trail.check(
        db.exec(WideSql("UPDATE tBFile SET [Title] = '%s', [PhoneMID] = '%s', [Flag] = %d "
                        "WHERE [PhoneID] = %d AND [Path] = '%s' AND [Type] = %d;",
                        Escaped{mark.Title}, Escaped{mark.PhoneMID}, mark.Flag, phoneId, Escaped{mark.Path}, type)),
        1);
}

}  // namespace kesta::bookmarks
