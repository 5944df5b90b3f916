#include "stages/pim/pim_store_plan.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <unordered_map>
#include <unordered_set>

#include "phone/unique_name.h"

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
        const auto place = known_.find(wanted.id);
        const StoredPimFolder& known = place == known_.end() ? kNothing : *place->second;
        PimStorePlan plan;
        plan.source = &source;
        plan.isNew = place == known_.end();
        plan.folder = known.folder;
        if (plan.isNew) {
            if (wanted.entries.empty()) {
                return;
            }
            if (folderCount_ >= input_.folderLimit) {
                return refuse(source, wanted);
            }
            ++folderCount_;
            plan.folder = {wanted.id, PimRootFolder(input_.kind).id, paths_.allocate(wanted.name, wanted.id)};
        }
        planEntries(known.entries, wanted.entries, plan);
        plan.isLeaving = !plan.isNew && source.complete && plan.entries.empty();
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
        std::unordered_map<std::string, const PimEntry*> stored;
        for (const PimEntry& entry : known) {
            stored.emplace(entry.id, &entry);
        }
        std::unordered_set<std::string> seen;
        size_t leftOut = 0, room = input_.itemLimit - std::min(input_.itemLimit, known.size());
        for (const PimEntry& entry : wanted) {
            const auto place = stored.find(entry.id);
            seen.insert(entry.id);
            if (place == stored.end()) {
                if (room == 0) {
                    ++leftOut;
                    continue;
                }
                --room;
                plan.added.push_back(plan.entries.size());
                plan.entries.push_back(entry);
            } else if (place->second->digest != entry.digest) {
                plan.updated.push_back(plan.entries.size());
                plan.entries.push_back(entry);
            } else {
                plan.entries.push_back(*place->second);
                plan.entries.back().modified = entry.modified;
            }
        }
        if (leftOut > 0) {
            result_.refusals.push_back(
                {plan.source->path, fmt::format("{} of its entries are left out: the database takes {} in a folder",
                                                leftOut, input_.itemLimit)});
        }
        planRemovals(known, seen, plan);
    }

    // Only what a file that was read to its end does not hold can be told to be gone.
    void planRemovals(const std::vector<PimEntry>& known, const std::unordered_set<std::string>& seen,
                      PimStorePlan& plan)
    {
        std::vector<const PimEntry*> leaving;
        for (const PimEntry& entry : known) {
            if (!seen.contains(entry.id)) {
                leaving.push_back(&entry);
            }
        }
        std::sort(leaving.begin(), leaving.end(), [](const auto* a, const auto* b) { return a->id < b->id; });
        const bool areTooMany =
            plan.source->complete && input_.guard.defers("store " + plan.folder.id, leaving.size(), known.size());
        for (const PimEntry* entry : leaving) {
            if (plan.source->complete && !areTooMany) {
                plan.removed.push_back(entry->id);
                continue;
            }
            if (plan.source->complete) {
                plan.deferred.insert(entry->id);
            }
            plan.entries.push_back(*entry);
        }
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
    return {std::string(KeyOf(kind)), {}, std::string(TitleOf(kind))};
}

PimStorePlans PlanPimStore(const PimStoreInput& input)
{
    return StorePlanner(input).run();
}

}  // namespace kesta
