#include "stages/media/plan.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "phone/names.h"
#include "stages/media/phone_names.h"

namespace kesta {
namespace {

struct Wanted {
    const ScannedFile* file;
    const FolderScan* folder;
};

// Of a file that two chosen folders hold the innermost one is in charge.
std::map<std::string, Wanted> CollectFiles(const PlanInput& input)
{
    std::vector<const FolderScan*> folders = input.folders;
    std::stable_sort(folders.begin(), folders.end(),
                     [](const auto* a, const auto* b) { return a->path.size() > b->path.size(); });
    std::map<std::string, Wanted> wanted;
    for (const FolderScan* folder : folders) {
        for (const ScannedFile& file : folder->files) {
            wanted.try_emplace(file.path, Wanted{&file, folder});
        }
    }
    return wanted;
}

class GoneFiles {
public:
    explicit GoneFiles(const PlanInput& input)
    {
        for (const FolderScan* folder : input.folders) {
            if (folder->complete) {
                completeFolders_.push_back(folder);
            }
        }
    }

    // Only what lay in a folder that was read to its end can be told to be gone. It may have been chosen by the name of
    // another folder, above or below.
    [[nodiscard]] bool isGone(const RecordedFile& file) const
    {
        return std::any_of(completeFolders_.begin(), completeFolders_.end(), [&](const FolderScan* folder) {
            if (file.basePath != folder->path && !os::LiesIn(file.path, folder->path)) {
                return false;
            }
            return std::none_of(folder->problems.begin(), folder->problems.end(),
                                [&](const ScanProblem& problem) { return os::LiesIn(file.path, problem.path); });
        });
    }

private:
    std::vector<const FolderScan*> completeFolders_;
};

PcFile ToPcFile(const ScannedFile& file)
{
    return {file.path, file.size, file.modified.seconds, file.localTime};
}

// The database keeps local times, which a journey changes.
bool IsInOtherTimeZone(const RecordedFile& record, const PcFile& pc)
{
    return record.modified && pc.localTime && IsZoneDifference(*record.modified - *pc.localTime);
}

// Sorts out the removals that wait: all of them where they are most of the category's files, else those of a chosen
// folder that would lose most of its own. One that is there but empty may be a disk that is not mounted.
class Deferral {
public:
    explicit Deferral(const PlanInput& input) : input_(input)
    {
        for (const FolderScan* folder : input.folders) {
            if (folder->complete && folder->files.empty()) {
                emptyFolders_.push_back(folder->path);
            }
        }
    }

    void countStaying(const RecordedFile& file) { ++folders_[folderOf(file)].recorded; }
    void countLeaving(const RecordedFile& file)
    {
        Folder& folder = folders_[folderOf(file)];
        ++folder.recorded;
        ++folder.leaving;
        ++leaving_;
    }

    // Once all are counted.
    void decide(FilePlan& plan)
    {
        const std::string category(KeyOf(input_.category));
        areAllDeferred_ = input_.guard.defers(category, leaving_, plan.recorded);
        for (auto& [path, folder] : folders_) {
            folder.isDeferred = input_.guard.defers(category + ' ' + path, folder.leaving, folder.recorded);
            if (folder.isDeferred) {
                plan.deferredFolders.push_back({path, folder.leaving, folder.recorded});
            }
        }
    }

    [[nodiscard]] bool isDeferred(const RecordedFile& file) const
    {
        return areAllDeferred_ || folders_.at(folderOf(file)).isDeferred;
    }

private:
    struct Folder {
        size_t leaving = 0, recorded = 0;
        bool isDeferred = false;
    };

    [[nodiscard]] const std::string& folderOf(const RecordedFile& file) const
    {
        const auto empty = std::find_if(emptyFolders_.begin(), emptyFolders_.end(),
                                        [&](const std::string& folder) { return os::LiesIn(file.path, folder); });
        return empty == emptyFolders_.end() ? file.basePath : *empty;
    }

