// The library is called through its public C++ interface: these are the names that its types have here.
#pragma once

#include <kesta_db/kesta_db.hpp>

#include "base/dates.h"
#include "database/category.h"

namespace kesta {

using kesta_db::Database;
using PhoneSettings = kesta_db::Phone;
using RecordedFolder = kesta_db::Folder;
using RecordedFile = kesta_db::File;
using RecordedPlaylist = kesta_db::Playlist;
using RecordedBookmark = kesta_db::Bookmark;
using RecordedBackup = kesta_db::Backup;
using kesta_db::PimFolder;
using kesta_db::PimItem;
using kesta_db::PimLogRow;
using kesta_db::PlaylistState;

}  // namespace kesta
