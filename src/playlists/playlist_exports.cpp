// DB_PLAYERMUSIC_*: the player's playlists.
#include "core/list.h"
#include "kesta_db/kesta_db.h"
#include "media/folder_state.h"
#include "playlists/playlists.h"

using namespace kesta;

extern "C" int32_t DB_PLAYERMUSIC_AddPlaylist(const DbChar* imei, const PlaylistRecord* playlist)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf,
        [&] {
            const PlaylistRecord& list = Required(playlist);
            DbTrace("Enter %s(IMEI: %s, Name: %s, Type: %d).\n", Name{kSelf.name}, Plain{imei}, Plain{list.Name},
                    list.Type);
        },
        [&](Routine self) { return playlists::AddPlaylist(self, imei, *playlist); });
}

extern "C" int32_t DB_PLAYERMUSIC_ClearAll(const DbChar* imei)
{
    // Deliberate: no exit line.
    static constexpr Export kSelf = {__func__, static_cast<int32_t>(ResultCode::kFailure), nullptr};
    return RunExport(
        kSelf, [&] { TraceEnter(kSelf.name, imei); }, [&](Routine self) { return playlists::ClearAll(self, imei); });
}

extern "C" int32_t DB_PLAYERMUSIC_GetPlaylists(const DbChar* imei, PlaylistList* list)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [&] { TraceEnter(kSelf.name, imei); }, [&] { EmptyList(Required(list)); },
        [&](Routine self) { return playlists::GetPlaylists(self, imei, *list); });
}

extern "C" int32_t DB_PLAYERMUSIC_IsListSelected(const DbChar* imei, const DbChar* name)
{
    static constexpr auto kName = __func__;
    return RunThinExport(
        kName, [&] { DbTrace("Enter %s(IMEI: %s, Name: %s).\n", Name{kName}, Plain{imei}, Plain{name}); },
        [&] { return media::IsFolderSelected(imei, kPlaylistTables, name); });
}

extern "C" int32_t DB_PLAYERMUSIC_SetListSelected(const DbChar* imei, const DbChar* name, int32_t selected)
{
    static constexpr auto kName = __func__;
    return RunThinExport(
        kName,
        [&] {
            DbTrace("Enter %s(IMEI: %s, Name: %s, Selected: %d).\n", Name{kName}, Plain{imei}, Plain{name}, selected);
        },
        [&] { return media::SetFolderSelected(imei, kPlaylistTables, name, selected); });
}

extern "C" int32_t DB_PLAYERMUSIC_SetAddedPlaylist(const DbChar* imei, const PlaylistRecord* playlist)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf,
        [&] {
            const PlaylistRecord& list = Required(playlist);
            DbTrace("Enter %s(IMEI: %s, Name: %s, IdInPhone: %s).\n", Name{kSelf.name}, Plain{imei}, Plain{list.Name},
                    Plain{list.IdInPhone});
        },
        [&](Routine self) { return playlists::SetAddedPlaylist(self, imei, *playlist); });
}

extern "C" int32_t DB_PLAYERMUSIC_SetDeletedPlaylist(const DbChar* imei, const PlaylistRecord* playlist)
{
    static constexpr auto kName = __func__;
    return RunThinExport(
        kName,
        [&] { DbTrace("Enter %s(IMEI: %s, Name: %s).\n", Name{kName}, Plain{imei}, Plain{Required(playlist).Name}); },
        [&] { return media::SetDeletedFolder(imei, kPlaylistTables, playlist->Name, media::Deletion::kByFlag); });
}

extern "C" int32_t DB_PLAYERMUSIC_SetUpdatedPlaylist(const DbChar* imei, const PlaylistRecord* playlist)
{
    static constexpr auto kName = __func__;
    return RunThinExport(
        kName,
        [&] { DbTrace("Enter %s(IMEI: %s, Name: %s).\n", Name{kName}, Plain{imei}, Plain{Required(playlist).Name}); },
        [&] {
            return media::SetFolderState(imei, kPlaylistTables, playlist->Name, Name{"[Flag]"},
                                         static_cast<int32_t>(PlaylistFlag::kCurrent));
        });
}

extern "C" int32_t DB_PLAYERMUSIC_DeleteList(const DbChar* imei, const DbChar* name)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(szName: %s).\n", Name{kSelf.name}, Plain{name}); },
        [&](Routine self) { return playlists::DeleteList(self, imei, name); });
}
