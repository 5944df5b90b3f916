// What a sync has to do for one category, from what is on the PC, in the database and on the phone. Changes nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "database/category.h"
#include "database/database.h"
#include "phone/phone_view.h"
#include "stages/media/scan.h"
#include "sync/deletion_guard.h"
#include "sync/plan.h"

namespace kesta {

struct FileChange {
    ChangeKind kind = ChangeKind::kPut;
    Category category = Category::kMusic;
    RecordedFile file;  // as it is to be recorded; an empty phonePath in a removal: only the database knows the file
    std::uint64_t size = 0;
};

struct PlanInput {
    Category category = Category::kMusic;
    std::vector<const FolderScan*> folders;  // the chosen ones that were found, in the user's order
    std::vector<RecordedFolder> known;       // all of the category
    std::vector<RecordedFile> recorded;      // all of the category
    DeletionGuard& guard;
};

struct FilePlan {
    std::vector<FileChange> removals;
    std::vector<FileChange> copies;
    std::size_t unchanged = 0;
    std::size_t recorded = 0;
    std::size_t deferred = 0;  // removals left out, since they are more than half of what is recorded
};

[[nodiscard]] FilePlan PlanCategory(const PlanInput& input, const PhoneView& phone);

}  // namespace kesta
