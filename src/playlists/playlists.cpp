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
ResultCode DeleteUnlessOnPhone(Routine self, int32_t phoneId, const DbChar* name)
{
    const int32_t before = self.db.totalChanges();
    const ResultCode deleted =
        self.run(1, WideSql("DELETE FROM %s WHERE [PhoneID] = %d AND [Path] = '%s' AND ([IdInPhone] ISNULL OR "
                            "[IdInPhone] = '(null)');",
                            kPlaylistTables.folders, phoneId, Escaped{name}));
    if (self.db.totalChanges() == before) {
        return deleted;
    }
    const ResultCode files = media::DeleteFilesOf(self, phoneId, kPlaylistTables, name);
    return deleted == ResultCode::kSuccess ? files : deleted;
}

}  // namespace

ResultCode ClearAll(Routine self, const DbChar* imei)
{
    return ForPhone(self, imei, [&](int32_t phoneId) {
        return self.run(2, NarrowSql("UPDATE tPFolder SET [Flag] = %d WHERE [PhoneID] = %d AND [Flag] <> %d;",
                                     Number(PlaylistFlag::kUnconfirmed), phoneId, Number(PlaylistFlag::kDeleted)));
    });
}

Outcome GetPlaylists(Routine self, const DbChar* imei, PlaylistList& list)
{
    // Deliberate: without an exit line.
    constexpr Outcome kNotPrepared(ResultCode::kFailure, false);
    return ForPhone(self, imei, [&](int32_t phoneId) -> Outcome {
        const std::optional<int32_t> count =
            self.count(1, NarrowSql("SELECT COUNT(*) FROM tPFolder WHERE [PhoneID] = %d;", phoneId));
        if (!count.has_value()) {
            return kNotPrepared;
        }
        AllocateList(list, *count);
        Statement rows = self.prepare(
            1, NarrowSql("SELECT ROWID, [Path], [Digest], [IdInPhone], [Type], [Flag], [Count], [Size], [TotalSize], "
                         "[Sized], [Selected] FROM tPFolder WHERE [PhoneID] = %d;",
                         phoneId));
        if (!rows.prepared()) {
            return kNotPrepared;
        }
        return FillList(list, *count, rows, ReadPlaylist);
    });
}

ResultCode SetAddedPlaylist(Routine self, const DbChar* imei, const PlaylistRecord& playlist)
{
    return ForPhone(self, imei, [&](int32_t phoneId) {
        return self.run(
            2, WideSql("UPDATE tPFolder SET [Flag] = %d, [IdInPhone] = '%s' WHERE [PhoneID] = %d AND [Path] = '%s';",
                       Number(PlaylistFlag::kCurrent), Escaped{playlist.IdInPhone}, phoneId, Escaped{playlist.Name}));
    });
}

ResultCode DeleteList(Routine self, const DbChar* imei, const DbChar* name)
{
    return ForPhone(self, imei, [&](int32_t phoneId) {
        switch (static_cast<PlaylistFlag>(GetPathFlag(self.db, phoneId, kPlaylistTables.folders, name))) {
            case PlaylistFlag::kNew:
            case PlaylistFlag::kDeleted:
                return media::DeleteFolderAndFiles(self, phoneId, kPlaylistTables, name);
            case PlaylistFlag::kCurrent:
            case PlaylistFlag::kAlsoCurrent:
                return media::SetFolderState(self.db, imei, kPlaylistTables, name, Name{"[Flag]"},
                                             Number(PlaylistFlag::kUnconfirmed));
            case PlaylistFlag::kUnconfirmed:
                return DeleteUnlessOnPhone(self, phoneId, name);
            default:
                return ResultCode::kFailure;
        }
    });
}

}  // namespace kesta::playlists
