// DB_GALLERY_*: pictures and videos at once, through the engine of both.
#include "core/call_frame.h"
#include "core/list.h"
#include "kesta_db/kesta_db.h"
#include "media/category.h"
#include "media/folder_records.h"
#include "media/folder_state.h"
#include "media/gallery.h"

using namespace kesta;

namespace {

/// A list of the library's own, which goes with its scope.
struct LocalFolders {
    FolderList list = {0, nullptr};
    ~LocalFolders() { EmptyList(list); }
};

int32_t GetGalleryFolders(const DbChar* imei, FolderList& list)
{
    const ResultCode pictures = DB_INTERNAL_GetFolders(imei, kImage.folderTable, list, FolderOrder::kTable);
    LocalFolders videos;
    const ResultCode read = DB_INTERNAL_GetFolders(imei, kVideo.folderTable, videos.list, FolderOrder::kTable);
    const bool bothRead = pictures == ResultCode::kSuccess && read == ResultCode::kSuccess;
    if (bothRead) MergeGallery(list, videos.list);
    return bothRead ? 0 : 1;
}

}  // namespace

extern "C" int32_t DB_GALLERY_GetFolders(const DbChar* imei, FolderList* list)
{
    static constexpr auto kName = "DB_GALLERY_GetFolders";
    return RunThinExport(
        kName,
        [&] {
            EmptyList(Required(list));
            TraceEnter(kName, imei);
        },
        [&] { return GetGalleryFolders(imei, *list); });
}

// Both categories are always asked, for each leaves its own lines in the trace.

extern "C" int32_t DB_GALLERY_IsFolderSelected(const DbChar* imei, const DbChar* path)
{
    static constexpr auto kName = "DB_GALLERY_IsFolderSelected";
    return RunThinExport(
        kName, [&] { TraceEnter(kName, imei, path); },
        [&] {
            const int32_t picture = DB_INTERNAL_IsFolderSelected(imei, kImage.folderView, path);
            const int32_t video = DB_INTERNAL_IsFolderSelected(imei, kVideo.folderView, path);
            return picture != 0 || video != 0 ? 1 : 0;
        });
}

extern "C" int32_t DB_GALLERY_SetFolderSelected(const DbChar* imei, const DbChar* path, int32_t selected)
{
    static constexpr auto kName = "DB_GALLERY_SetFolderSelected";
    return RunThinExport(
        kName,
        [&] {
            DbTrace("Enter %s(IMEI: %s, Path: %s, Selected: %d).\n", Name{kName}, Plain{imei}, Plain{path}, selected);
        },
        [&] {
            const ResultCode picture = DB_INTERNAL_SetFolderSelected(imei, kImage.folderTable, path, selected);
            const ResultCode video = DB_INTERNAL_SetFolderSelected(imei, kVideo.folderTable, path, selected);
            return static_cast<int32_t>(picture) + static_cast<int32_t>(video);
        });
}

extern "C" int32_t DB_GALLERY_IsFolderDeleted(const DbChar* imei, const DbChar* path)
{
    static constexpr auto kName = "DB_GALLERY_IsFolderDeleted";
    return RunThinExport(
        kName, [&] { TraceEnter(kName, imei, path); },
        [&] {
            const int32_t picture = DB_INTERNAL_IsFolderDeleted(imei, kImage.folderView, path);
            const int32_t video = DB_INTERNAL_IsFolderDeleted(imei, kVideo.folderView, path);
            return picture != 0 && video != 0 ? 1 : 0;
        });
}

extern "C" int32_t DB_GALLERY_SetFolderDeleted(const DbChar* imei, const DbChar* path, int32_t deleted)
{
    static constexpr auto kName = "DB_GALLERY_SetFolderDeleted";
    return RunThinExport(
        kName,
        [&] {
            DbTrace("Enter %s(IMEI: %s, Path: %s, Deleted: %d).\n", Name{kName}, Plain{imei}, Plain{path}, deleted);
        },
        [&] {
            const ResultCode picture = DB_INTERNAL_SetFolderDeleted(imei, kImage.folderTable, path, deleted);
            const ResultCode video = DB_INTERNAL_SetFolderDeleted(imei, kVideo.folderTable, path, deleted);
            return static_cast<int32_t>(picture) + static_cast<int32_t>(video);
        });
}
