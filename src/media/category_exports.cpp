// DB_MUSIC_*, DB_IMAGE_*, DB_VIDEO_*, DB_DOCUMENT_*: each traces its entry, before the lock is taken, and hands over to
// the engine with its category's names. None of them writes an exit line.
#include "core/call_frame.h"
#include "core/list.h"
#include "kesta_db/kesta_db.h"
#include "media/category.h"
#include "media/file_calls.h"
#include "media/folder_records.h"
#include "media/folder_state.h"
#include "media/synced_files.h"

namespace kesta::category {
namespace {

int32_t AddFolder(const char* name, const Category& category, const DbChar* imei, const FolderRecord* folder)
{
    return RunThinExport(
        name, [&] { TraceEnter(name, imei, Required(folder).Path); },
        [&] { return media::AddFolder(imei, category.tables, *folder); });
}

int32_t ClearAll(const char* name, const Category& category, const DbChar* imei)
{
    constexpr int32_t kDeleted = 1;
    return RunThinExport(
        name, [&] { TraceEnter(name, imei); },
        [&] { return media::SetFoldersState(imei, category.tables, Name{"[Deleted]"}, kDeleted); });
}

int32_t GetFolders(const char* name, const Category& category, const DbChar* imei, FolderList* list)
{
    return RunThinExport(
        name,
        [&] {
            EmptyList(Required(list));
            TraceEnter(name, imei);
        },
        [&] { return media::GetFolders(imei, category.tables, *list, media::FolderOrder::kAddTime); });
}

/// Deliberate: RowId, Selected, Deleted and AddTime stay as the caller gave them.
void ResetFolder(FolderRecord& folder)
{
    FreeText(folder.Path);
    folder.Count = 0;
    folder.Size = 0;
    folder.TotalSize = 0;
    folder.Sized = 0;
}

int32_t GetFolder(const char* name, const Category& category, const DbChar* imei, const DbChar* path,
                  FolderRecord* folder)
{
    return RunThinExport(
        name,
        [&] {
            ResetFolder(Required(folder));
            TraceEnter(name, imei, path);
        },
        [&] { return media::GetFolder(imei, category.tables, path, *folder); });
}

int32_t IsFolderSelected(const char* name, const Category& category, const DbChar* imei, const DbChar* path)
{
    return RunThinExport(
        name, [&] { TraceEnter(name, imei, path); },
        [&] { return media::IsFolderSelected(imei, category.tables, path); });
}

int32_t SetFolderSelected(const char* name, const Category& category, const DbChar* imei, const DbChar* path,
                          int32_t selected)
{
    return RunThinExport(
        name,
        [&] {
            DbTrace("Enter %s(IMEI: %s, Path: %s, Selected: %d).\n", Name{name}, Plain{imei}, Plain{path}, selected);
        },
        [&] { return media::SetFolderSelected(imei, category.tables, path, selected); });
}

int32_t IsFolderDeleted(const char* name, const Category& category, const DbChar* imei, const DbChar* path)
{
    return RunThinExport(
        name, [&] { TraceEnter(name, imei, path); },
        [&] { return media::IsFolderDeleted(imei, category.tables, path); });
}

int32_t SetFolderDeleted(const char* name, const Category& category, const DbChar* imei, const DbChar* path,
                         int32_t deleted)
{
    return RunThinExport(
        name, [&] { DbTrace(category.enterSetFolderDeleted, Name{name}, Plain{imei}, Plain{path}, deleted); },
        [&] { return media::SetFolderDeleted(imei, category.tables, path, deleted); });
}

int32_t GetSyncedFiles(const char* name, const Category& category, const DbChar* imei, const DbChar* folder,
                       SyncedFileList* list)
{
    return RunThinExport(
        name,
        [&] {
            EmptyList(Required(list));
            DbTrace("Enter %s(IMEI: %s, Folder: %s).\n", Name{name}, Plain{imei}, Plain{folder});
        },
        [&] { return media::GetSyncedFiles(imei, category.tables, folder, *list); });
}

int32_t SetDeletedFolder(const char* name, const Category& category, const DbChar* imei, const DbChar* path)
{
    return RunThinExport(
        name, [&] { TraceEnter(name, imei, path); },
        [&] { return media::SetDeletedFolder(imei, category.tables, path, media::Deletion::kNow); });
}

}  // namespace
}  // namespace kesta::category

