#include "stages/pim/pim_phone_plan.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "os/local_time.h"
#include "phone/phone_paths.h"
#include "phone/unique_name.h"
#include "stages/pim/pim_text.h"
#include "sync/compare.h"

namespace kesta {
namespace {

// The files' paths on this phone. Each keeps the one that the log knows.
class FileNames {
public:
    FileNames(const PimPhoneInput& input, const Phone& phone)
        : input_(input), phone_(phone), folder_(TitleOf(input.kind))
    {
        for (std::string& name : phone.names(folder_)) {
            names_.emplace(PimFileDigest(name), std::move(name));
        }
        for (const PimLogRow& row : input.log) {
            if (const auto name = names_.find(FromLuid(row.luid).file); name != names_.end()) {
                taken_.insert(CaseKey(name->second));
            }
        }
    }

    /// Where the recorded file lies; std::nullopt when it is not there.
    [[nodiscard]] std::optional<std::string> find(const std::string& fileDigest) const
    {
        const auto name = names_.find(fileDigest);
        if (name == names_.end()) {
            return std::nullopt;
        }
        return fmt::format("{}/{}", folder_, name->second);
    }

    /// A place for a file that is not where it is recorded. The same in every run, as long as nobody else takes it.
    [[nodiscard]] std::string allocate(const PimFolder& folder, const std::string& text)
    {
        const std::string wish =
            SafeName(folder.path.substr(folder.path.rfind('/') + 1) + std::string(ExtensionOf(input_.kind)));
        std::string path;
        (void)UniqueName(wish, folder.id, [&](const std::string& name) {
            path = fmt::format("{}/{}", folder_, name);
            return !taken_.contains(CaseKey(name)) && isFree(path, text) && taken_.insert(CaseKey(name)).second;
        });
        return path;
    }

    [[nodiscard]] std::string allocateBeside(const std::string& phonePath)
    {
        return KeptPath(phonePath, [&](const std::string& path) {
            const std::string name = path.substr(folder_.size() + 1);
            return !taken_.contains(CaseKey(name)) && phone_.find(path).entry == PhoneEntry::kNothing &&
                   taken_.insert(CaseKey(name)).second;
        });
    }

private:
    [[nodiscard]] bool isFree(const std::string& place, const std::string& text) const
    {
        const PhoneFile there = phone_.find(place);
        if (there.entry == PhoneEntry::kNothing) {
            return true;
        }
        if (there.entry != PhoneEntry::kFile) {
            return false;
        }
        return input_.owned.contains(place) || (there.size == text.size() && phone_.holds(place, text));
    }

    const PimPhoneInput& input_;
    const Phone& phone_;
    std::string folder_;
    std::map<std::string, std::string> names_;  // by PimFileDigest
    std::set<std::string> taken_;               // case keys
};

// What the log says against what the store holds. The guard is asked about the file as a whole.
struct RowRules : CompareRules {
    static std::string_view key(const PimLogRow& row) { return row.guid; }
    static std::string_view key(const PlannedPimEntry& planned) { return planned.entry.id; }
    static bool isSame(const PimLogRow& row, const PlannedPimEntry& planned)
    {
        return FromLuid(row.luid).digest == planned.entry.digest;
    }
};

class PhonePlanner {
public:
    PhonePlanner(const PimPhoneInput& input, const Phone& phone) : input_(input), phone_(phone), names_(input, phone) {}

    PimPhonePlans run() &&
    {
        for (const PimLogRow& row : input_.log) {
            const std::string folder = FolderOfPimEntry(input_.kind, row.guid);
            if (sourceOf(folder) == nullptr || input_.store.refusedFolders.contains(folder)) {
                result_.others.push_back(row);
            } else {
                rows_[folder].push_back(row);
            }
        }
        for (const PimStorePlan& folder : input_.store.folders) {
            plan(*folder.source, folder);
            rows_.erase(folder.folder.id);
        }
        // Folders that were removed from the store for another phone.
        for (const auto& [id, rows] : rows_) {
            PimStorePlan gone;
            gone.folder.id = id;
            plan(*sourceOf(id), gone);
        }
        return std::move(result_);
    }

private:
    [[nodiscard]] const PimSource* sourceOf(const std::string& folderId) const
    {
        for (const PimSource& source : input_.sources) {
            if (source.readable && IsOfPimSource(folderId, source.id)) {
                return &source;
            }
        }
        return nullptr;
    }

    void plan(const PimSource& source, const PimStorePlan& folder)
    {
        PimPhonePlan plan;
        plan.sourcePath = source.path;
        const auto rows = rows_.find(folder.folder.id);
        if (rows != rows_.end()) {
            plan.oldRows = rows->second;
        }
        if (folder.entries.empty() && plan.oldRows.empty()) {
            return;
        }
        compare(folder, plan);
        const bool areTooMany = source.complete && !source.isMoved &&
                                input_.guard.defers("phone " + folder.folder.id, plan.removed, plan.oldRows.size());
        if (plan.removed > 0 && (areTooMany || !source.complete)) {
            leaveAlone(source, plan);
        } else if (folder.entries.empty()) {
            plan.action = PimFileAction::kRemove;
            plan.phonePath = recordedPlace(plan).value_or(std::string());
            keepChanges(plan);
        } else {
            planFile(folder, plan);
        }
        result_.files.push_back(std::move(plan));
    }