    const PlanInput& input_;
    std::vector<std::string> emptyFolders_;
    std::map<std::string, Folder> folders_;  // of which this run can tell what is gone
    size_t leaving_ = 0;
    bool areAllDeferred_ = false;
};

}  // namespace

std::optional<FileChange> CompareFile(const ComparedFile& file, Category category, const std::string& basePath,
                                      const PhoneChanges& changes, PhonePaths& paths, const Allocate& allocate)
{
    const PcFile& pc = file.pc;
    FileChange change{ChangeKind::kPut, category, {pc.path, basePath, {}, pc.localTime}, pc.size, {}};
    if (file.record != nullptr) {
        const RecordedFile& record = *file.record;
        const bool isChanged = changes.isChanged(record.phonePath, file.there, record.modified, &pc);
        const bool isSameSize = file.there.entry == PhoneEntry::kFile && file.there.size == pc.size;
        if (isSameSize && !isChanged && record.modified == pc.localTime) {
            return std::nullopt;
        }
        const bool isOnlyTimeZone = isSameSize && !isChanged && IsInOtherTimeZone(record, pc) &&
                                    IsSameFile(file.there, pc.size, pc.modifiedSeconds);
        change.kind = isOnlyTimeZone ? ChangeKind::kRecord : ChangeKind::kReplace;
        change.file.basePath = record.basePath;
        if (file.there.entry != PhoneEntry::kOther) {
            change.file.phonePath = record.phonePath;
        }
        if (isChanged) {
            change.keepAs = paths.allocateBeside(record.phonePath);
        }
    }
    if (change.file.phonePath.empty()) {
        const auto found = allocate();
        change.file.phonePath = found.phonePath;
        if (found.sameFileIsThere && file.record == nullptr) {
            change.kind = ChangeKind::kAdopt;
        }
    }
    return change;
}

FilePlan PlanCategory(const PlanInput& input, const PhoneView& phone)
{
    FilePlan plan;
    plan.recorded = input.recorded.size();
    const auto wanted = CollectFiles(input);

    const GoneFiles gone(input);
    std::vector<const RecordedFile*> staying, leaving;
    Deferral deferral(input);
    for (const RecordedFile& file : input.recorded) {
        if (wanted.contains(file.path)) {
            deferral.countStaying(file);
            staying.push_back(&file);
        } else if (gone.isGone(file)) {
            deferral.countLeaving(file);
            leaving.push_back(&file);
        } else {
            staying.push_back(&file);
        }
    }
    deferral.decide(plan);
    std::erase_if(leaving, [&](const RecordedFile* file) {
        const bool waits = deferral.isDeferred(*file);
        if (waits) {
            ++plan.deferred;
            staying.push_back(file);
        }
        return waits;
    });

    PhoneNames names(input.category, phone);
    std::unordered_map<std::string, const RecordedFile*> recorded;
    std::unordered_set<std::string> misplaced;  // recorded in a place that is not theirs
    for (const RecordedFile* file : staying) {
        recorded.emplace(file->path, file);
        if (!IsPhonePath(file->phonePath, input.category) || !names.reserve(file->phonePath)) {
            misplaced.insert(file->path);
        }
    }
    std::vector<std::pair<ComparedFile, Wanted>> compared;
    compared.reserve(wanted.size());
    for (const auto& [path, source] : wanted) {
        ComparedFile file{ToPcFile(*source.file)};
        if (const auto known = recorded.find(path); known != recorded.end()) {
            file.record = known->second;
            if (!misplaced.contains(path)) {
                file.there = phone.find(known->second->phonePath);
                input.changes.learn(file.there, file.record->modified, file.pc);
            }
        }
        compared.emplace_back(std::move(file), source);
    }
    for (const RecordedFile* file : leaving) {
        FileChange action{ChangeKind::kRemove, input.category, *file, 0, {}};
        if (!IsPhonePath(file->phonePath, input.category) || names.isReserved(file->phonePath)) {
            action.file.phonePath.clear();
        } else {
            if (input.changes.isChanged(file->phonePath, phone.find(file->phonePath), file->modified, nullptr)) {
                action.keepAs = names.allocateBeside(file->phonePath);
            }
            names.release(file->phonePath);
        }
        plan.removals.push_back(std::move(action));
    }
    names.chooseRoots(input);

    for (const auto& [file, source] : compared) {
        const auto& [scanned, folder] = source;
        const auto allocate = [&, scanned = scanned, folder = folder] {
            return names.allocate(folder->path, *scanned);
        };
        if (auto change = CompareFile(file, input.category, folder->path, input.changes, names, allocate)) {
            plan.copies.push_back(*std::move(change));
        } else {
            ++plan.unchanged;
        }
    }
    return plan;
}

}  // namespace kesta
