#include "database/main_folders.h"

#include <algorithm>

#include "database/calls.h"

namespace kesta {
namespace {

using calls::Text;

constexpr std::array<int32_t, kMainFolders.size()> kIds{kMainFolderMusic,  kMainFolderGallery,  kMainFolderDocument,
                                                        kMainFolderPeople, kMainFolderCalendar, kMainFolderWebBookmark,
                                                        kMainFolderMap};

int32_t IdOf(MainFolder folder)
{
    return kIds[static_cast<size_t>(folder)];
}

}  // namespace

std::vector<MainFolderFigures> MainFolderRecords::all()
{
    // No argument makes the library empty this list without filling it again, so one record serves all calls.
    static MainFolderList list{0, nullptr};
    calls::ReadList(
        "DB_LIB_GetAllMainFolders", [] { return DB_LIB_GetAllMainFolders(&list); }, list.Count);
    std::vector<MainFolderFigures> folders;
    for (int32_t i = 0; i < list.Count; ++i) {
        const MainFolderRecord& record = list.Items[i];
        const auto id = std::find(kIds.begin(), kIds.end(), record.ID);
        if (id == kIds.end()) {
            continue;
        }
        folders.push_back({kMainFolders[static_cast<size_t>(id - kIds.begin())], record.Number, record.Size,
                           FromDbText(record.Setting)});
    }
    return folders;
}

bool MainFolderRecords::isSelected(const std::string& imei, MainFolder folder)
{
    return DB_LIB_IsFolderSelected(Text(imei).c_str(), IdOf(folder)) != 0;
}

Result MainFolderRecords::select(const std::string& imei, MainFolder folder, bool selected)
{
    return DB_LIB_SetFolderSelected(Text(imei).c_str(), IdOf(folder), selected ? 1 : 0);
}

}  // namespace kesta
