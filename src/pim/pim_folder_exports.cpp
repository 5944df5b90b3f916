// DB_PIM_*: the folders of the PIM store.
#include "core/call_frame.h"
#include "core/list.h"
#include "kesta_db/kesta_db.h"
#include "pim/folders.h"

using namespace kesta;

extern "C" int32_t DB_PIM_GetFolders(PimFolderList* list, const DbChar* parentPimID, int32_t type, int32_t recursive)
{
    static constexpr Export kSelf = {"DB_PIM_GetFolders"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { EmptyList(Required(list)); },
        [&](Connection& db) { return pim::GetFolders(db, *list, parentPimID, type, recursive != 0); });
}

extern "C" int32_t DB_PIM_AddFolder(const PimFolderRecord* folder, const DbChar* parentPimID)
{
    static constexpr Export kSelf = {"DB_PIM_AddFolder"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(folder); },
        [&](Connection& db) { return pim::AddFolder(db, Trail(kSelf.name), *folder, parentPimID); });
}

extern "C" int32_t DB_PIM_GetFolder(PimFolderRecord* folder, const DbChar* pimID)
{
    static constexpr Export kSelf = {"DB_PIM_GetFolder"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { Element<PimFolderRecord>::destroy(Required(folder)); },
        [&](Connection& db) { return pim::GetFolder(db, *folder, pimID); });
}

extern "C" int32_t DB_PIM_UpdateFolder(const PimFolderRecord* folder)
{
    static constexpr Export kSelf = {"DB_PIM_UpdateFolder"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(folder); },
        [&](Connection& db) { return pim::UpdateFolder(db, Trail(kSelf.name), *folder); });
}

extern "C" int32_t DB_PIM_DeleteFolder(const DbChar* pimID)
{
    static constexpr Export kSelf = {"DB_PIM_DeleteFolder"};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); },
        [&](Connection& db) { return pim::DeleteFolder(db, Trail(kSelf.name), pimID); });
}
