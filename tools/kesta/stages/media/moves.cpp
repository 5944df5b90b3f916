#include "stages/media/moves.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <unordered_set>

#include "os/files.h"
#include "phone/names.h"

namespace kesta {
namespace {

// Unpacked archives give thousands of files one time.
constexpr size_t kMostCompared = 4;

struct Candidate {
    const RecordedFile* record = nullptr;
    PhoneFile there;
    bool isTaken = false;
};

using TimeAndSize = std::pair<int64_t, uint64_t>;

class MoveFinder {
public:
    MoveFinder(const PlanInput& input, const std::vector<WantedFile>& wanted, const PlacedFiles& placed,
               const PhoneView& phone)
        : changes_(input.changes)
    {
        std::unordered_set<std::string_view> wantedPaths;
        std::unordered_set<int64_t> wantedTimes;
        for (const WantedFile& file : wanted) {
            wantedPaths.insert(file.file->path);
            if (file.file->localTime) {
                wantedTimes.insert(ToNumber(*file.file->localTime));
            }
        }
        for (const RecordedFile& record : input.recorded) {
            recordedPaths_.insert(record.path);
            const bool isInQuestion = placed.contains(&record) && record.modified && !wantedPaths.contains(record.path);
            if (!isInQuestion || !wantedTimes.contains(ToNumber(*record.modified)) || !os::IsMissing(record.path)) {
                continue;
            }
            const PhoneFile there = phone.find(record.phonePath);
            if (there.entry == PhoneEntry::kFile) {
                candidates_[{ToNumber(*record.modified), there.size}].push_back({&record, there});
            }
        }
    }

    // Null if the file is none that was moved.
    [[nodiscard]] const RecordedFile* find(const ScannedFile& file)
    {
        if (!file.localTime || file.size == 0 || recordedPaths_.contains(file.path)) {
            return nullptr;
        }
        const auto found = candidates_.find({ToNumber(*file.localTime), file.size});
        if (found == candidates_.end()) {
            return nullptr;
        }
        const PcFile pc{file.path, file.size, file.modified.seconds, file.localTime, file.modified.nanoseconds};
        std::vector<Candidate>& candidates = found->second;
        // A folder is moved more often than each of its files is renamed.
        const auto hasName = [&](const Candidate& candidate) {
            return os::NameOf(candidate.record->path) == os::NameOf(file.path);
        };
        // Files that were written together can have one time to the last digit: it tells the one of a name only.
        const bool isOnlyOne = std::count_if(candidates.begin(), candidates.end(), hasName) == 1;
        std::vector<Candidate*> inOrder;
        for (Candidate& candidate : candidates) {
            if (!candidate.isTaken) {
                inOrder.push_back(&candidate);
            }
        }
        std::stable_partition(inOrder.begin(), inOrder.end(), [&](const Candidate* one) { return hasName(*one); });
        for (size_t i = 0; i < inOrder.size() && i < kMostCompared; ++i) {
            if (isSame(*inOrder[i], pc, isOnlyOne && hasName(*inOrder[i]))) {
                inOrder[i]->isTaken = true;
                return inOrder[i]->record;
            }
        }
        return nullptr;
    }

private:
    [[nodiscard]] bool isSame(const Candidate& candidate, const PcFile& pc, bool isTimeEnough) const
    {
        const RecordedFile& record = *candidate.record;
        // Where only the case differs a phone may not tell the two names apart.
        return CaseKey(record.path) != CaseKey(pc.path) &&
               !changes_.isChanged(record.phonePath, candidate.there, record.modified, &pc) &&
               ((isTimeEnough && changes_.hasTimeOf(record.phonePath, pc)) || changes_.isCopyOf(record.phonePath, pc));
    }

    const PhoneChanges& changes_;
    std::unordered_set<std::string_view> recordedPaths_;
    std::map<TimeAndSize, std::vector<Candidate>> candidates_;
};

}  // namespace

std::vector<MovedFile> FindMoves(const PlanInput& input, const std::vector<WantedFile>& wanted,
                                 const PlacedFiles& placed, const PhoneView& phone)
{
    MoveFinder finder(input, wanted, placed, phone);
    std::vector<MovedFile> moves;
    for (const WantedFile& file : wanted) {
        if (const RecordedFile* record = finder.find(*file.file)) {
            moves.push_back({record, file});
        }
    }
    return moves;
}

std::vector<std::string> FoldersMoved(const PlanInput& input, const std::vector<MovedFile>& moves)
{
    std::map<std::string_view, size_t> leftIn;
    for (const RecordedFile& record : input.recorded) {
        ++leftIn[record.basePath];
    }
    std::unordered_set<std::string_view> movedFrom;
    for (const MovedFile& move : moves) {
        --leftIn[move.record->basePath];
        movedFrom.insert(move.record->basePath);
    }
    std::vector<std::string> folders;
    for (const RecordedFolder& folder : input.known) {
        if (movedFrom.contains(folder.path) && leftIn[folder.path] == 0 && os::IsMissing(folder.path)) {
            folders.push_back(folder.path);
        }
    }
    return folders;
}

}  // namespace kesta
