// DB_LIB_*: main folders and their statistics.
#include "core/call_frame.h"
#include "core/list.h"
#include "kesta_db/kesta_db.h"
#include "library/main_folders.h"

using namespace kesta;

namespace {

constexpr int32_t kReported[] = {kMainFolderMusic, kMainFolderGallery, kMainFolderDocument, kMainFolderWebBookmark};

/// Tells and resets the change flags. A flag raised between the two is lost, which callers have to live with.
void ReportChanges(MainFolderList& list)
{
    EmptyList(list);
    AllocateList(list, static_cast<int32_t>(std::size(kReported)));
    for (const int32_t id : kReported) {
        MainFolderRecord& folder = list.Items[list.Count++];
        folder.ID = id;
        folder.Changed = MainFolderChangeFlags.of(id)->load(std::memory_order_relaxed);
    }
    for (const int32_t id : kReported) {
        MainFolderChangeFlags.of(id)->store(0, std::memory_order_relaxed);
    }
}

}  // namespace

extern "C" int32_t DB_LIB_UpdateMainFolderInfo(const MainFolderRecord* record)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { (void)Required(record); },
        [&](Routine self) { return library::UpdateMainFolderInfo(self.db, *record); });
}

extern "C" int32_t DB_LIB_RefreshStatistics(void)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); },
        [](Routine self) {
            ResultCode result = ResultCode::kSuccess;
            for (const int32_t id : kReported) {  // each one, whatever became of the others
                if (library::RefreshStatistic(self.db, id) != ResultCode::kSuccess) {
                    result = ResultCode::kFailure;
                }
            }
            return result;
        });
}

extern "C" int32_t DB_LIB_GetAllMainFolders(MainFolderList* list)
{
    static constexpr Export kSelf = {__func__};
    return RunExport(
        kSelf, [] { TraceEnter(kSelf.name); }, [&] { EmptyList(Required(list)); },
        [&](Routine self) { return library::GetAllMainFolders(self.db, *list); });
}

extern "C" int32_t DB_LIB_MainFoldersChanged(MainFolderList* list)
{
    // Deliberate: no lock and no lines of its own, so that a user interface can ask at any time.
    return RunThinExport(
        __func__, [&] { (void)Required(list); },
        [&] {
            if (!TheModule().isOpen()) {
                return ResultCode::kFailure;
            }
            ReportChanges(*list);
            return ResultCode::kSuccess;
        });
}
