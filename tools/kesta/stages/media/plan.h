// What a sync has to do for one category, from what is on the PC, in the database and on the phone. Changes nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "database/category.h"
#include "database/database.h"
#include "phone/phone_paths.h"
#include "phone/phone_view.h"
#include "stages/media/scan.h"
#include "sync/compare.h"
#include "sync/deletion_guard.h"
#include "sync/phone_changes.h"
#include "sync/plan.h"

namespace kesta {

struct FileChange {
    ChangeKind kind = ChangeKind::kPut;
    Category category = Category::kMusic;
    RecordedFile file;  // as it is to be recorded; an empty phonePath in a removal: only the database knows the file
    uint64_t size = 0;
    std::string keepAs;                     // for what somebody has changed on the phone
    std::string oldPath{}, oldPhonePath{};  // of a moved file
};

/// Where media sync puts the files of the PC, by their paths on the PC.
using MediaPhonePaths = std::unordered_map<std::string, std::string>;

struct PlanInput {
    Category category = Category::kMusic;
    std::vector<const FolderScan*> folders;  // the chosen ones that were found, in the user's order
    std::vector<RecordedFolder> known;       // all of the category
    std::vector<RecordedFile> recorded;      // all of the category
    DeletionGuard& guard;
    PhoneChanges& changes;
};

/// A chosen folder of which too much is gone at once.
struct DeferredFolder {
    std::string path;
    size_t gone = 0, recorded = 0;
};

struct FilePlan {
    Category category = Category::kMusic;
    std::vector<FileChange> removals{};
    std::vector<FileChange> moves{};
    std::vector<FileChange> copies{};
    size_t unchanged = 0;
    size_t recorded = 0;
    size_t deferred = 0;  // removals left out, since they are more than half of what is recorded
    std::vector<DeferredFolder> deferredFolders{};
    std::vector<std::string> foldersMoved{};  // known ones that the moves leave empty
};

/// The recorded files that have a phone path of their own, and keep it.
using PlacedFiles = std::unordered_set<const RecordedFile*>;

/// Reserves the phone paths of all files that stay. Where two have one, that of a deferred removal has the least right.
[[nodiscard]] PlacedFiles ReservePaths(const std::vector<RecordedFile>& recorded,
                                       const std::vector<const RecordedFile*>& removed,
                                       const std::vector<const RecordedFile*>& deferred, PhonePaths& paths);

/// A file of the PC beside its record, and how it is on the phone.
struct ComparedFile {
    PcFile pc;
    Comparison state = Comparison::kNew;
    const RecordedFile* record = nullptr;       // none: it is not recorded
    PhoneFile there{PhoneEntry::kOther, 0, 0};  // kOther: what is recorded cannot be this file's phone path
};

/// Gives a file a phone path. Called when it needs one.
using Allocate = std::function<PhonePaths::Allocated()>;

/// What is to be done for the file; std::nullopt when it is on the phone as it is on the PC. A file that is new is
/// recorded under basePath, any other one stays where it is. What was changed on the phone gets a path beside it.
[[nodiscard]] std::optional<FileChange> PlanFile(const ComparedFile& file, Category category,
                                                 const std::string& basePath, const PhoneChanges& changes,
                                                 PhonePaths& paths, const Allocate& allocate);

[[nodiscard]] FilePlan PlanCategory(const PlanInput& input, const PhoneView& phone);

}  // namespace kesta
