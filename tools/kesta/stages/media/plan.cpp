#include "stages/media/plan.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "phone/names.h"
#include "stages/media/moves.h"
#include "stages/media/phone_names.h"
#include "sync/compare.h"

namespace kesta {
namespace {

// By their paths. Of a file that two chosen folders hold the innermost one is in charge.
std::vector<WantedFile> CollectFiles(const PlanInput& input)
{
    std::vector<const FolderScan*> folders = input.folders;
    std::stable_sort(folders.begin(), folders.end(),
                     [](const auto* a, const auto* b) { return a->path.size() > b->path.size(); });
    std::map<std::string_view, WantedFile> byPath;
    for (const FolderScan* folder : folders) {
        for (const ScannedFile& file : folder->files) {
            byPath.try_emplace(file.path, WantedFile{&file, folder});
        }
    }
    std::vector<WantedFile> wanted;
    wanted.reserve(byPath.size());
    for (const auto& [path, file] : byPath) {
        wanted.push_back(file);
    }
    return wanted;
}

// Takes what was moved out of what is wanted.
std::vector<MovedFile> TakeMoves(const PlanInput& input, const PhoneView& phone, std::vector<WantedFile>& wanted,
                                 MovedRecords& records)
{
    std::unordered_set<std::string_view> recorded;
    for (const RecordedFile& file : input.recorded) {
        recorded.insert(file.path);
    }
    if (std::all_of(wanted.begin(), wanted.end(),
                    [&](const WantedFile& file) { return recorded.contains(file.file->path); })) {
        return {};
    }
    PhonePaths paths(std::string(PhoneFolderOf(input.category)), phone);
    std::vector<MovedFile> moves = FindMoves(input, wanted, ReservePaths(input.recorded, {}, {}, paths), phone);
    std::unordered_set<const ScannedFile*> files;
    for (const MovedFile& move : moves) {
        records.insert(move.record);
        files.insert(move.now.file);
    }
    std::erase_if(wanted, [&](const WantedFile& file) { return files.contains(file.file); });
    return moves;
}

class FileRules : public CompareRules {
public:
    FileRules(const PlanInput& input, const MovedRecords& moved) : input_(input), moved_(moved)
    {
        for (const FolderScan* folder : input.folders) {
            if (folder->complete) {
                completeFolders_.push_back(folder);
            }
        }
    }

    [[nodiscard]] static std::string_view key(const RecordedFile& file) { return file.path; }
    [[nodiscard]] static std::string_view key(const WantedFile& file) { return file.file->path; }
    [[nodiscard]] static bool isSame(const RecordedFile& recorded, const WantedFile& wanted)
    {
        return recorded.modified == wanted.file->localTime;
    }
    // Only what lay in a folder that was read to its end can be told to be gone. It may have been chosen by the name of
    // another folder, above or below.
    [[nodiscard]] bool isGone(const RecordedFile& file) const
    {
        if (moved_.contains(&file)) {
            return false;
        }
        return std::any_of(completeFolders_.begin(), completeFolders_.end(), [&](const FolderScan* folder) {
            if (file.basePath != folder->path && !os::LiesIn(file.path, folder->path)) {
                return false;
            }
            if (isLeftOut(file, *folder)) {
                return false;
            }
            return std::none_of(folder->problems.begin(), folder->problems.end(),
                                [&](const ScanProblem& problem) { return os::LiesIn(file.path, problem.path); });
        });
    }

    [[nodiscard]] bool defers(size_t removals) const
    {
        return input_.guard.defers(std::string(KeyOf(input_.category)), removals, input_.recorded.size());
    }

private:
    // What was synced before a rule left it out is not looked for, so it cannot be told to be gone.
    static bool isLeftOut(const RecordedFile& file, const FolderScan& folder)
    {
        return folder.filter && file.path != folder.path && os::LiesIn(file.path, folder.path) &&
               folder.filter->leftOut(RelativeTo(folder.path, file.path));
    }

    const PlanInput& input_;
    const MovedRecords& moved_;
    std::vector<const FolderScan*> completeFolders_;
};

using FileDiff = Diff<RecordedFile, WantedFile>;

PcFile ToPcFile(const ScannedFile& file)
{
    return {file.path, file.size, file.modified.seconds, file.localTime, file.modified.nanoseconds};
}

// The database keeps local times, which a journey changes.
bool IsInOtherTimeZone(const RecordedFile& record, const PcFile& pc)
{
    return record.modified && pc.localTime && IsZoneDifference((*record.modified - *pc.localTime).count());
}

// The guard looks at each chosen folder, too, and not at the category alone: a folder that would lose most of its files
// keeps them. One that is there but empty may be a disk that is not mounted.
class FolderGuard {
public:
    explicit FolderGuard(const PlanInput& input) : input_(input)
    {
        for (const FolderScan* folder : input.folders) {
            if (folder->complete && folder->files.empty()) {
                emptyFolders_.push_back(folder->path);
            }
            for (const std::string& inside : folder->emptyFolders) {
                if (heldSeveral(inside)) {
                    emptyFolders_.push_back(inside);
                }
            }
        }
    }

    void run(FileDiff& diff, std::vector<DeferredFolder>& deferredFolders)
    {
        count(diff);
        std::set<std::string_view> deferred;
        for (const auto& [path, folder] : folders_) {
            if (input_.guard.defers(std::string(KeyOf(input_.category)) + ' ' + path, folder.gone, folder.recorded)) {
                deferred.insert(path);
                deferredFolders.push_back({path, folder.gone, folder.recorded});
            }
        }
        std::erase_if(diff.removed, [&](const RecordedFile* file) {
            const bool waits = deferred.contains(folderOf(*file));
            if (waits) {
                diff.deferred.push_back(file);
            }
            return waits;
        });
    }

private:
    struct Folder {
        size_t gone = 0, recorded = 0;
    };

