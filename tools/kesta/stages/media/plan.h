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

namespace kesta {

enum class ActionKind {
    kCopy,    // new: copy, then record
    kUpdate,  // changed, or not as recorded on the phone: copy again, then record
    kAdopt,   // lies on the phone already, of the same size and time: only record
    kRemove   // gone from the PC: remove from the phone, then from the database
};

struct Action {
    ActionKind kind = ActionKind::kCopy;
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

struct CategoryPlan {
    std::vector<Action> removals;
    std::vector<Action> copies;
    std::size_t unchanged = 0;
    std::size_t recorded = 0;
    std::size_t deferred = 0;  // removals left out, since they are more than half of what is recorded
};

[[nodiscard]] CategoryPlan PlanCategory(const PlanInput& input, const PhoneView& phone);

}  // namespace kesta
