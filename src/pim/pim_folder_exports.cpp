// DB_PIM_*: the folders of the PIM store.
#include "core/call_frame.h"
#include "core/list.h"
#include "kesta_db/kesta_db.h"
#include "pim/folders.h"

using namespace kesta;

extern "C" int32_t DB_PIM_GetFolders(PimFolderList* list, const DbChar* parentPimID, int32_t type, int32_t recursive)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { EmptyList(Required(list)); },
        [&](Routine self) { return pim::GetFolders(self, *list, parentPimID, type, recursive != 0); });
}

extern "C" int32_t DB_PIM_AddFolder(const PimFolderRecord* folder, const DbChar* parentPimID)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(folder); },
        [&](Routine self) { return pim::AddFolder(self, *folder, parentPimID); });
}

extern "C" int32_t DB_PIM_GetFolder(PimFolderRecord* folder, const DbChar* pimID)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { Element<PimFolderRecord>::destroy(Required(folder)); },
        [&](Routine self) { return pim::GetFolder(self, *folder, pimID); });
}

extern "C" int32_t DB_PIM_UpdateFolder(const PimFolderRecord* folder)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(folder); },
        [&](Routine self) { return pim::UpdateFolder(self, *folder); });
}

extern "C" int32_t DB_PIM_DeleteFolder(const DbChar* pimID)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&](Routine self) { return pim::DeleteFolder(self, pimID); });
}