using namespace kesta;

// Only stamps out the names that must exist.
#define CATEGORY_EXPORTS(FAMILY, kCategory)                                                              \
    int32_t DB_##FAMILY##_AddFolder(const DbChar* imei, const FolderRecord* folder)                      \
    {                                                                                                    \
        return category::AddFolder(__func__, kCategory, imei, folder);                                   \
    }                                                                                                    \
    int32_t DB_##FAMILY##_ClearAll(const DbChar* imei)                                                   \
    {                                                                                                    \
        return category::ClearAll(__func__, kCategory, imei);                                            \
    }                                                                                                    \
    int32_t DB_##FAMILY##_GetFolders(const DbChar* imei, FolderList* list)                               \
    {                                                                                                    \
        return category::GetFolders(__func__, kCategory, imei, list);                                    \
    }                                                                                                    \
    int32_t DB_##FAMILY##_GetFolder(const DbChar* imei, const DbChar* path, FolderRecord* folder)        \
    {                                                                                                    \
        return category::GetFolder(__func__, kCategory, imei, path, folder);                             \
    }                                                                                                    \
    int32_t DB_##FAMILY##_IsFolderSelected(const DbChar* imei, const DbChar* path)                       \
    {                                                                                                    \
        return category::IsFolderSelected(__func__, kCategory, imei, path);                              \
    }                                                                                                    \
    int32_t DB_##FAMILY##_SetFolderSelected(const DbChar* imei, const DbChar* path, int32_t selected)    \
    {                                                                                                    \
        return category::SetFolderSelected(__func__, kCategory, imei, path, selected);                   \
    }                                                                                                    \
    int32_t DB_##FAMILY##_IsFolderDeleted(const DbChar* imei, const DbChar* path)                        \
    {                                                                                                    \
        return category::IsFolderDeleted(__func__, kCategory, imei, path);                               \
    }                                                                                                    \
    int32_t DB_##FAMILY##_SetFolderDeleted(const DbChar* imei, const DbChar* path, int32_t deleted)      \
    {                                                                                                    \
        return category::SetFolderDeleted(__func__, kCategory, imei, path, deleted);                     \
    }                                                                                                    \
    int32_t DB_##FAMILY##_IsSyncedFile(const DbChar* imei, const DbChar* path, SyncedFileRecord* file)   \
    {                                                                                                    \
        return IsSyncedFile(__func__, (kCategory).tables, imei, path, file);                             \
    }                                                                                                    \
    int32_t DB_##FAMILY##_GetSyncedFiles(const DbChar* imei, const DbChar* folder, SyncedFileList* list) \
    {                                                                                                    \
        return category::GetSyncedFiles(__func__, kCategory, imei, folder, list);                        \
    }                                                                                                    \
    int32_t DB_##FAMILY##_SetAddedFile(const DbChar* imei, const SyncedFileRecord* file)                 \
    {                                                                                                    \
        return RecordFile(__func__, media::SetAddedFile, (kCategory).tables, imei, file);                \
    }                                                                                                    \
    int32_t DB_##FAMILY##_SetDeletedFile(const DbChar* imei, const SyncedFileRecord* file)               \
    {                                                                                                    \
        return RecordFile(__func__, media::SetDeletedFile, (kCategory).tables, imei, file);              \
    }                                                                                                    \
    int32_t DB_##FAMILY##_SetUpdatedFile(const DbChar* imei, const SyncedFileRecord* file)               \
    {                                                                                                    \
        return RecordFile(__func__, media::SetUpdatedFile, (kCategory).tables, imei, file);              \
    }                                                                                                    \
    int32_t DB_##FAMILY##_SetDeletedFolder(const DbChar* imei, const DbChar* path)                       \
    {                                                                                                    \
        return category::SetDeletedFolder(__func__, kCategory, imei, path);                              \
    }

extern "C" {
CATEGORY_EXPORTS(MUSIC, kMusic)
CATEGORY_EXPORTS(IMAGE, kImage)
CATEGORY_EXPORTS(VIDEO, kVideo)
CATEGORY_EXPORTS(DOCUMENT, kDocument)
}

#undef CATEGORY_EXPORTS
