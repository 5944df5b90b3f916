#include "stages/pim/pim_store_changes.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "database/failures.h"
#include "sync/compare.h"

namespace kesta {
namespace {

// Whatever fails here ends the run: the entries that follow would fail, too.
void AddStep(Plan& plan, std::function<void()> step)
{
    Change change;
    change.record = [step = std::move(step)](const Written&) {
        try {
            step();
        } catch (const kesta_db::Error& failure) {
            throw StopRun(ExitCode::kDatabase, TextOf(failure));
        }
    };
    plan.add(std::move(change));
}

bool Removes(kesta_db::PimStore& store, const std::string& id)
{
    try {
        store.removeItem(id);
        return true;
    } catch (const kesta_db::Error&) {
        return false;
    }
}

void AddItem(kesta_db::PimStore& store, const PimFolder& folder, const PimEntry& entry)
{
    const PimItem item{entry.id, folder.type, entry.bytes};
    try {
        store.addItem(folder.path, item);
    } catch (const kesta_db::Error&) {
        // An item that hangs in the air, since somebody removed its folder, keeps its id from being used again.
        if (!Removes(store, entry.id)) {
            throw;
        }
        store.addItem(folder.path, item);
    }
}

// Items are added by a folder's path, which another program's folder may share.
void CheckStored(kesta_db::PimStore& store, const PimStorePlan& folder, const std::string& failure)
{
    std::set<std::string> wanted, stored;
    for (const PlannedPimEntry& planned : folder.entries) {
        wanted.insert(planned.entry.id);
    }
    for (const PimItem& item : store.items(folder.folder.id, folder.folder.type)) {
        stored.insert(item.id);
    }
    if (stored == wanted) {
        return;
    }
    if (!failure.empty()) {
        throw StopRun(ExitCode::kDatabase, failure);
    }
    throw StopRun(ExitCode::kDatabase, fmt::format("the database's folder '{}' holds {} entries instead of {}",
                                                   folder.folder.path, stored.size(), wanted.size()));
}

void AddFolderChanges(PimKind kind, const PimStorePlan& folder, kesta_db::PimStore& store, Session& session, Plan& plan)
{
    if (folder.isNew) {
        AddStep(plan, [&store, &folder] { store.addFolder(folder.folder); });
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
            addCounted([&store, &folder, &entry = planned.entry] { AddItem(store, folder.folder, entry); });
        }
    }
    for (const PlannedPimEntry& planned : folder.entries) {
        if (planned.state == Comparison::kChanged) {
            addCounted([&store, kind, &entry = planned.entry] {
                store.updateItem({entry.id, TypeOf(kind), entry.bytes});
            });
        }
    }
    const auto failure = std::make_shared<std::string>();
    for (const std::string& id : folder.removed) {
        // Another program may have removed it in the meantime: what counts is that it is gone.
        addCounted([&store, &id, failure] {
            try {
                store.removeItem(id);
            } catch (const kesta_db::Error& error) {
                *failure = TextOf(error);
            }
        });
    }
    if (all > 0) {
        AddStep(plan, [&store, &folder, failure] { CheckStored(store, folder, *failure); });
    }
    if (folder.isObsolete) {
        AddStep(plan, [&store, &folder] { store.removeFolder(folder.folder.id); });
    }
}

}  // namespace

void AddPimStoreChanges(const PimWork& work, kesta_db::PimStore& store, Session& session, Plan& plan)
{
    const bool hasNew = std::any_of(work.store.folders.begin(), work.store.folders.end(),
                                    [](const PimStorePlan& folder) { return folder.isNew; });
    if (hasNew && !work.rootIsStored) {
        AddStep(plan, [&store, kind = work.kind] { store.addFolder(PimRootFolder(kind)); });
    }
    for (const PimStorePlan& folder : work.store.folders) {
        AddFolderChanges(work.kind, folder, store, session, plan);
    }
}

}  // namespace kesta
