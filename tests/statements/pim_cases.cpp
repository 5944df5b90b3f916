// The log of contact and calendar syncs, and the store of folders and items.
#include "statements/call_case.h"

namespace kesta::test {
namespace {

const char* const kLogLookUp = "SELECT [plID] FROM tPimLog WHERE [phoneID] = 1 AND [Type] = 3;";
const std::string kGivenLog =
    "INSERT INTO tPimLog ([plID], [phoneID], [Type]) VALUES (9, 1, 3);"
    "INSERT INTO tPimLogItem ([plID], [Guid], [Luid]) VALUES (9, 'g', 'l');";

int32_t SaveLog(const Exports& lib, const DbChar* imei)
{
    Text guid = W("G''§");
    Text luid = W("L''§");
    PimLogItem items[] = {{guid.get(), luid.get(), kTime, NullDate()},
                          {nullptr, nullptr, InvalidDate(), Date(2024, 3, 1)}};
    const PimLog log = {3, 2, items};
    return lib.DB_PIMLOG_SaveLog(imei, &log);
}

}  // namespace

std::vector<CallCase> PimLogCases()
{
    const char* const firstItem =
        "INSERT INTO tPimLogItem ([plID], [Guid], [Luid], [PCTime], [PhoneTime]) VALUES (9, 'G''$', 'L''$', "
        "'2024-02-29 12:34:56', '');";
    const char* const secondItem =
        "INSERT INTO tPimLogItem ([plID], [Guid], [Luid], [PCTime], [PhoneTime]) VALUES (9, '(null)', '(null)', "
        "'Invalid DateTime', '2024-03-01 00:00:00');";
    return {
        {"DB_PIMLOG_GetPimProfile",
         [](const Exports& lib) {
             DbChar buffer[64] = {};
             return lib.DB_PIMLOG_GetPimProfile(Imei(), buffer, 3);
         },
         {kPhoneLookUp, "SELECT [PimProfile] FROM tPimLog WHERE [phoneID] = 1 AND [Type] = 3;"}},
        {"DB_PIMLOG_SetPimProfile",
         [](const Exports& lib) { return lib.DB_PIMLOG_SetPimProfile(Imei(), W("R''§"), 3); },
         {kPhoneLookUp, kLogLookUp, "INSERT INTO tPimLog ([phoneID], [Type], [PimProfile]) VALUES (1, 3, 'R''''§');"}},
        {"DB_PIMLOG_SetPimProfile/Known",
         [](const Exports& lib) { return lib.DB_PIMLOG_SetPimProfile(Imei(), W("R''§"), 3); },
         {kPhoneLookUp, kLogLookUp, "UPDATE tPimLog SET [PimProfile] = 'R''''§' WHERE [phoneID] = 1 AND [Type] = 3;"},
         kGivenLog},
        {"DB_PIMLOG_ClearAll",
         [](const Exports& lib) { return lib.DB_PIMLOG_ClearAll(Imei(), 3); },
         {kPhoneLookUp, kLogLookUp, "DELETE FROM tPimLogItem WHERE [plID] = 9;DELETE FROM tPimLog WHERE [plID] = 9;"},
         kGivenLog},
        {"DB_PIMLOG_ClearAll/NoLog",
         [](const Exports& lib) { return lib.DB_PIMLOG_ClearAll(Imei(), 3); },
         {kPhoneLookUp, kLogLookUp}},
        {"DB_PIMLOG_ReadLog",
         [](const Exports& lib) {
             PimLog log = {3, 0, nullptr};
             return lib.DB_PIMLOG_ReadLog(Imei(), &log);
         },
         {kPhoneLookUp,
          "SELECT COUNT(*), [ptID], tPimLog.[plID] FROM tPimLogItem, tPimLog WHERE tPimLogItem.[plID] = "
          "tPimLog.[plID] AND [phoneID] = 1 AND [Type] = 3;",
          "SELECT [Guid], [Luid], [PCTime], [PhoneTime] FROM tPimLogItem WHERE [plID] = 9;"},
         kGivenLog},
        {"DB_PIMLOG_SaveLog",
         [](const Exports& lib) { return SaveLog(lib, Imei()); },
         {kPhoneLookUp, kLogLookUp, firstItem, secondItem},
         kGivenLog},
        {"DB_PIMLOG_SaveLog/NewLogOfAnUnknownPhone",
         [](const Exports& lib) { return SaveLog(lib, W("X")); },
         {"SELECT [ID] FROM tPhone WHERE  [IMEI] = 'X';",
          "SELECT [plID] FROM tPimLog WHERE [phoneID] = -1 AND [Type] = 3;",
          "INSERT INTO tPimLog ([phoneID], [Type]) VALUES (-1, 3);", firstItem, secondItem},
         "INSERT INTO tPimLog ([plID], [phoneID], [Type]) VALUES (8, 1, 3)"},
    };
}

namespace {

const char* const kFolderLookUp = "SELECT [pfID] FROM tPimFolder WHERE [PimID] = 'F''$';";
const char* const kItemLookUp = "SELECT [piID] FROM tPimItem WHERE [PimID] = 'E''$';";

// Folder 5 is the root, 6 lies in it. Item 7 lies in folder 5, item 8 in no folder.
const std::string kGivenFolders =
    "INSERT INTO tPimFolder ([pfID], [parentID], [PimID], [Path], [Type]) VALUES (5, -2, 'F''$', 'P''''§', 3), "
    "(6, 5, 'below', '', 3);";
const std::string kGivenItems =
    "INSERT INTO tPimItem ([piID], [pfID], [PimID], [Data], [Type]) VALUES (7, 5, 'E''$', x'01', 3), "
    "(8, -2, 'loose', x'02', 3);";

int32_t GetFolders(const Exports& lib, const DbChar* parent, int32_t recursive)
{
    PimFolderList list = {};
    return lib.DB_PIM_GetFolders(&list, parent, 3, recursive);
}

int32_t GetItems(const Exports& lib, const DbChar* folder, int32_t recursive)
{
    PimItemList list = {};
    return lib.DB_PIM_GetItems(&list, folder, 3, recursive);
}

std::vector<CallCase> FolderCases()
{
    return {
        {"DB_PIM_GetFolders",
         [](const Exports& lib) { return GetFolders(lib, W("F''§"), 0); },
         {kFolderLookUp, "SELECT [pfID] FROM tPimFolder WHERE [parentID] = 5 AND [Type] = 3;",
          "SELECT [PimID], [parentID], [Path], [Type] FROM tPimFolder WHERE [pfID] = 6;",
          "SELECT [PimID] FROM tPimFolder WHERE [pfID] = 5;"},
         kGivenFolders},
        {"DB_PIM_GetFolders/WholeTree",
         [](const Exports& lib) { return GetFolders(lib, W(""), 1); },
         {"SELECT [pfID] FROM tPimFolder WHERE ([parentID] IS NULL OR [parentID] < 0) AND [Type] = 3;",
          "SELECT [pfID] FROM tPimFolder WHERE [parentID] = 5 AND [Type] = 3;",
          "SELECT [pfID] FROM tPimFolder WHERE [parentID] = 6 AND [Type] = 3;",
          "SELECT [PimID], [parentID], [Path], [Type] FROM tPimFolder WHERE [pfID] = 5;",
          "SELECT [PimID], [parentID], [Path], [Type] FROM tPimFolder WHERE [pfID] = 6;",
          "SELECT [PimID] FROM tPimFolder WHERE [pfID] = 5;"},
         kGivenFolders},
        {"DB_PIM_AddFolder",
         [](const Exports& lib) {
             const PimFolder folder("N''§", "Q''§", 4);
             return lib.DB_PIM_AddFolder(&folder, W("F''§"));
         },
         {kFolderLookUp,
          "INSERT INTO tPimFolder ([parentID], [PimID], [Path], [Type]) VALUES (5, 'N''§', 'Q''''§', 4);"},
         kGivenFolders},
        {"DB_PIM_AddFolder/Root",
         [](const Exports& lib) {
             const PimFolder folder("N''§", "Q''§", 4);
             return lib.DB_PIM_AddFolder(&folder, nullptr);
         },
         {"INSERT INTO tPimFolder ([parentID], [PimID], [Path], [Type]) VALUES (-2, 'N''§', 'Q''''§', 4);"}},
        {"DB_PIM_GetFolder",
         [](const Exports& lib) {
             PimFolderRecord folder = {};
             return lib.DB_PIM_GetFolder(&folder, W("below"));
         },
         {"SELECT [pfID] FROM tPimFolder WHERE [PimID] = 'below';",
          "SELECT [PimID], [parentID], [Path], [Type] FROM tPimFolder WHERE [pfID] = 6;",
          "SELECT [PimID] FROM tPimFolder WHERE [pfID] = 5;"},
         kGivenFolders},
        {"DB_PIM_UpdateFolder",
         [](const Exports& lib) {
             const PimFolder folder("F''§", "Q''§", 4);
             return lib.DB_PIM_UpdateFolder(&folder);
         },
         {kFolderLookUp, "UPDATE tPimFolder SET [Path] = 'Q''''§', [Type] = 4 WHERE [pfID] = 5;"},
         kGivenFolders},
        {"DB_PIM_DeleteFolder",
         [](const Exports& lib) { return lib.DB_PIM_DeleteFolder(W("F''§")); },
         {kFolderLookUp, "DELETE FROM tPimFolder WHERE [pfID] = 5;"},
         kGivenFolders},
    };
}

std::vector<CallCase> ItemCases()
{
    return {
        {"DB_PIM_GetItems",
         [](const Exports& lib) { return GetItems(lib, W("F''§"), 1); },
         {kFolderLookUp, "SELECT [pfID] FROM tPimFolder WHERE [parentID] = 5 AND [Type] = 3;",
          "SELECT [pfID] FROM tPimFolder WHERE [parentID] = 6 AND [Type] = 3;",
          "SELECT [piID] FROM tPimItem WHERE [pfID] = 5;", "SELECT [piID] FROM tPimItem WHERE [pfID] = 6;",
          "SELECT [PimID], [Data], [Type] FROM tPimItem WHERE [piID] = 7;"},
         kGivenFolders + kGivenItems},
        {"DB_PIM_GetItems/RootLevel",
         [](const Exports& lib) { return GetItems(lib, nullptr, 0); },
         {"SELECT [piID] FROM tPimItem WHERE [pfID] = -2;",
          "SELECT [PimID], [Data], [Type] FROM tPimItem WHERE [piID] = 8;"},
         kGivenFolders + kGivenItems},
        {"DB_PIM_AddItem",
         [](const Exports& lib) {
             const PimItem item("N''§", "data", 4);
             return lib.DB_PIM_AddItem(&item, W("P''§"));
         },
         {"SELECT [pfID] FROM tPimFolder WHERE [Path] = 'P''''§';",
          "INSERT INTO tPimItem ([pfID], [PimID], [Data], [Type]) VALUES (5, 'N''$', ?, 4);"},
         kGivenFolders},
        {"DB_PIM_AddItem/RootLevel",
         [](const Exports& lib) {
             const PimItem item("N''§", "data", 4);
             return lib.DB_PIM_AddItem(&item, W(""));
         },
         {"INSERT INTO tPimItem ([pfID], [PimID], [Data], [Type]) VALUES (-2, 'N''$', ?, 4);"}},
        {"DB_PIM_UpdateItem",
         [](const Exports& lib) {
             const PimItem item("E''§", "data", 4);
             return lib.DB_PIM_UpdateItem(&item);
         },
         {kItemLookUp, "UPDATE tPimItem SET [Data] = ? WHERE [piID] = 7;"},
         kGivenItems},
        {"DB_PIM_DeleteItem",
         [](const Exports& lib) { return lib.DB_PIM_DeleteItem(W("E''§")); },
         {kItemLookUp, "DELETE FROM tPimItem WHERE [piID] = 7;"},
         kGivenItems},
        {"DB_PIM_GetProfile",
         [](const Exports& lib) {
             DbChar* profile = nullptr;
             return lib.DB_PIM_GetProfile(&profile);
         },
         {"SELECT [Profile] FROM tPimInfo;"}},
        {"DB_PIM_SetProfile",
         [](const Exports& lib) {
             Text profile = W("R''§");
             DbChar* const slot = profile.get();
             return lib.DB_PIM_SetProfile(&slot);
         },
         {"DELETE FROM tPimInfo;", "INSERT INTO tPimInfo ([Profile]) VALUES (?);"}},
        {"DB_PIM_ClearAll",
         [](const Exports& lib) { return lib.DB_PIM_ClearAll(3, 0); },
         {"DELETE FROM tPimItem WHERE [Type] = 3;", "DELETE FROM tPimFolder WHERE [Type] = 3;"}},
        {"DB_PIM_ClearAll/KeepFolders",
         [](const Exports& lib) { return lib.DB_PIM_ClearAll(3, 1); },
         {"DELETE FROM tPimItem WHERE [Type] = 3;"}},
    };
}

}  // namespace

std::vector<CallCase> PimCases()
{
    std::vector<CallCase> cases = FolderCases();
    for (CallCase& each : ItemCases()) {
        cases.push_back(std::move(each));
    }
    return cases;
}

}  // namespace kesta::test
