#include "stages/pim/pim_store_plan.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string_view>

#include "phone/unique_name.h"
#include "sync/compare.h"

namespace kesta {
namespace {

// Gives folders paths that no other one has, not even where case is ignored, and that can be file names on any phone.
class FolderPaths {
public:
    explicit FolderPaths(const PimStoreInput& input) : kind_(input.kind)
    {
        for (const StoredPimFolder& known : input.known) {
            taken_.insert(CaseKey(known.folder.path));
        }
    }

    [[nodiscard]] std::string allocate(const std::string& name, const std::string& id)
    {
        const std::string wish = SafeName(name + std::string(ExtensionOf(kind_)));
        std::string path;
        (void)UniqueName(wish, id, [&](const std::string& fileName) {
            const auto length = fileName.size() - ExtensionOf(kind_).size();
            path = fmt::format("{}/{}", TitleOf(kind_), fileName.substr(0, length));
            return taken_.insert(CaseKey(path)).second;
        });
        return path;
    }

private:
    PimKind kind_;
    std::set<std::string> taken_;
};

// Only what a file that was read to its end does not hold can be told to be gone.
class EntryRules : public CompareRules {
public:
    EntryRules(DeletionGuard& guard, const PimStorePlan& plan, size_t known) : guard_(guard), plan_(plan), known_(known)
    {
    }
    [[nodiscard]] static std::string_view key(const PimEntry& entry) { return entry.id; }
    [[nodiscard]] static bool isSame(const PimEntry& known, const PimEntry& wanted)
    {
        return known.digest == wanted.digest;
    }
    [[nodiscard]] bool isGone(const PimEntry& /*known*/) const { return plan_.source->complete; }
    [[nodiscard]] bool defers(size_t removals) const
    {
        return plan_.source->complete && !plan_.source->isMoved &&
               guard_.defers("store " + plan_.folder.id, removals, known_);
    }

private:
    DeletionGuard& guard_;
    const PimStorePlan& plan_;
    size_t known_;
};

class StorePlanner {
public:
    explicit StorePlanner(const PimStoreInput& input) : input_(input), paths_(input)
    {
        for (const StoredPimFolder& folder : input.known) {
            known_.emplace(folder.folder.id, &folder);
        }
        folderCount_ = known_.size();
    }

    PimStorePlans run() &&
    {
        for (const PimSource& source : input_.sources) {
            if (source.readable) {
                take(source);
            }
        }
        return std::move(result_);
    }

private:
    void take(const PimSource& source)
    {
        std::set<std::string> seen;
        for (const PimSourceFolder& folder : source.folders) {
            seen.insert(folder.id);
            takeFolder(source, folder);
        }
        for (const StoredPimFolder& known : input_.known) {
            if (IsOfPimSource(known.folder.id, source.id) && !seen.contains(known.folder.id)) {
                takeFolder(source, {known.folder.id, {}, {}});
            }
        }
    }

    void takeFolder(const PimSource& source, const PimSourceFolder& wanted)
    {
        static const StoredPimFolder kNothing{};
        const auto found = known_.find(wanted.id);
        const StoredPimFolder& known = found == known_.end() ? kNothing : *found->second;
        PimStorePlan plan;
        plan.source = &source;
        plan.isNew = found == known_.end();
        plan.folder = known.folder;
        if (plan.isNew) {
            if (wanted.entries.empty()) {
                return;
            }
            if (folderCount_ >= input_.folderLimit) {
                return refuse(source, wanted);
            }
            ++folderCount_;
            plan.folder = {wanted.id, PimRootFolder(input_.kind).id, paths_.allocate(wanted.name, wanted.id),
                           TypeOf(input_.kind)};
        }
        planEntries(known.entries, wanted.entries, plan);
        plan.isObsolete = !plan.isNew && source.complete && plan.entries.empty();
        result_.folders.push_back(std::move(plan));
    }

    void refuse(const PimSource& source, const PimSourceFolder& wanted)
    {
        result_.refusedFolders.insert(wanted.id);
        result_.refusals.push_back(
            {source.path, fmt::format("the database has no room for '{}': they take {} folders of {}", wanted.name,
                                      input_.folderLimit, KeyOf(input_.kind))});
    }

    void planEntries(const std::vector<PimEntry>& known, const std::vector<PimEntry>& wanted, PimStorePlan& plan)
    {
        const auto diff = Compare(known, wanted, EntryRules(input_.guard, plan, known.size()));
        size_t leftOut = 0, room = input_.itemLimit - std::min(input_.itemLimit, known.size());
        for (const auto& item : diff.items) {
            if (item.state == Comparison::kNew && room == 0) {
                ++leftOut;
                continue;
            }
            room -= item.state == Comparison::kNew ? 1u : 0u;
            plan.entries.push_back({*item.wanted, item.state});
            if (item.state == Comparison::kSame) {
                plan.entries.back().entry = *item.recorded;
                plan.entries.back().entry.modified = item.wanted->modified;
            }
        }
        if (leftOut > 0) {
            result_.refusals.push_back(
                {plan.source->path, fmt::format("{} of its entries are left out: the database takes {} in a folder",
                                                leftOut, input_.itemLimit)});
        }
        keep(diff.kept, false, plan);
        keep(diff.deferred, true, plan);
        for (const PimEntry* entry : diff.removed) {
            plan.removed.push_back(entry->id);
        }
        std::sort(plan.removed.begin(), plan.removed.end());
    }

    // In the same order in every run.
    static void keep(std::vector<const PimEntry*> entries, bool areDeferred, PimStorePlan& plan)
    {
        std::sort(entries.begin(), entries.end(), [](const auto* a, const auto* b) { return a->id < b->id; });
        for (const PimEntry* entry : entries) {
            plan.entries.push_back({*entry, Comparison::kSame, areDeferred});
        }
        plan.deferred += areDeferred ? entries.size() : 0;
    }

    const PimStoreInput& input_;
    FolderPaths paths_;
    std::map<std::string, const StoredPimFolder*> known_;
    size_t folderCount_ = 0;
    PimStorePlans result_;
};

}  // namespace

PimFolder PimRootFolder(PimKind kind)
{
    return {std::string(KeyOf(kind)), {}, std::string(TitleOf(kind)), TypeOf(kind)};
}

PimStorePlans PlanPimStore(const PimStoreInput& input)
{
    return StorePlanner(input).run();
}

}  // namespace kesta
