// DB_PLAYERMUSIC_*: the files that were synced because of playlists, and the file names that make up each playlist.
#include "core/list.h"
#include "kesta_db/kesta_db.h"
#include "media/file_calls.h"
#include "playlists/playlists.h"

using namespace kesta;

extern "C" int32_t DB_PLAYERMUSIC_IsSyncedFile(const DbChar* imei, const DbChar* path, SyncedFileRecord* file)
{
    return IsSyncedFile(__func__, kPlaylistTables, imei, path, file);
}

extern "C" int32_t DB_PLAYERMUSIC_GetSyncedFiles(const DbChar* imei, const DbChar* list, SyncedFileList* files)
{
    static constexpr auto kName = __func__;
    return RunThinExport(
        kName,
        [&] {
            EmptyList(Required(files));
            DbTrace("Enter %s(IMEI: %s, List: %s).\n", Name{kName}, Plain{imei}, Plain{list});
        },
        // Deliberate: the files of all playlists, whatever the list's name.
        [&] { return media::GetSyncedFiles(imei, kPlaylistTables, nullptr, *files); });
}

extern "C" int32_t DB_PLAYERMUSIC_SetAddedFile(const DbChar* imei, const SyncedFileRecord* file)
{
    return RecordFile(__func__, media::SetAddedFile, kPlaylistTables, imei, file);
}

extern "C" int32_t DB_PLAYERMUSIC_SetDeletedFile(const DbChar* imei, const SyncedFileRecord* file)
{
    return RecordFile(__func__, media::SetDeletedFile, kPlaylistTables, imei, file);
}

extern "C" int32_t DB_PLAYERMUSIC_SetUpdatedFile(const DbChar* imei, const SyncedFileRecord* file)
{
    return RecordFile(__func__, media::SetUpdatedFile, kPlaylistTables, imei, file);
}

// Deliberate: "Listname" here and "ListName" below.
extern "C" int32_t DB_PLAYERMUSIC_GetListFilesname(const DbChar* imei, const DbChar* list, FileNameArray* names)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(Listname: %s).\n", Name{kSelf.name}, Plain{list}); },
        [&] { (void)Required(names); },
        [&](Routine self) { return playlists::GetListFilesname(self, imei, list, *names); });
}

extern "C" int32_t DB_PLAYERMUSIC_SetListFilesname(const DbChar* imei, const DbChar* list, const FileNameArray* names)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(ListName: %s).\n", Name{kSelf.name}, Plain{list}); },
        [&] { (void)Required(names); },
        [&](Routine self) { return playlists::SetListFilesname(self, imei, list, *names); });
}
