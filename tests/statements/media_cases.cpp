// The four media categories, and the gallery that shows two of them as one.
#include "statements/call_case.h"

namespace kesta::test {
namespace {

// Of the path in UTF-8 and in the ANSI code page, for both phones: each statement finds the row that it looks for.
const char* const kGivenFolder =
    "INSERT OR REPLACE INTO t#Folder ([PhoneID], [Path], [Flag], [AddTime]) "
    "VALUES (1, 'P''''§', 0, ''), (2, 'P''''§', 0, ''), (1, 'P''''$', 0, '');";
const char* const kGivenNewFolder =
    "INSERT OR REPLACE INTO t#Folder ([PhoneID], [Path], [Flag], [AddTime]) "
    "VALUES (1, 'P''''§', 1, ''), (2, 'P''''§', 1, ''), (1, 'P''''$', 1, '');";
const char* const kGivenFile =
    "INSERT INTO t#File VALUES (1, 'F''''§', 'P''''§', '', ''), (2, 'F''''§', 'P''''§', '', '');";

const char* const kFlagLookUp = "SELECT [Flag] FROM t#Folder WHERE  [PhoneID] = 1 AND [Path] = 'P''''$';";
const char* const kFlagInView = "SELECT [Flag] FROM v#Folder WHERE [IMEI] = 'I''§' AND [Path] = 'P''''§';";
const char* const kIsSelected = "SELECT [Selected] FROM v#Folder WHERE [IMEI] = 'I''§' AND [Path] = 'P''''§';";
const char* const kIsDeleted = "SELECT [Deleted] FROM v#Folder WHERE [IMEI] = 'I''§' AND [Name] = 'P''''§';";
const char* const kSetSelected = "UPDATE t#Folder SET [Selected] = 7 WHERE [PhoneID] = 1 AND [Path] = 'P''''§';";
const char* const kSetDeleted = "UPDATE t#Folder SET [Deleted] = 7 WHERE [PhoneID] = 1 AND [PATH] = 'P''''§';";
const char* const kDeleteFolder = "DELETE FROM t#Folder WHERE [PhoneID] = 1 AND [Path] = 'P''''§';";
const char* const kDeleteFiles = "DELETE FROM t#File WHERE [PhoneID] = 1 AND [BasePath] = 'P''''§';";
const char* const kCountFolders = "SELECT COUNT(*) FROM t#Folder WHERE [PhoneID] = 1;";
const char* const kFolders =
    "SELECT ROWID, [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted], DATETIME([AddTime]) FROM "
    "t#Folder WHERE [PhoneID] = 1;";

Text Path()
{
    return W("P''§");
}

std::vector<CallCase> FolderCases(CategoryCalls call)
{
    return {
        {"AddFolder",
         [call](const Exports&) {
             const Folder folder("P''§", 3, 40'000'000'000, 50'000'000'000, 6);
             return call.AddFolder(Imei(), &folder);
         },
         {kPhoneLookUp,
          "UPDATE t#Folder SET [Count] = 3, [Size] = 40000000000, [TotalSize] = 50000000000, [Sized] = 6, [Deleted] = "
          "0 WHERE [PhoneID] = 1 AND [Path] = 'P''''§';",
          "INSERT INTO t#Folder ([PhoneID], [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted], "
          "[Flag], [AddTime]) VALUES (1, 'P''''§', 3, 40000000000, 50000000000, 6, 1, 0, 1, '<now>');"}},
        {"ClearAll",
         [call](const Exports&) { return call.ClearAll(Imei()); },
         {kPhoneLookUp, "UPDATE t#Folder SET [Deleted] = 1 WHERE [PhoneID] = 1 AND [Deleted] <> 4;"}},
        {"GetFolders",
         [call](const Exports&) {
             FolderList list = {};
             return call.GetFolders(Imei(), &list);
         },
         {kPhoneLookUp, kCountFolders,
          "SELECT ROWID, [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted], DATETIME([AddTime]) "
          "FROM t#Folder WHERE [PhoneID] = 1 ORDER BY [AddTime];"},
         kGivenFolder},
        {"GetFolders/NoFolders",
         [call](const Exports&) {
             FolderList list = {};
             return call.GetFolders(Imei(), &list);
         },
         {kPhoneLookUp, kCountFolders}},
        {"GetFolder",
         [call](const Exports&) {
             FolderRecord folder = {};
             return call.GetFolder(Imei(), Path(), &folder);
         },
         {kPhoneLookUp,
          "SELECT ROWID, [Path], [Count], [Size], [TotalSize], [Sized], [Selected], [Deleted] FROM t#Folder WHERE "
          "[PhoneID] = 1 AND [Path] = 'P''''§';"}},
        {"IsFolderSelected", [call](const Exports&) { return call.IsFolderSelected(Imei(), Path()); }, {kIsSelected}},
        {"SetFolderSelected",
         [call](const Exports&) { return call.SetFolderSelected(Imei(), Path(), 7); },
         {kPhoneLookUp, kSetSelected}},
        {"IsFolderDeleted", [call](const Exports&) { return call.IsFolderDeleted(Imei(), Path()); }, {kIsDeleted}},
    };
}

std::vector<CallCase> DeletionCases(CategoryCalls call)
{
    return {
        {"SetFolderDeleted",
         [call](const Exports&) { return call.SetFolderDeleted(Imei(), Path(), 7); },
         {kPhoneLookUp, kFlagInView, kSetDeleted},
         kGivenFolder},
        {"SetFolderDeleted/UnknownFolder",
         [call](const Exports&) { return call.SetFolderDeleted(Imei(), Path(), 7); },
         {kPhoneLookUp, kFlagInView, kSetDeleted}},
        {"SetFolderDeleted/Back",
         [call](const Exports&) { return call.SetFolderDeleted(Imei(), Path(), 0); },
         {kPhoneLookUp, "UPDATE t#Folder SET [Deleted] = 0 WHERE [PhoneID] = 1 AND [PATH] = 'P''''§';"},
         kGivenNewFolder},
        // The removal is a step of its own, after the lock was let go.
        {"SetFolderDeleted/NeverSynced",
         [call](const Exports&) { return call.SetFolderDeleted(Imei(), Path(), 7); },
         {kPhoneLookUp, kFlagInView, "unlock", "lock", kPhoneLookUp, kFlagLookUp, kDeleteFolder, kDeleteFiles},
         kGivenNewFolder},
        {"SetDeletedFolder",
         [call](const Exports&) { return call.SetDeletedFolder(Imei(), Path()); },
         {kPhoneLookUp, kFlagLookUp, kDeleteFolder, kDeleteFiles},
         kGivenFolder},
    };
}

std::vector<CallCase> FileCases(CategoryCalls call)
{
    return {
        {"IsSyncedFile",
         [call](const Exports&) {
             SyncedFileRecord file = {};
             return call.IsSyncedFile(Imei(), W("F''§"), &file);
         },
         {"SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM v#File WHERE [IMEI] = 'I''§' AND "
          "[Path] = 'F''''§';"}},
        {"GetSyncedFiles",
         [call](const Exports&) {
             SyncedFileList list = {};
             return call.GetSyncedFiles(Imei(), Path(), &list);
         },
         {"SELECT COUNT(*) FROM v#File WHERE [IMEI] = 'I''§'AND [BasePath] = 'P''''§';",
          "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM v#File WHERE [IMEI] = 'I''§'AND "
          "[BasePath] = 'P''''§';"},
         kGivenFile},
        {"GetSyncedFiles/NoFolder",
         [call](const Exports&) {
             SyncedFileList list = {};
             return call.GetSyncedFiles(Imei(), nullptr, &list);
         },
         {"SELECT COUNT(*) FROM v#File WHERE [IMEI] = 'I''§';",
          "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM v#File WHERE [IMEI] = 'I''§';"},
         kGivenFile},
        {"GetSyncedFiles/EmptyFolder",
         [call](const Exports&) {
             SyncedFileList list = {};
             return call.GetSyncedFiles(Imei(), W(""), &list);
         },
         {"SELECT COUNT(*) FROM v#File WHERE [IMEI] = 'I''§';"}},
        {"SetAddedFile",
         [call](const Exports&) {
             const SyncedFile file("F''§", "P''§", "Q''§", kTime);
             return call.SetAddedFile(Imei(), &file);
         },
         {kPhoneLookUp,
          "INSERT INTO t#File ([PhoneID], [Path], [BasePath], [PhonePath], [ModifiedTime]) VALUES (1, 'F''''§', "
          "'P''''§', 'Q''''§', '2024-02-29 12:34:56');",
          "UPDATE t#Folder SET [Flag] = 0 WHERE [PhoneID] = 1 AND [PATH] = 'P''''§';"}},
        {"SetDeletedFile",
         [call](const Exports&) {
             const SyncedFile file("F''§", "P''§", "Q''§", kTime);
             return call.SetDeletedFile(Imei(), &file);
         },
         {kPhoneLookUp, "DELETE FROM t#File WHERE [PhoneID] = 1 AND [Path] = 'F''''§';"}},
        {"SetUpdatedFile",
         [call](const Exports&) {
             const SyncedFile file("F''§", "P''§", "Q''§", kTime);
             return call.SetUpdatedFile(Imei(), &file);
         },
         {kPhoneLookUp,
          "UPDATE t#File SET [PhonePath] = 'Q''''§', [ModifiedTime] = '2024-02-29 12:34:56' WHERE [PhoneID] = 1 AND "
          "[Path] = 'F''''§';"}},
    };
}

}  // namespace

std::vector<CallCase> CategoryCases()
{
    std::vector<CallCase> cases;
    for (const Category& category : Categories()) {
        const CategoryCalls calls = category.of(DirectExports());
        for (const auto& some : {FolderCases(calls), DeletionCases(calls), FileCases(calls)}) {
            for (CallCase each : some) {
                each.name = "DB_" + std::string(category.family) + "_" + each.name;
                each.given = Of(category.letter, each.given);
                for (std::string& statement : each.statements) {
                    statement = Of(category.letter, statement);
                }
                cases.push_back(std::move(each));
            }
        }
    }
    return cases;
}

std::vector<CallCase> GalleryCases()
{
    const auto picture = [](const char* text) { return Of('I', text); };
    const auto video = [](const char* text) { return Of('V', text); };
    return {
        {"DB_GALLERY_GetFolders",
         [](const Exports& lib) {
             FolderList list = {};
             return lib.DB_GALLERY_GetFolders(Imei(), &list);
         },
         {kPhoneLookUp, picture(kCountFolders), picture(kFolders), "unlock", "lock", kPhoneLookUp, video(kCountFolders),
          video(kFolders)},
         picture(kGivenFolder) + video(kGivenFolder)},
        {"DB_GALLERY_IsFolderSelected",
         [](const Exports& lib) { return lib.DB_GALLERY_IsFolderSelected(Imei(), Path()); },
         {picture(kIsSelected), "unlock", "lock", video(kIsSelected)}},
        {"DB_GALLERY_SetFolderSelected",
         [](const Exports& lib) { return lib.DB_GALLERY_SetFolderSelected(Imei(), Path(), 7); },
         {kPhoneLookUp, picture(kSetSelected), "unlock", "lock", kPhoneLookUp, video(kSetSelected)}},
        {"DB_GALLERY_IsFolderDeleted",
         [](const Exports& lib) { return lib.DB_GALLERY_IsFolderDeleted(Imei(), Path()); },
         {picture(kIsDeleted), "unlock", "lock", video(kIsDeleted)}},
        {"DB_GALLERY_SetFolderDeleted",
         [](const Exports& lib) { return lib.DB_GALLERY_SetFolderDeleted(Imei(), Path(), 7); },
         {kPhoneLookUp, picture(kFlagInView), picture(kSetDeleted), "unlock", "lock", kPhoneLookUp, video(kFlagInView),
          "unlock", "lock", kPhoneLookUp, video(kFlagLookUp), video(kDeleteFolder), video(kDeleteFiles)},
         picture(kGivenFolder) + video(kGivenNewFolder)},
    };
}

}  // namespace kesta::test
