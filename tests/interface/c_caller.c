/* A caller in plain C that knows the header and the library and nothing else. */
#include <stdio.h>

#include "kesta_db/kesta_db.h"

static int failures = 0;

#define CHECK(condition)                                            \
    do {                                                            \
        if (!(condition)) {                                         \
            fprintf(stderr, "line %d: %s\n", __LINE__, #condition); \
            ++failures;                                             \
        }                                                           \
    } while (0)

#if defined(_WIN32)
#define TEXT_OF(literal) L##literal
#else
#define TEXT_OF(literal) u##literal
#endif

static int same_text(const DbChar* a, const DbChar* b)
{
    while (*a != 0 && *a == *b) {
        ++a;
        ++b;
    }
    return *a == *b;
}

static const DbChar kImei[] = TEXT_OF("351602000123456"); /* nobody else's: programs that run before leave their phones */
static DbChar folder[] = TEXT_OF("C:\\Music\\Rock 'n' Roll");
static DbChar file[] = TEXT_OF("C:\\Music\\Rock 'n' Roll\\01.mp3");
static DbChar on_phone[] = TEXT_OF("Music/01.mp3");

static void add_folder_with_file(void)
{
    FolderRecord record = {0};
    SyncedFileRecord synced = {{45351.5, kDateValid}, file, folder, on_phone};
    record.Path = folder;
    record.Count = 1;
    record.Size = 3000000000;
    record.TotalSize = 3000000000;
    record.Selected = 1;
    CHECK(DB_MUSIC_AddFolder(kImei, &record) == 0);
    CHECK(DB_MUSIC_SetAddedFile(kImei, &synced) == 0);
    CHECK(DB_MUSIC_SetAddedFile(kImei, &synced) == 19);
}

static void read_them_back(void)
{
    FolderList folders = {0, NULL};
    SyncedFileList files = {0, NULL};
    CHECK(DB_MUSIC_GetFolders(kImei, &folders) == 0);
    CHECK(folders.Count == 1);
    if (folders.Count == 1) {
        CHECK(same_text(folders.Items[0].Path, folder));
        CHECK(folders.Items[0].Size == 3000000000);
    }
    CHECK(DB_MUSIC_GetSyncedFiles(kImei, folder, &files) == 0);
    CHECK(files.Count == 1);
    if (files.Count == 1) {
        CHECK(same_text(files.Items[0].Path, file));
        CHECK(same_text(files.Items[0].PhonePath, on_phone));
        CHECK(files.Items[0].ModifiedTime.Status == kDateValid);
        CHECK(files.Items[0].ModifiedTime.Days > 45351.499 && files.Items[0].ModifiedTime.Days < 45351.501);
    }
    /* Asking for an unknown phone's lists gives the memory back. */
    CHECK(DB_MUSIC_GetFolders(TEXT_OF("none"), &folders) == 1);
    CHECK(folders.Count == 0 && folders.Items == NULL);
    CHECK(DB_MUSIC_GetSyncedFiles(TEXT_OF("none"), NULL, &files) == 0);
    CHECK(files.Count == 0 && files.Items == NULL);
}

int main(void)
{
    CHECK(DB_Open() == 0);
    CHECK(DB_LIB_PhoneDetected(kImei, TEXT_OF("Phone")) >= 1);
    CHECK(DB_MUSIC_SetDeletedFolder(kImei, folder) == 0); /* what an earlier run may have left */
    add_folder_with_file();
    read_them_back();
    CHECK(DB_MUSIC_SetDeletedFolder(kImei, folder) == 0);
    CHECK(DB_Close() == 0);
    return failures == 0 ? 0 : 1;
}
