// DB_PIM_*: the items of the PIM store and its profile.
#include "core/call_frame.h"
#include "core/list.h"
#include "kesta_db/kesta_db.h"
#include "pim/items.h"

using namespace kesta;

extern "C" int32_t DB_PIM_GetItems(PimItemList* list, const DbChar* folderPimID, int32_t type, int32_t recursive)
{
    static constexpr Export kSelf = {"DB_PIM_GetItems"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { EmptyList(Required(list)); },
        [&](Connection& db) { return pim::GetItems(db, *list, folderPimID, type, recursive != 0); });
}

extern "C" int32_t DB_PIM_AddItem(const PimItemRecord* item, const DbChar* folderPath)
{
    static constexpr Export kSelf = {"DB_PIM_AddItem"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(item); },
        [&](Connection& db) { return pim::AddItem(db, Trail(kSelf.name), *item, folderPath); });
}

extern "C" int32_t DB_PIM_UpdateItem(const PimItemRecord* item)
{
    static constexpr Export kSelf = {"DB_PIM_UpdateItem"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(item); },
        [&](Connection& db) { return pim::UpdateItem(db, Trail(kSelf.name), *item); });
}

extern "C" int32_t DB_PIM_DeleteItem(const DbChar* pimID)
{
    static constexpr Export kSelf = {"DB_PIM_DeleteItem"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); },
        [&](Connection& db) { return pim::DeleteItem(db, Trail(kSelf.name), pimID); });
}

extern "C" int32_t DB_PIM_GetProfile(DbChar** slot)
{
    static constexpr Export kSelf = {"DB_PIM_GetProfile"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { FreeText(Required(slot)); },
        [&](Connection& db) { return pim::GetProfile(db, Trail(kSelf.name), *slot); });
}

extern "C" int32_t DB_PIM_SetProfile(DbChar* const* slot)
{
    static constexpr Export kSelf = {"DB_PIM_SetProfile"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(slot); },
        [&](Connection& db) { return pim::SetProfile(db, Trail(kSelf.name), *slot); });
}

extern "C" int32_t DB_PIM_ClearAll(int32_t type, int32_t keepFolders)
{
    static constexpr Export kSelf = {"DB_PIM_ClearAll"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); },
        [&](Connection& db) { return pim::ClearAll(db, Trail(kSelf.name), type, keepFolders != 0); });
}
