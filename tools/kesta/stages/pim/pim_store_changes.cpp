#include "stages/pim/pim_store_changes.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "sync/compare.h"

namespace kesta {
namespace {

void AddStep(Plan& plan, std::function<void()> step)
{
    Change change;
    change.record = [step = std::move(step)](const Written&) {
        step();
        return Result();
    };
    plan.add(std::move(change));
}

void AddItem(PimRecords& records, PimKind kind, const PimFolder& folder, const PimEntry& entry)
{
    const PimItem item{entry.id, entry.bytes};
    Result result = records.addItem(kind, folder.path, item);
    // An item that hangs in the air, since somebody removed its folder, keeps its id from being used again.
    if (!result.ok() && records.removeItem(entry.id).ok()) {
        result = records.addItem(kind, folder.path, item);
    }
    Require("DB_PIM_AddItem", result);
}

// Items are added by a folder's path, which another program's folder may share.
void CheckStored(PimRecords& records, PimKind kind, const PimStorePlan& folder, const std::string& failure)
{
    std::set<std::string> wanted, stored;
    for (const PlannedPimEntry& planned : folder.entries) {
        wanted.insert(planned.entry.id);
    }
    for (const PimItem& item : records.items(kind, folder.folder.id)) {
        stored.insert(item.id);
    }
    if (stored == wanted) {
        return;
    }
    if (!failure.empty()) {
        throw DatabaseError(failure);
    }
    throw DatabaseError(fmt::format("the database's folder '{}' holds {} entries instead of {}", folder.folder.path,
                                    stored.size(), wanted.size()));
}

void AddFolderChanges(PimKind kind, const PimStorePlan& folder, PimRecords& records, Session& session, Plan& plan)
{
    if (folder.isNew) {
        AddStep(plan,
                [&records, kind, &folder] { Require("DB_PIM_AddFolder", records.addFolder(kind, folder.folder)); });
    }
    const size_t all = folder.changes();
    size_t done = 0;
    const auto addCounted = [&](std::function<void()> step) {
        AddStep(plan, [kind, done, all, &session, step = std::move(step)] {
            session.report.progress.remark(fmt::format(" {}: {} of {} changes stored", TitleOf(kind), done, all));
            step();
        });
        ++done;
    };
    for (const PlannedPimEntry& planned : folder.entries) {
        if (planned.state == Comparison::kNew) {
            addCounted(
                [&records, kind, &folder, &entry = planned.entry] { AddItem(records, kind, folder.folder, entry); });
        }
    }
    for (const PlannedPimEntry& planned : folder.entries) {
        if (planned.state == Comparison::kChanged) {
            addCounted([&records, kind, &entry = planned.entry] {
                Require("DB_PIM_UpdateItem", records.updateItem(kind, {entry.id, entry.bytes}));
            });
        }
    }
    const auto failure = std::make_shared<std::string>();
    for (const std::string& id : folder.removed) {
        // Another program may have removed it in the meantime: what counts is that it is gone.
        addCounted([&records, &id, failure] {
            if (const Result result = records.removeItem(id); !result.ok()) {
                *failure = "DB_PIM_DeleteItem failed: " + result.text();
            }
        });
    }
    if (all > 0) {
        AddStep(plan, [&records, kind, &folder, failure] { CheckStored(records, kind, folder, *failure); });
    }
    if (folder.isObsolete) {
        AddStep(plan, [&records, &folder] { Require("DB_PIM_DeleteFolder", records.removeFolder(folder.folder.id)); });
    }
}

}  // namespace

void AddPimStoreChanges(const PimWork& work, PimRecords& records, Session& session, Plan& plan)
{
    const bool hasNew = std::any_of(work.store.folders.begin(), work.store.folders.end(),
                                    [](const PimStorePlan& folder) { return folder.isNew; });
    if (hasNew && !work.rootIsStored) {
        AddStep(plan, [&records, kind = work.kind] {
            Require("DB_PIM_AddFolder", records.addFolder(kind, PimRootFolder(kind)));
        });
    }
    for (const PimStorePlan& folder : work.store.folders) {
        AddFolderChanges(work.kind, folder, records, session, plan);
    }
}

}  // namespace kesta
