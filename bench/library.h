// The library under measurement, loaded for one data set and unloaded again: it opens the data set while it is
// being loaded, and so never those of the user.
#pragma once

#include <filesystem>

#include "kesta_db/kesta_db.h"

namespace kesta::bench {

class DataSet;

class Library {
public:
    explicit Library(const DataSet& dataSet);
    /// Over any data folder.
    explicit Library(const std::filesystem::path& dataHome);
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library();

    decltype(&DB_LIB_PhoneDetected) PhoneDetected;
    decltype(&DB_MUSIC_SetAddedFile) SetAddedFile;
    decltype(&DB_MUSIC_IsSyncedFile) IsSyncedFile;
    decltype(&DB_MUSIC_GetSyncedFiles) GetSyncedFiles;
    decltype(&DB_PLAYERMUSIC_AddPlaylist) AddPlaylist;
    decltype(&DB_PLAYERMUSIC_GetPlaylists) GetPlaylists;
    decltype(&DB_BOOKMARK_SetAddedMark) SetAddedMark;
    decltype(&DB_BOOKMARK_IsSyncedMark) IsSyncedMark;
    decltype(&DB_BOOKMARK_GetSyncedMark) GetSyncedMark;
    decltype(&DB_BOOKMARK_GetSyncedMarks) GetSyncedMarks;
    decltype(&DB_PIM_AddItem) AddItem;
    decltype(&DB_PIM_GetItems) GetItems;
    decltype(&DB_PIMLOG_SaveLog) SaveLog;
    decltype(&DB_PIMLOG_ReadLog) ReadLog;

private:
    template <class Function>
    void find(Function& function, const char* name);

    void* handle_;
};

}  // namespace kesta::bench
