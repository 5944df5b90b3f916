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
    const ResultCode pictures = media::GetFolders(imei, kImage.tables, list, media::FolderOrder::kTable);
    LocalFolders videos;
    const ResultCode read = media::GetFolders(imei, kVideo.tables, videos.list, media::FolderOrder::kTable);
    const bool bothRead = pictures == ResultCode::kSuccess && read == ResultCode::kSuccess;
    if (bothRead) {
        MergeGallery(list, videos.list);
    }
    return bothRead ? 0 : 1;
}

}  // namespace

extern "C" int32_t DB_GALLERY_GetFolders(const DbChar* imei, FolderList* list)
{
    static constexpr auto kName = __func__;
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
    static constexpr auto kName = __func__;
    return RunThinExport(
        kName, [&] { TraceEnter(kName, imei, path); },
        [&] {
            const int32_t picture = media::IsFolderSelected(imei, kImage.tables, path);
            const int32_t video = media::IsFolderSelected(imei, kVideo.tables, path);
            return picture != 0 || video != 0 ? 1 : 0;
        });
}

extern "C" int32_t DB_GALLERY_SetFolderSelected(const DbChar* imei, const DbChar* path, int32_t selected)
{
    static constexpr auto kName = __func__;
    return RunThinExport(
        kName,
        [&] {
            DbTrace("Enter %s(IMEI: %s, Path: %s, Selected: %d).\n", Name{kName}, Plain{imei}, Plain{path}, selected);
        },
        [&] {
            const ResultCode picture = media::SetFolderSelected(imei, kImage.tables, path, selected);
            const ResultCode video = media::SetFolderSelected(imei, kVideo.tables, path, selected);
            return static_cast<int32_t>(picture) + static_cast<int32_t>(video);
        });
}

extern "C" int32_t DB_GALLERY_IsFolderDeleted(const DbChar* imei, const DbChar* path)
{
    static constexpr auto kName = __func__;
    return RunThinExport(
        kName, [&] { TraceEnter(kName, imei, path); },
        [&] {
            const int32_t picture = media::IsFolderDeleted(imei, kImage.tables, path);
            const int32_t video = media::IsFolderDeleted(imei, kVideo.tables, path);
            return picture != 0 && video != 0 ? 1 : 0;
        });
}

extern "C" int32_t DB_GALLERY_SetFolderDeleted(const DbChar* imei, const DbChar* path, int32_t deleted)
{
    static constexpr auto kName = __func__;
    return RunThinExport(
        kName,
        [&] {
            DbTrace("Enter %s(IMEI: %s, Path: %s, Deleted: %d).\n", Name{kName}, Plain{imei}, Plain{path}, deleted);
        },
        [&] {
            const ResultCode picture = media::SetFolderDeleted(imei, kImage.tables, path, deleted);
            const ResultCode video = media::SetFolderDeleted(imei, kVideo.tables, path, deleted);
            return static_cast<int32_t>(picture) + static_cast<int32_t>(video);
        });
}
