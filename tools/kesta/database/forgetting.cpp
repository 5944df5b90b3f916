#include "database/forgetting.h"

#include "database/backups.h"
#include "database/pim_kind.h"

namespace kesta {

size_t CountRecords(const Database& database, const std::string& imei)
{
    size_t count = 0;
    for (const Category category : kCategories) {
        count += database.media(imei, category).files().size();
    }
    kesta_db::Playlists playlists = database.playlists(imei);
    count += playlists.all().size() + playlists.files().size();
    for (const PimKind kind : kPimKinds) {
        count += database.pimLog(imei, TypeOf(kind)).rows().size();
    }
    return count;
}

void ForgetAll(const Database& database, const std::string& imei)
{
    for (const Category category : kCategories) {
        kesta_db::Media media = database.media(imei, category);
        for (const RecordedFolder& folder : media.folders()) {
            media.removeFolder(folder.path);
        }
    }
    kesta_db::Playlists playlists = database.playlists(imei);
    playlists.beginConfirming();
    for (const RecordedPlaylist& list : playlists.all()) {
        playlists.setDeleted(list.name);
        playlists.forget(list.name);
    }
    database.bookmarks(imei).removeAll();
    for (const PimKind kind : kPimKinds) {
        database.pimLog(imei, TypeOf(kind)).clear();
    }
    database.phones().forgetSyncedFiles(imei);  // what is recorded under a folder that is not
    RemoveBackupsOf(database, imei);
}

}  // namespace kesta