    // Counts, and makes a row for each entry; where it lies follows with the file.
    static void compare(const PimStorePlan& folder, PimPhonePlan& plan)
    {
        const auto diff = Compare(plan.oldRows, folder.entries, RowRules());
        for (const auto& item : diff.items) {
            const auto& [entry, state, isDeferred] = *item.wanted;
            if (item.state == Comparison::kSame) {
                plan.unchanged += isDeferred ? 0u : 1u;
                plan.rows.push_back(*item.recorded);
            } else {
                ++(item.state == Comparison::kNew ? plan.added : plan.updated);
                plan.rows.push_back({entry.id, {}, entry.modified, std::nullopt});
            }
        }
        plan.removed = diff.removed.size();
    }

    static void leaveAlone(const PimSource& source, PimPhonePlan& plan)
    {
        plan.waitsForSource = !source.complete;
        plan.deferred = source.complete ? plan.removed : 0;
        plan.added = plan.updated = plan.removed = 0;
        plan.rows = plan.oldRows;
    }

    [[nodiscard]] std::optional<std::string> recordedPlace(const PimPhonePlan& plan) const
    {
        return plan.oldRows.empty() ? std::nullopt : names_.find(FromLuid(plan.oldRows.front().luid).file);
    }

    void planFile(const PimStorePlan& folder, PimPhonePlan& plan)
    {
        const std::string name = folder.folder.path.substr(folder.folder.path.rfind('/') + 1);
        std::vector<std::string_view> contents;
        contents.reserve(folder.entries.size());
        for (const PlannedPimEntry& planned : folder.entries) {
            contents.push_back(planned.entry.bytes);
        }
        plan.text = PhoneFileText(input_.kind, name, contents);
        const auto recorded = recordedPlace(plan);
        plan.phonePath = recorded ? *recorded : names_.allocate(folder.folder, plan.text);
        const PhoneFile there = phone_.find(plan.phonePath);
        const bool isAsRecorded = recorded && isSameTime(there, plan.oldRows);
        const bool isChanged = plan.added + plan.updated + plan.removed > 0;
        if (!isChanged && isAsRecorded && there.entry == PhoneEntry::kFile && there.size == plan.text.size()) {
            return;
        }

        const bool holdsIt = there.entry == PhoneEntry::kFile && there.size == plan.text.size() &&
                             phone_.holds(plan.phonePath, plan.text);
        plan.action = holdsIt ? PimFileAction::kRecord : PimFileAction::kWrite;
        if (!holdsIt) {
            keepChanges(plan);
        }
        if (!isChanged && !holdsIt) {
            plan.updated = std::exchange(plan.unchanged, 0);  // all of them are written again
        }
        recordPlace(folder, !isAsRecorded, plan);
    }

    // A file that the last run was about to write may be the client's, whatever its time.
    void keepChanges(PimPhonePlan& plan)
    {
        if (plan.phonePath.empty() || input_.owned.contains(plan.phonePath)) {
            return;
        }
        std::optional<LocalTime> recorded;
        for (const PimLogRow& row : plan.oldRows) {
            recorded = std::max(recorded, row.phoneTime);
        }
        if (input_.changes.isChanged(plan.phonePath, phone_.find(plan.phonePath), recorded, nullptr)) {
            plan.keepAs = names_.allocateBeside(plan.phonePath);
        }
    }

    [[nodiscard]] static bool isSameTime(const PhoneFile& there, const std::vector<PimLogRow>& rows)
    {
        // The latest row was written with the file.
        std::optional<LocalTime> recorded;
        for (const PimLogRow& row : rows) {
            recorded = std::max(recorded, row.phoneTime);
        }
        const auto time = os::ToLocalTime(there.modifiedSeconds);
        return recorded && time && std::abs((*recorded - *time).count()) <= kPhoneTimeTolerance;
    }

    static void recordPlace(const PimStorePlan& folder, bool evenUnchangedRows, PimPhonePlan& plan)
    {
        const std::string file = PimFileDigest(plan.phonePath.substr(plan.phonePath.rfind('/') + 1));
        for (size_t i = 0; i < plan.rows.size(); ++i) {
            plan.rows[i].luid = ToLuid({file, folder.entries[i].entry.digest});
            if (evenUnchangedRows) {
                plan.rows[i].phoneTime.reset();
            }
        }
        // The latest row tells when the file was written.
        const bool isTimeToCome =
            std::any_of(plan.rows.begin(), plan.rows.end(), [](const PimLogRow& row) { return !row.phoneTime; });
        if (!isTimeToCome && !plan.rows.empty()) {
            plan.rows.front().phoneTime.reset();
        }
    }

    const PimPhoneInput& input_;
    const Phone& phone_;
    FileNames names_;
    std::map<std::string, std::vector<PimLogRow>> rows_;  // by folder
    PimPhonePlans result_;
};

}  // namespace

PimPhonePlans PlanPimPhone(const PimPhoneInput& input, const Phone& phone)
{
    return PhonePlanner(input, phone).run();
}

}  // namespace kesta
