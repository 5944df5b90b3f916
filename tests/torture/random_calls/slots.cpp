#include "torture/random_calls/slots.h"

#include <cstdlib>

namespace kesta::test {
namespace {

constexpr const DbChar* kNobody = u"nobody";

void Expect(bool empty, const char* what)
{
    if (!empty) {
        Fail("%s was not given back", what);
    }
}

}  // namespace

void Slots::release(const Exports& library)
{
    auto& [folder, phone, bookmark, pimFolder] = records;
    (void)library.DB_MUSIC_GetFolder(kNobody, kNobody, &folder);
    (void)library.DB_LIB_GetPhoneSetting(kNobody, &phone);
    (void)library.DB_BOOKMARK_GetSyncedMark(kNobody, kNobody, &bookmark);
    (void)library.DB_PIM_GetFolder(&pimFolder, u"");
    Expect(folder.Path == nullptr, "a folder");
    Expect(phone.Name == nullptr && phone.ContactFolderId == nullptr, "a phone");
    Expect(bookmark.Title == nullptr && bookmark.Path == nullptr && bookmark.PhoneMID == nullptr, "a bookmark");
    Expect(pimFolder.PimID == nullptr && pimFolder.Path == nullptr, "a folder of the store");

    (void)library.DB_MUSIC_GetFolders(kNobody, &std::get<FolderList>(lists));
    (void)library.DB_MUSIC_GetSyncedFiles(kNobody, u"", &std::get<SyncedFileList>(lists));
    (void)library.DB_PLAYERMUSIC_GetPlaylists(kNobody, &std::get<PlaylistList>(lists));
    (void)library.DB_BOOKMARK_GetSyncedMarks(kNobody, &std::get<BookmarkList>(lists));
    (void)library.DB_BACKUP_GetPhoneBackups(kNobody, &std::get<BackupList>(lists));
    (void)library.DB_PIM_GetFolders(&std::get<PimFolderList>(lists), kNobody, 0, 0);
    (void)library.DB_PIM_GetItems(&std::get<PimItemList>(lists), kNobody, 0, 0);
    Expect(std::get<FolderList>(lists).Items == nullptr, "a list of folders");
    Expect(std::get<SyncedFileList>(lists).Items == nullptr, "a list of files");
    Expect(std::get<PlaylistList>(lists).Items == nullptr, "a list of playlists");
    Expect(std::get<BookmarkList>(lists).Items == nullptr, "a list of bookmarks");
    Expect(std::get<BackupList>(lists).Items == nullptr, "a list of backups");
    Expect(std::get<PimFolderList>(lists).Items == nullptr, "a list of folders of the store");
    Expect(std::get<PimItemList>(lists).Items == nullptr, "a list of items");

    if (names.Items != nullptr) {
        for (int32_t i = 0; i < names.Count; ++i) {
            std::free(names.Items[i]);
        }
    }
    std::free(names.Items);
    names = {};
}

void Release(const Exports& library, SyncedFileRecord& file)
{
    // The texts of all records come from one place: a record that is emptied before it is filled takes them along.
    BookmarkRecord bookmark = {file.Path, file.BasePath, file.PhonePath, 0, 0, 0};
    (void)library.DB_BOOKMARK_GetSyncedMark(kNobody, kNobody, &bookmark);
    file = {};
}

}  // namespace kesta::test
