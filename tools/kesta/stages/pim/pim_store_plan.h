// What a sync has to do in the database's store of contacts or calendars, so that it holds what the files of the PC
// hold. Changes nothing.
#pragma once

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "report/summary.h"
#include "stages/pim/pim_entry.h"
#include "stages/pim/pim_source.h"
#include "sync/compare.h"
#include "sync/deletion_guard.h"

namespace kesta {

struct StoredPimFolder {
    PimFolder folder;
    std::vector<PimEntry> entries;
};

struct PimStoreInput {
    PimKind kind = PimKind::kContacts;
    const std::vector<PimSource>& sources;      // those that are not readable are left alone
    const std::vector<StoredPimFolder>& known;  // all of the kind; the entries are needed of the sources' folders only
    DeletionGuard& guard;
    size_t folderLimit = kMostListedPimFolders - 1;  // the root takes part in a listing of the whole tree
    size_t itemLimit = kMostListedPimItems;
};

struct PlannedPimEntry {
    PimEntry entry;
    Comparison state = Comparison::kSame;
    bool isDeferred = false;  // stays, since removing it would be more than half of the folder
};

struct PimStorePlan {
    PimFolder folder;
    const PimSource* source = nullptr;
    bool isNew = false;
    bool isObsolete = false;               // nothing is left in it
    std::vector<PlannedPimEntry> entries;  // what it holds then: in the file's order, what is not in the file behind it
    std::vector<std::string> removed;      // ids
    size_t deferred = 0;                   // of the entries
    [[nodiscard]] size_t count(Comparison state) const
    {
        return static_cast<size_t>(std::count_if(
            entries.begin(), entries.end(), [&](const PlannedPimEntry& planned) { return planned.state == state; }));
    }
    [[nodiscard]] size_t changes() const { return entries.size() - count(Comparison::kSame) + removed.size(); }
};

struct PimStorePlans {
    std::vector<PimStorePlan> folders;
    std::set<std::string> refusedFolders;  // ids, for which there is no room
    std::vector<FailedItem> refusals;
};

/// The root of a kind's folders. It is no folder of any file.
[[nodiscard]] PimFolder PimRootFolder(PimKind kind);
[[nodiscard]] PimStorePlans PlanPimStore(const PimStoreInput& input);

}  // namespace kesta
