// The records and lists that a caller keeps from call to call, because the library fills, frees and fills them again.
#pragma once

#include <array>
#include <memory>
#include <tuple>

#include "support/library.h"
#include "torture/random_calls/records.h"

namespace kesta::test {

struct Slots {
    std::tuple<FolderRecord, PhoneSettingRecord, BookmarkRecord, PimFolderRecord> records = {};
    std::tuple<MainFolderList, PhoneList, FolderList, SyncedFileList, PlaylistList, BookmarkList, BackupList,
               PimFolderList, PimItemList>
        lists = {};
    PimLog log = {};
    FileNameArray names = {};
    DbChar* profile = nullptr;

    /// More than the longest profile that a statement can store.
    static constexpr size_t kBufferUnits = 40961;
    std::unique_ptr<DbChar[]> buffer = std::make_unique<DbChar[]>(kBufferUnits);

    /// Gives everything back that calls can give back. Lists of main folders and phones, the items of a log and the
    /// store's profile stay until they are filled again.
    void release(const Exports& library);
};

/// Gives the texts of a found file back, which the library itself never frees.
void Release(const Exports& library, SyncedFileRecord& file);

}  // namespace kesta::test
