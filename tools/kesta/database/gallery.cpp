#include "database/gallery.h"

#include "database/calls.h"

namespace kesta {

std::vector<RecordedFolder> GalleryRecords::folders(const std::string& imei)
{
    calls::OwnedList<FolderList> list([](FolderList* record) { (void)DB_GALLERY_GetFolders(calls::kNoPhone, record); });
    const DbText phone = calls::Text(imei);
    calls::ReadList(
        "DB_GALLERY_GetFolders", [&] { return DB_GALLERY_GetFolders(phone.c_str(), list.get()); }, list.get()->Count);
    return calls::ToFolders(list);
}

}  // namespace kesta
