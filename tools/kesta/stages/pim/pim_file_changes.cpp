#include "stages/pim/pim_file_changes.h"

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <unordered_map>

#include "os/local_time.h"
#include "sync/compare.h"

namespace kesta {
namespace {

// The contents of all entries that a run has to do with, by their ids. Gathered when they are first asked for.
class EntryContents {
public:
    explicit EntryContents(const PimWork& work) : work_(work) {}

    [[nodiscard]] std::string titleOf(const std::string& id)
    {
        if (contents_.empty()) {
            gather();
        }
        const auto found = contents_.find(id);
        const std::string title = found == contents_.end() ? std::string() : TitleOfEntry(work_.kind, *found->second);
        return title.empty() ? id : title;
    }

private:
    void gather()
    {
        for (const StoredPimFolder& folder : work_.stored) {
            for (const PimEntry& entry : folder.entries) {
                contents_[entry.id] = &entry.bytes;
            }
        }
        for (const PimStorePlan& folder : work_.store.folders) {
            for (const PlannedPimEntry& planned : folder.entries) {
                contents_[planned.entry.id] = &planned.entry.bytes;
            }
        }
    }

    const PimWork& work_;
    std::unordered_map<std::string, const std::string*> contents_;
};

// What the log says now against what it is going to say.
struct LogRules : CompareRules {
    static std::string_view key(const PimLogRow& row) { return row.guid; }
    static bool isSame(const PimLogRow& before, const PimLogRow& after)
    {
        return FromLuid(before.luid).digest == FromLuid(after.luid).digest;
    }
};

// What happens to which entry of the file.
std::vector<std::string> EntriesOf(EntryContents& contents, const PimPhonePlan& file)
{
    std::vector<std::string> entries;
    const auto tell = [&](const Verb& verb, const std::string& id) {
        entries.push_back(fmt::format("{:<9} {}", verb.planned, contents.titleOf(id)));
    };
    static const std::vector<PimLogRow> kNone;
    const auto diff = Compare(file.oldRows, file.action == PimFileAction::kRemove ? kNone : file.rows, LogRules());
    for (const auto& item : diff.items) {
        if (item.state != Comparison::kSame) {
            tell(item.state == Comparison::kNew ? kAdded : kUpdated, item.wanted->guid);
        }
    }
    std::set<std::string> removed;
    for (const PimLogRow* row : diff.removed) {
        removed.insert(row->guid);
    }
    for (const std::string& id : removed) {
        tell(kRemoved, id);
    }
    return entries;
}

}  // namespace

void AddPimFileChanges(PimWork& work, Tally& tally, const PhoneFolder& phone, Plan& plan)
{
    const auto contents = std::make_shared<EntryContents>(work);
    for (PimPhonePlan& file : work.phone.files) {
        Change change;
        change.tally = &tally;
        change.counts = {file.added, file.updated, 0, file.removed, file.unchanged, 0};
        file.isDone = file.action == PimFileAction::kKeep;
        if (file.action == PimFileAction::kKeep) {
            tally += change.counts;
            continue;
        }
        change.phonePath = file.phonePath;
        change.keepAs = file.keepAs;
        change.subject = file.phonePath.empty() ? file.sourcePath : file.phonePath;
        change.entries = [contents, &file] { return EntriesOf(*contents, file); };
        switch (file.action) {
            case PimFileAction::kRemove:
                change.kind = ChangeKind::kRemove;
                change.verb = kRemoved;
                break;
            case PimFileAction::kWrite:
                change.kind = ChangeKind::kReplace;
                change.verb = kWritten;
                change.size = file.text.size();
                change.text = std::move(file.text);
                break;
            default:
                change.kind = ChangeKind::kAdopt;
                change.verb = kRecorded;
        }
        // Without the file's time the next run looks into the file.
        change.record = [&phone, &file](const Written& written) {
            std::optional<LocalTime> modified = written.modified;
            os::FileInfo info;
            if (file.action == PimFileAction::kRecord && os::ReadInfo(phone.native(file.phonePath), info).ok()) {
                modified = os::ToLocalTime(info.modified.seconds);
            }
            for (PimLogRow& row : file.rows) {
                if (!row.phoneTime) {
                    row.phoneTime = modified;
                }
            }
            file.isDone = true;
        };
        plan.add(std::move(change));
    }
}

}  // namespace kesta
