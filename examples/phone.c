/* Announces a phone, records a synced folder, lists it, and takes a playlist through its life. In C. */
#include <kesta_db/kesta_db.h>
#include <stdio.h>
#include <stdlib.h>

#if defined(_WIN32)
#include <windows.h>
#include <objbase.h>
#define TEXT_OF(literal) L##literal
#define FREE_SHARED CoTaskMemFree
#else
#define TEXT_OF(literal) u##literal
#define FREE_SHARED free
#endif

static DbChar kImei[] = TEXT_OF("356938035643809");
static DbChar kNobody[] = TEXT_OF("nobody");

/* Ends the program when a call without which nothing can go on has failed. */
static void require(const char *call, int32_t result)
{
    if (result == 0) return;
    fprintf(stderr, "%s failed with %d\n", call, (int)result);
    exit(1);
}

/* Good enough for an example: what is not ASCII is shown as a question mark. */
static void show(const DbChar *text)
{
    for (; text != NULL && *text != 0; ++text) putchar(*text < 0x80 ? (char)*text : '?');
}

static void sync_folder(void)
{
    static DbChar path[] = TEXT_OF("/home/ann/Music");
    static DbChar song[] = TEXT_OF("/home/ann/Music/song.mp3");
    static DbChar on_phone[] = TEXT_OF("Music/song.mp3");
    FolderRecord folder = {0};
    SyncedFileRecord file = {{45351.5, kDateValid}, song, path, on_phone}; /* 29 February 2024, noon */
    int32_t added;

    folder.Path = path;
    folder.Count = 1;
    folder.Size = 4000000;
    require("DB_MUSIC_AddFolder", DB_MUSIC_AddFolder(kImei, &folder));
    added = DB_MUSIC_SetAddedFile(kImei, &file);
    if (added != 19) require("DB_MUSIC_SetAddedFile", added); /* 19: it was recorded already */
}

static void list_files(void)
{
    SyncedFileList files = {0, NULL};
    int32_t i;

    require("DB_MUSIC_GetSyncedFiles", DB_MUSIC_GetSyncedFiles(kImei, NULL, &files));
    for (i = 0; i < files.Count; ++i) {
        show(files.Items[i].Path);
        printf(" -> ");
        show(files.Items[i].PhonePath);
        printf("\n");
    }
    (void)DB_MUSIC_GetSyncedFiles(kNobody, NULL, &files); /* gives the list back */
}

static void show_playlists(void)
{
    PlaylistList lists = {0, NULL};
    int32_t i;

    require("DB_PLAYERMUSIC_GetPlaylists", DB_PLAYERMUSIC_GetPlaylists(kImei, &lists));
    for (i = 0; i < lists.Count; ++i) {
        printf("playlist ");
        show(lists.Items[i].Name);
        printf(": state %d\n", (int)lists.Items[i].Flag);
    }
    if (lists.Count == 0) printf("no playlists\n");
    (void)DB_PLAYERMUSIC_GetPlaylists(kNobody, &lists);
}

static void take_playlist_through_its_life(void)
{
    static DbChar name[] = TEXT_OF("Party");
    static DbChar digest[] = TEXT_OF("c0ffee");
    static DbChar id[] = TEXT_OF("42");
    static DbChar song[] = TEXT_OF("/home/ann/Music/song.mp3");
    DbChar *songs[] = {song};
    const FileNameArray members = {1, songs};
    FileNameArray stored = {0, NULL};
    PlaylistRecord list = {0};
    int32_t i;

    list.Name = name;
    list.Digest = digest;
    list.IdInPhone = id;
    list.Count = 1;
    require("DB_PLAYERMUSIC_ClearAll", DB_PLAYERMUSIC_ClearAll(kImei)); /* a round begins */
    require("DB_PLAYERMUSIC_AddPlaylist", DB_PLAYERMUSIC_AddPlaylist(kImei, &list));
    require("DB_PLAYERMUSIC_SetListFilesname", DB_PLAYERMUSIC_SetListFilesname(kImei, name, &members));
    show_playlists(); /* new */
    require("DB_PLAYERMUSIC_SetAddedPlaylist", DB_PLAYERMUSIC_SetAddedPlaylist(kImei, &list));
    show_playlists(); /* on the phone */
    require("DB_PLAYERMUSIC_GetListFilesname", DB_PLAYERMUSIC_GetListFilesname(kImei, name, &stored));
    for (i = 0; i < stored.Count; ++i) {
        printf("  ");
        show(stored.Items[i]);
        printf("\n");
        FREE_SHARED(stored.Items[i]);
    }
    FREE_SHARED(stored.Items);
    require("DB_PLAYERMUSIC_DeleteList", DB_PLAYERMUSIC_DeleteList(kImei, name)); /* gone from the PC */
    show_playlists();                                                             /* to be removed */
    require("DB_PLAYERMUSIC_SetDeletedPlaylist", DB_PLAYERMUSIC_SetDeletedPlaylist(kImei, &list));
    show_playlists(); /* gone */
}

int main(void)
{
    static DbChar name[] = TEXT_OF("Ann's phone");

    require("DB_Open", DB_Open());
    if (DB_LIB_PhoneDetected(kImei, name) < 1) require("DB_LIB_PhoneDetected", 1);
    sync_folder();
    list_files();
    take_playlist_through_its_life();
    return 0;
}
