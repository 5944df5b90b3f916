// DB_PIM_*: the items of the PIM store and its profile.
#include "core/call_frame.h"
#include "core/list.h"
#include "kesta_db/kesta_db.h"
#include "pim/items.h"

using namespace kesta;

extern "C" int32_t DB_PIM_GetItems(PimItemList* list, const DbChar* folderPimID, int32_t type, int32_t recursive)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { EmptyList(Required(list)); },
        [&](Routine self) { return pim::GetItems(self, *list, folderPimID, type, recursive != 0); });
}

extern "C" int32_t DB_PIM_AddItem(const PimItemRecord* item, const DbChar* folderPath)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(item); },
        [&](Routine self) { return pim::AddItem(self, *item, folderPath); });
}

extern "C" int32_t DB_PIM_UpdateItem(const PimItemRecord* item)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(item); },
        [&](Routine self) { return pim::UpdateItem(self, *item); });
}

extern "C" int32_t DB_PIM_DeleteItem(const DbChar* pimID)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&](Routine self) { return pim::DeleteItem(self, pimID); });
}

extern "C" int32_t DB_PIM_GetProfile(DbChar** slot)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { FreeText(Required(slot)); },
        [&](Routine self) { return pim::GetProfile(self, *slot); });
}

extern "C" int32_t DB_PIM_SetProfile(DbChar* const* slot)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(slot); },
        [&](Routine self) { return pim::SetProfile(self, *slot); });
}

extern "C" int32_t DB_PIM_ClearAll(int32_t type, int32_t keepFolders)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); },
        [&](Routine self) { return pim::ClearAll(self, type, keepFolders != 0); });
}
