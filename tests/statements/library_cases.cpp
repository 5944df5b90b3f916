// DB_Open, DB_Close and the main folders.
#include "statements/call_case.h"

namespace kesta::test {
namespace {

int32_t Update(const Exports& lib, int32_t id, int32_t number, int64_t size, const char* setting)
{
    Text text = W(setting == nullptr ? "" : setting);
    MainFolderRecord folder = {id, number, size, setting == nullptr ? nullptr : text.get(), 0};
    return lib.DB_LIB_UpdateMainFolderInfo(&folder);
}

}  // namespace

std::vector<CallCase> LibraryCases()
{
    return {
        {"DB_Open", [](const Exports& lib) { return lib.DB_Open(); }, {}},
        {"DB_Close", [](const Exports& lib) { return lib.DB_Close(); }, {}},
        {"DB_LIB_UpdateMainFolderInfo",
         [](const Exports& lib) { return Update(lib, 1000, 3, 40'000'000'000, "S''§"); },
         {"UPDATE tLibMainFolder SET [Number] = 3, [Size] = 40000000000, [Setting] = 'S''''§' WHERE [ID] = 1000;"}},
        {"DB_LIB_UpdateMainFolderInfo/Number",
         [](const Exports& lib) { return Update(lib, 1100, 0, -1, nullptr); },
         {"UPDATE tLibMainFolder SET [Number] = 0 WHERE [ID] = 1100;"}},
        {"DB_LIB_UpdateMainFolderInfo/Size",
         [](const Exports& lib) { return Update(lib, -7, -1, 0, ""); },
         {"UPDATE tLibMainFolder SET [Size] = 0 WHERE [ID] = -7;"}},
        {"DB_LIB_UpdateMainFolderInfo/Setting",
         [](const Exports& lib) { return Update(lib, 1400, -1, -1, "S''§"); },
         {"UPDATE tLibMainFolder SET [Setting] = 'S''''§' WHERE [ID] = 1400;"}},
        {"DB_LIB_UpdateMainFolderInfo/SizeAndSetting",
         [](const Exports& lib) { return Update(lib, 1400, -1, 5, "S''§"); },
         {"UPDATE tLibMainFolder SET [Size] = 5, [Setting] = 'S''''§' WHERE [ID] = 1400;"}},
        {"DB_LIB_UpdateMainFolderInfo/Nothing",
         [](const Exports& lib) { return Update(lib, 1000, -1, -1, nullptr); },
         {}},
        {"DB_LIB_RefreshStatistics",
         [](const Exports& lib) { return lib.DB_LIB_RefreshStatistics(); },
         {"SELECT COUNT(*), SUM([Size]) FROM tMusicFiles", "SELECT COUNT(*), SUM([Size]) FROM tMediaFiles",
          "SELECT COUNT(*), SUM([Size]) FROM tDocuments", "SELECT COUNT(*) FROM tWebBookmarks"}},
        {"DB_LIB_RefreshStatistics/CountedTables",
         [](const Exports& lib) { return lib.DB_LIB_RefreshStatistics(); },
         {"SELECT COUNT(*), SUM([Size]) FROM tMusicFiles",
          "UPDATE tLibMainFolder SET [Number] = 2, [Size] = 30000000000 WHERE [ID] = 1000;",
          "SELECT COUNT(*), SUM([Size]) FROM tMediaFiles",
          "UPDATE tLibMainFolder SET [Number] = 0, [Size] = 0 WHERE [ID] = 1100;",
          "SELECT COUNT(*), SUM([Size]) FROM tDocuments",
          "UPDATE tLibMainFolder SET [Number] = 1, [Size] = 7 WHERE [ID] = 1400;", "SELECT COUNT(*) FROM tWebBookmarks",
          "UPDATE tLibMainFolder SET [Number] = 3, [Size] = 0 WHERE [ID] = 1900;"},
         "CREATE TABLE tMusicFiles([Size]); INSERT INTO tMusicFiles VALUES (10000000000), (20000000000);"
         "CREATE TABLE tMediaFiles([Size]);"
         "CREATE TABLE tDocuments([Size]); INSERT INTO tDocuments VALUES (7);"
         "CREATE TABLE tWebBookmarks([Size]); INSERT INTO tWebBookmarks VALUES (1), (2), (3);"},
        {"DB_LIB_GetAllMainFolders",
         [](const Exports& lib) {
             MainFolderList list = {};
             return lib.DB_LIB_GetAllMainFolders(&list);
         },
         {"SELECT COUNT(*) FROM tLibMainFolder;", "SELECT [ID], [Number], [Size], [Setting] FROM tLibMainFolder;"}},
        {"DB_LIB_GetAllMainFolders/NoFolders",
         [](const Exports& lib) {
             MainFolderList list = {};
             return lib.DB_LIB_GetAllMainFolders(&list);
         },
         {"SELECT COUNT(*) FROM tLibMainFolder;"},
         "DELETE FROM tLibMainFolder"},
        {"DB_LIB_MainFoldersChanged",
         [](const Exports& lib) {
             MainFolderList list = {};
             return lib.DB_LIB_MainFoldersChanged(&list);
         },
         {}},
    };
}

}  // namespace kesta::test
