// The playlists of the PC's music player, per phone. The routines run under the lock of the exports that call them.
#pragma once

#include "core/call_frame.h"
#include "core/caller_memory.h"
#include "kesta_db/kesta_db.h"
#include "media/media_tables.h"

namespace kesta {

inline constexpr MediaTables kPlaylistTables = {{"tPFolder"}, {"vPFolder"}, {"tPFile"}, {"vPFile"}};

/// The sync state of a playlist.
enum class PlaylistFlag : int32_t {
    kCurrent = 0,      // on the phone as it is on the PC
    kNew = 1,          // to be added to the phone
    kAlsoCurrent = 2,  // taken like kCurrent; never written here
    kUnconfirmed = 3,  // not seen again on the PC, or to be removed from the phone
    kDeleted = 4,      // removed from the phone, the row is kept
};

template <>
struct Element<PlaylistRecord> {
    static void construct(PlaylistRecord& playlist, const DateValue& /*now*/)
    {
        playlist = {-1, nullptr, nullptr, nullptr, 0, 0, 0, 0, 0, 0, 0};
    }
    static void destroy(PlaylistRecord& playlist)
    {
        FreeText(playlist.Name);
        FreeText(playlist.Digest);
        FreeText(playlist.IdInPhone);
    }
};

namespace playlists {

/// Confirms a playlist or inserts it. The result is success for a known phone, whatever became of the statements; after
/// an exception the code of the last one.
ResultCode AddPlaylist(Routine self, const DbChar* imei, const PlaylistRecord& playlist);

/// Marks every playlist of a phone as unconfirmed, except those deleted on the phone.
ResultCode ClearAll(Routine self, const DbChar* imei);

/// Fills the empty list; without playlists it gets an array of no elements.
Outcome GetPlaylists(Routine self, const DbChar* imei, PlaylistList& list);

/// Notes that the phone has taken a playlist and named it.
ResultCode SetAddedPlaylist(Routine self, const DbChar* imei, const PlaylistRecord& playlist);

/// Reacts to a playlist deleted on the PC.
ResultCode DeleteList(Routine self, const DbChar* imei, const DbChar* name);

/// Replaces the file names of a playlist.
ResultCode SetListFilesname(Routine self, const DbChar* imei, const DbChar* list, const FileNameArray& names);

/// Appends the file names of a playlist to what the array holds.
ResultCode GetListFilesname(Routine self, const DbChar* imei, const DbChar* list, FileNameArray& names);

}  // namespace playlists
}  // namespace kesta
