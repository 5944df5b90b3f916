#include "playlists/playlists.h"

#include "core/list.h"
#include "library/phone_lookup.h"
#include "media/folder_state.h"

namespace kesta::playlists {
namespace {

constexpr int32_t Number(PlaylistFlag flag)
{
    return static_cast<int32_t>(flag);
}

void ReadPlaylist(const Statement& row, PlaylistRecord& playlist)
{
    playlist.RowId = row.int64(0);
    playlist.Name = row.newText(1);
    playlist.Digest = row.newText(2);
    playlist.IdInPhone = row.newText(3);
    playlist.Type = row.int32(4);
    playlist.Flag = row.int32(5);
    playlist.Count = row.int32(6);
    playlist.Size = row.int64(7);
    playlist.TotalSize = row.int64(8);
    playlist.Sized = row.int32(9);  // selected in another order than the record has
    playlist.Selected = row.int32(10);
}

/// Removes a playlist that waits for its removal from the phone, if it never was there.
ResultCode DeleteUnlessOnPhone(Connection& db, Trail trail, int32_t phoneId, const DbChar* name)
{
    const int32_t before = db.totalChanges();
    const ResultCode deleted =
        trail.check(db.exec(WideSql("DELETE FROM %s WHERE [PhoneID] = %d AND [Path] = '%s' AND ([IdInPhone] ISNULL OR "
                                    "[IdInPhone] = '(null)');",
                                    kPlaylistTable, phoneId, Escaped{name})),
                    1);
    if (db.totalChanges() == before) return deleted;
    const ResultCode files = DeleteFilesOf(db, trail, phoneId, kPlaylistTable, name);
    return deleted == ResultCode::kSuccess ? files : deleted;
}

}  // namespace

ResultCode ClearAll(Connection& db, Trail trail, const DbChar* imei)
{
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return ResultCode::kFailure;
    return trail.check(db.exec(NarrowSql("UPDATE tPFolder SET [Flag] = %d WHERE [PhoneID] = %d AND [Flag] <> %d;",
                                         Number(PlaylistFlag::kUnconfirmed), phoneId, Number(PlaylistFlag::kDeleted))),
                       2);
}

Outcome GetPlaylists(Connection& db, Trail trail, const DbChar* imei, PlaylistList& list)
{
    // Deliberate: without an exit line.
    constexpr Outcome kNotPrepared = {static_cast<int32_t>(ResultCode::kFailure), false};
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return ToOutcome(ResultCode::kFailure);
    int32_t count = 0;
    {
        Statement counting = db.prepare(NarrowSql("SELECT COUNT(*) FROM tPFolder WHERE [PhoneID] = %d;", phoneId));
        if (!counting.prepared()) {
            trail.error(1);
            return kNotPrepared;
        }
        if (counting.step()) count = counting.int32(0);
    }
    AllocateList(list, count);
    Statement rows = db.prepare(
        NarrowSql("SELECT ROWID, [Path], [Digest], [IdInPhone], [Type], [Flag], [Count], [Size], [TotalSize], [Sized], "
                  "[Selected] FROM tPFolder WHERE [PhoneID] = %d;",
                  phoneId));
    if (!rows.prepared()) {
        trail.error(1);
        return kNotPrepared;
    }
    return ToOutcome(FillList(list, count, rows, ReadPlaylist));
}

ResultCode SetAddedPlaylist(Connection& db, Trail trail, const DbChar* imei, const PlaylistRecord& playlist)
{
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return ResultCode::kFailure;
    return trail.check(
        db.exec(WideSql("UPDATE tPFolder SET [Flag] = %d, [IdInPhone] = '%s' WHERE [PhoneID] = %d AND [Path] = '%s';",
                        Number(PlaylistFlag::kCurrent), Escaped{playlist.IdInPhone}, phoneId, Escaped{playlist.Name})),
        2);
}

ResultCode DeleteList(Connection& db, Trail trail, const DbChar* imei, const DbChar* name)
{
    const int32_t phoneId = GetPhoneIdByImei(db, imei);
    if (phoneId == kNoPhone) return ResultCode::kFailure;
    switch (static_cast<PlaylistFlag>(GetPathFlag(db, phoneId, kPlaylistTable, name))) {
        case PlaylistFlag::kNew:
        case PlaylistFlag::kDeleted:
            return DeleteFolderAndFiles(db, trail, phoneId, kPlaylistTable, name);
        case PlaylistFlag::kCurrent:
        case PlaylistFlag::kAlsoCurrent:
            return DB_INTNOLOCK_SetFolderState(db, imei, kPlaylistTable, name, Name{"[Flag]"},
                                               Number(PlaylistFlag::kUnconfirmed));
        case PlaylistFlag::kUnconfirmed:
            return DeleteUnlessOnPhone(db, trail, phoneId, name);
        default:
            return ResultCode::kFailure;
    }
}

}  // namespace kesta::playlists