    // Of the folders of which this run can tell what is gone.
    void count(const FileDiff& diff)
    {
        for (const auto& item : diff.items) {
            if (item.recorded != nullptr) {
                ++folders_[folderOf(*item.recorded)].recorded;
            }
        }
        for (const auto* files : {&diff.removed, &diff.deferred}) {
            for (const RecordedFile* file : *files) {
                Folder& folder = folders_[folderOf(*file)];
                ++folder.recorded;
                ++folder.gone;
            }
        }
    }

    [[nodiscard]] const std::string& folderOf(const RecordedFile& file) const
    {
        const auto empty = std::find_if(emptyFolders_.begin(), emptyFolders_.end(),
                                        [&](const std::string& folder) { return os::LiesIn(file.path, folder); });
        return empty == emptyFolders_.end() ? file.basePath : *empty;
    }

    // The last file of a folder is often removed without the folder.
    [[nodiscard]] bool heldSeveral(const std::string& folder) const
    {
        return std::count_if(input_.recorded.begin(), input_.recorded.end(),
                             [&](const RecordedFile& file) { return os::LiesIn(file.path, folder); }) > 1;
    }

    const PlanInput& input_;
    std::vector<std::string> emptyFolders_;
    std::map<std::string, Folder> folders_;
};

}  // namespace

PlacedFiles ReservePaths(const std::vector<RecordedFile>& recorded, const std::vector<const RecordedFile*>& removed,
                         const std::vector<const RecordedFile*>& deferred, PhonePaths& paths)
{
    PlacedFiles placed;
    const auto place = [&](const RecordedFile* file) {
        if (paths.reserve(file->phonePath)) {
            placed.insert(file);
        }
    };
    std::unordered_set<const RecordedFile*> later(removed.begin(), removed.end());
    later.insert(deferred.begin(), deferred.end());
    for (const RecordedFile& file : recorded) {
        if (!later.contains(&file)) {
            place(&file);
        }
    }
    std::for_each(deferred.begin(), deferred.end(), place);
    return placed;
}

std::optional<FileChange> PlanFile(const ComparedFile& file, Category category, const std::string& basePath,
                                   const PhoneChanges& changes, PhonePaths& paths, const Allocate& allocate)
{
    const PcFile& pc = file.pc;
    FileChange change{ChangeKind::kPut, category, {pc.path, basePath, {}, pc.localTime}, pc.size, {}};
    if (file.record != nullptr) {
        const RecordedFile& record = *file.record;
        const bool isChanged = changes.isChanged(record.phonePath, file.there, record.modified, &pc);
        const bool isSameSize = file.there.entry == PhoneEntry::kFile && file.there.size == pc.size;
        if (isSameSize && !isChanged && file.state == Comparison::kSame && !changes.isPcChanged(record.phonePath, pc)) {
            changes.notePc(record.phonePath, file.there, pc);
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
    FilePlan plan{.category = input.category};
    std::vector<WantedFile> wanted = CollectFiles(input);
    MovedRecords movedRecords;
    const std::vector<MovedFile> moves = TakeMoves(input, phone, wanted, movedRecords);
    plan.foldersMoved = FoldersMoved(input, moves);
    FileDiff diff = Compare(input.recorded, wanted, FileRules(input, movedRecords));
    FolderGuard(input).run(diff, plan.deferredFolders);
    plan.recorded = input.recorded.size();
    plan.deferred = diff.deferred.size();

    PhoneNames names(input.category, phone);
    const PlacedFiles placed = ReservePaths(input.recorded, diff.removed, diff.deferred, names);
    std::vector<ComparedFile> compared;
    compared.reserve(diff.items.size());
    for (const auto& item : diff.items) {
        ComparedFile& file = compared.emplace_back();
        file.pc = ToPcFile(*item.wanted->file);
        file.state = item.state;
        file.record = item.recorded;
        if (placed.contains(item.recorded)) {
            file.there = phone.find(item.recorded->phonePath);
            input.changes.learn(file.there, item.recorded->modified, file.pc);
        }
    }
    for (const RecordedFile* file : diff.removed) {
        FileChange change{ChangeKind::kRemove, input.category, *file, 0, {}};
        std::string& phonePath = change.file.phonePath;
        if (!names.mayBeRemoved(phonePath)) {
            phonePath.clear();
        } else {
            if (input.changes.isChanged(phonePath, phone.find(phonePath), file->modified, nullptr)) {
                change.keepAs = names.allocateBeside(phonePath);
            }
            names.release(phonePath);
        }
        plan.removals.push_back(std::move(change));
    }
    names.chooseRoots(input, movedRecords);
    for (const MovedFile& move : moves) {
        const ScannedFile& file = *move.now.file;
        FileChange change{ChangeKind::kMove,
                          input.category,
                          {file.path, move.now.folder->path, {}, file.localTime},
                          file.size,
                          {},
                          move.record->path,
                          move.record->phonePath};
        change.file.phonePath = names.allocateMoved(move.now.folder->path, file, move.record->phonePath);
        plan.moves.push_back(std::move(change));
    }

    for (size_t i = 0; i < compared.size(); ++i) {
        const auto& [scanned, folder] = *diff.items[i].wanted;
        const auto allocate = [&, scanned = scanned, folder = folder] {
            return names.allocate(folder->path, *scanned);
        };
        if (auto change = PlanFile(compared[i], input.category, folder->path, input.changes, names, allocate)) {
            plan.copies.push_back(*std::move(change));
        } else {
            ++plan.unchanged;
        }
    }
    return plan;
}

}  // namespace kesta
