// The main library folders: their rows and the flags of what changed. The routines run under the lock of their callers.
#pragma once

#include <atomic>

#include "core/caller_memory.h"
#include "core/connection.h"
#include "core/results.h"
#include "kesta_db/kesta_db.h"

namespace kesta {

/// Which main folders changed since a caller last asked. Read and reset without the lock, hence atomic.
struct ChangeFlags {
    std::atomic<int32_t> music = 0;
    std::atomic<int32_t> gallery = 0;
    std::atomic<int32_t> document = 0;
    std::atomic<int32_t> webBookmark = 0;

    /// The flag of a main folder; null for one that has none.
    std::atomic<int32_t>* of(int32_t folderId) noexcept;
};

extern ChangeFlags MainFolderChangeFlags;

template <>
struct Element<MainFolderRecord> {
    static void construct(MainFolderRecord& folder, const DateValue& /*now*/)
    {
        folder = {kMainFolderMusic, 0, 0, nullptr, 1};
    }
    static void destroy(MainFolderRecord& folder) { FreeText(folder.Setting); }
};

namespace library {

ResultCode UpdateMainFolderInfo(Connection& db, const MainFolderRecord& folder);

/// Counts the items of one main folder anew and writes number and size.
ResultCode RefreshStatistic(Connection& db, int32_t folderId);

/// Replaces what the list holds, unless there are no folders.
ResultCode GetAllMainFolders(Connection& db, MainFolderList& list);

}  // namespace library
}  // namespace kesta
