// DB_PLAYERMUSIC_*: the files that were synced because of playlists, and the file names that make up each playlist.
#include "core/list.h"
#include "kesta_db/kesta_db.h"
#include "media/file_calls.h"
#include "playlists/playlists.h"

using namespace kesta;

extern "C" int32_t DB_PLAYERMUSIC_IsSyncedFile(const DbChar* imei, const DbChar* path, SyncedFileRecord* file)
{
    return IsSyncedFile("DB_PLAYERMUSIC_IsSyncedFile", kPlaylistFileView, imei, path, file);
}

extern "C" int32_t DB_PLAYERMUSIC_GetSyncedFiles(const DbChar* imei, const DbChar* list, SyncedFileList* files)
{
    static constexpr auto kName = "DB_PLAYERMUSIC_GetSyncedFiles";
    return RunThinExport(
        kName,
        [&] {
            EmptyList(Required(files));
            DbTrace("Enter %s(IMEI: %s, List: %s).\n", Name{kName}, Plain{imei}, Plain{list});
        },
        // Deliberate: the files of all playlists, whatever the list's name.
        [&] { return DB_INTERNAL_GetSyncedFiles(imei, kPlaylistFileView, nullptr, *files); });
}

extern "C" int32_t DB_PLAYERMUSIC_SetAddedFile(const DbChar* imei, const SyncedFileRecord* file)
{
    return RecordFile("DB_PLAYERMUSIC_SetAddedFile", DB_INTERNAL_SetAddedFile, kPlaylistFileTable, imei, file);
}

extern "C" int32_t DB_PLAYERMUSIC_SetDeletedFile(const DbChar* imei, const SyncedFileRecord* file)
{
    return RecordFile("DB_PLAYERMUSIC_SetDeletedFile", DB_INTERNAL_SetDeletedFile, kPlaylistFileTable, imei, file);
}

extern "C" int32_t DB_PLAYERMUSIC_SetUpdatedFile(const DbChar* imei, const SyncedFileRecord* file)
{
    return RecordFile("DB_PLAYERMUSIC_SetUpdatedFile", DB_INTERNAL_SetUpdatedFile, kPlaylistFileTable, imei, file);
}

// Deliberate: "Listname" here and "ListName" below.
extern "C" int32_t DB_PLAYERMUSIC_GetListFilesname(const DbChar* imei, const DbChar* list, FileNameArray* names)
{
    static constexpr Export kSelf = {"DB_PLAYERMUSIC_GetListFilesname"};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(Listname: %s).\n", Name{kSelf.name}, Plain{list}); },
        [&] { (void)Required(names); },
        [&](Connection& db) { return playlists::GetListFilesname(db, Trail(kSelf.name), imei, list, *names); });
}

extern "C" int32_t DB_PLAYERMUSIC_SetListFilesname(const DbChar* imei, const DbChar* list, const FileNameArray* names)
{
    static constexpr Export kSelf = {"DB_PLAYERMUSIC_SetListFilesname"};
    return RunExport(
        kSelf, [&] { DbTrace("Enter %s(ListName: %s).\n", Name{kSelf.name}, Plain{list}); },
        [&] { (void)Required(names); },
        [&](Connection& db) { return playlists::SetListFilesname(db, Trail(kSelf.name), imei, list, *names); });
}
