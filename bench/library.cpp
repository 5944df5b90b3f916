#include "library.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>

#include "data_set.h"

namespace kesta::bench {

Library::Library(const DataSet& dataSet) : Library(dataSet.dataHome())
{
    Require(std::filesystem::exists(dataSet.database()), "a database in the private folder");
}

Library::Library(const std::filesystem::path& dataHome)
{
    // Neither the user's database nor the user's viewer of the trace.
    setenv("XDG_DATA_HOME", dataHome.c_str(), 1);
    setenv("XDG_RUNTIME_DIR", dataHome.c_str(), 1);
    handle_ = dlopen(KESTA_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    Require(handle_ != nullptr, "loading " KESTA_LIBRARY);
    decltype(&DB_Open) open = nullptr;
    find(open, "DB_Open");
    find(PhoneDetected, "DB_LIB_PhoneDetected");
    find(SetAddedFile, "DB_MUSIC_SetAddedFile");
    find(IsSyncedFile, "DB_MUSIC_IsSyncedFile");
    find(GetSyncedFiles, "DB_MUSIC_GetSyncedFiles");
    find(AddPlaylist, "DB_PLAYERMUSIC_AddPlaylist");
    find(GetPlaylists, "DB_PLAYERMUSIC_GetPlaylists");
    find(SetAddedMark, "DB_BOOKMARK_SetAddedMark");
    find(IsSyncedMark, "DB_BOOKMARK_IsSyncedMark");
    find(GetSyncedMark, "DB_BOOKMARK_GetSyncedMark");
    find(GetSyncedMarks, "DB_BOOKMARK_GetSyncedMarks");
    find(AddItem, "DB_PIM_AddItem");
    find(GetItems, "DB_PIM_GetItems");
    find(SaveLog, "DB_PIMLOG_SaveLog");
    find(ReadLog, "DB_PIMLOG_ReadLog");
    Require(open() == 0, "opening the database");
}

Library::~Library()
{
    dlclose(handle_);
    Require(dlopen(KESTA_LIBRARY, RTLD_NOW | RTLD_NOLOAD) == nullptr, "unloading the library");
}

template <class Function>
void Library::find(Function& function, const char* name)
{
    function = reinterpret_cast<Function>(dlsym(handle_, name));
    Require(function != nullptr, name);
}

}  // namespace kesta::bench
