// DB_PLAYERMUSIC_*: the player's playlists.
#include "core/list.h"
#include "kesta_db/kesta_db.h"
#include "media/folder_state.h"
#include "playlists/playlists.h"

using namespace kesta;

extern "C" int32_t DB_PLAYERMUSIC_AddPlaylist(const DbChar* imei, const PlaylistRecord* playlist)
{
    static constexpr Export kSelf = {"DB_PLAYERMUSIC_AddPlaylist"};
    return RunExport(
        kSelf,
        [&] {
            const PlaylistRecord& list = Required(playlist);
            DbTrace("Enter %s(IMEI: %s, Name: %s, Type: %d).\n", Name{kSelf.name}, Plain{imei}, Plain{list.Name},
                    list.Type);
        },
        [&](Connection& db) { return playlists::AddPlaylist(db, Trail(kSelf.name), imei, *playlist); });
}

extern "C" int32_t DB_PLAYERMUSIC_ClearAll(const DbChar* imei)
{
    // Deliberate: no exit line.
    static constexpr Export kSelf = {"DB_PLAYERMUSIC_ClearAll", static_cast<int32_t>(ResultCode::kFailure), nullptr};
    return RunExport(
        kSelf, [&] { TraceEnter(kSelf.name, imei); },
        [&](Connection& db) { return playlists::ClearAll(db, Trail(kSelf.name), imei); });
}

extern "C" int32_t DB_PLAYERMUSIC_GetPlaylists(const DbChar* imei, PlaylistList* list)
{
    static constexpr Export kSelf = {"DB_PLAYERMUSIC_GetPlaylists"};
    return RunExport(
        kSelf, [&] { TraceEnter(kSelf.name, imei); }, [&] { EmptyList(Required(list)); },
        [&](Connection& db) { return playlists::GetPlaylists(db, Trail(kSelf.name), imei, *list); });
}

extern "C" int32_t DB_PLAYERMUSIC_IsListSelected(const DbChar* imei, const DbChar* name)
{
    static constexpr auto kName = "DB_PLAYERMUSIC_IsListSelected";
    return RunThinExport(
        kName, [&] { DbTrace("Enter %s(IMEI: %s, Name: %s).\n", Name{kName}, Plain{imei}, Plain{name}); },
        [&] { return DB_INTERNAL_IsFolderSelected(imei, kPlaylistView, name); });
}

extern "C" int32_t DB_PLAYERMUSIC_SetListSelected(const DbChar* imei, const DbChar* name, int32_t selected)
{
    static constexpr auto kName = "DB_PLAYERMUSIC_SetListSelected";
    return RunThinExport(
        kName,
        [&] {
            DbTrace("Enter %s(IMEI: %s, Name: %s, Selected: %d).\n", Name{kName}, Plain{imei}, Plain{name}, selected);
        },
        [&] { return DB_INTERNAL_SetFolderSelected(imei, kPlaylistTable, name, selected); });
}

extern "C" int32_t DB_PLAYERMUSIC_SetAddedPlaylist(const DbChar* imei, const PlaylistRecord* playlist)
{
    static constexpr Export kSelf = {"DB_PLAYERMUSIC_SetAddedPlaylist"};
    return RunExport(
        kSelf,
        [&] {
            const PlaylistRecord& list = Required(playlist);
            DbTrace("Enter %s(IMEI: %s, Name: %s, IdInPhone: %s).\n", Name{kSelf.name}, Plain{imei}, Plain{list.Name},
                    Plain{list.IdInPhone});
        },
        [&](Connection& db) { return playlists::SetAddedPlaylist(db, Trail(kSelf.name), imei, *playlist); });
}

extern "C" int32_t DB_PLAYERMUSIC_SetDeletedPlaylist(const DbChar* imei, const PlaylistRecord* playlist)
{
    static constexpr auto kName = "DB_PLAYERMUSIC_SetDeletedPlaylist";
    return RunThinExport(
        kName,
        [&] { DbTrace("Enter %s(IMEI: %s, Name: %s).\n", Name{kName}, Plain{imei}, Plain{Required(playlist).Name}); },
        [&] { return DB_INTERNAL_SetDeletedFolder(imei, kPlaylistTable, playlist->Name, Deletion::kByFlag); });
}

extern "C" int32_t DB_PLAYERMUSIC_SetUpdatedPlaylist(const DbChar* imei, const PlaylistRecord* playlist)
{
    static constexpr auto kName = "DB_PLAYERMUSIC_SetUpdatedPlaylist";
    return RunThinExport(
        kName,
        [&] { DbTrace("Enter %s(IMEI: %s, Name: %s).\n", Name{kName}, Plain{imei}, Plain{Required(playlist).Name}); },
        [&] {
            return DB_INTERNAL_SetFolderState(imei, kPlaylistTable, playlist->Name, Name{"[Flag]"},
                                              static_cast<int32_t>(PlaylistFlag::kCurrent));
        });
}

extern "C" int32_t DB_PLAYERMUSIC_DeleteList(const DbChar* imei, const DbChar* name)
{
    static constexpr Export kSelf = {"DB_PLAYERMUSIC_DeleteList"};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(szName: %s).\n", Name{kSelf.name}, Plain{name}); },
        [&](Connection& db) { return playlists::DeleteList(db, Trail(kSelf.name), imei, name); });
}
