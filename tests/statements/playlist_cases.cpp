// Playlists and their files.
#include "statements/call_case.h"

namespace kesta::test {
namespace {

const char* const kFlagLookUp = "SELECT [Flag] FROM tPFolder WHERE  [PhoneID] = 1 AND [Path] = 'L''''$';";
const char* const kDeleteList = "DELETE FROM tPFolder WHERE [PhoneID] = 1 AND [Path] = 'L''''§';";
const char* const kDeleteFiles = "DELETE FROM tPFile WHERE [PhoneID] = 1 AND [BasePath] = 'L''''§';";
const char* const kDeleteUnlessOnPhone =
    "DELETE FROM tPFolder WHERE [PhoneID] = 1 AND [Path] = 'L''''§' AND ([IdInPhone] ISNULL OR [IdInPhone] = "
    "'(null)');";

Text Name()
{
    return W("L''§");
}

/// The playlist with that flag, under its name in UTF-8 and in the ANSI code page.
std::string GivenList(const std::string& flag, const std::string& idInPhone = "NULL")
{
    std::string given = "INSERT OR REPLACE INTO tPFolder ([PhoneID], [Path], [Flag], [IdInPhone], [AddTime]) VALUES ";
    given += "(1, 'L''''§', " + flag + ", " + idInPhone + ", ''), ";
    return given + "(1, 'L''''$', " + flag + ", " + idInPhone + ", '');";
}

int32_t DeleteList(const Exports& lib)
{
    return lib.DB_PLAYERMUSIC_DeleteList(Imei(), Name());
}

int32_t SetDeletedPlaylist(const Exports& lib)
{
    const Playlist list("L''§");
    return lib.DB_PLAYERMUSIC_SetDeletedPlaylist(Imei(), &list);
}

std::vector<CallCase> DeletionCases()
{
    const std::string unconfirm = "UPDATE tPFolder SET [Flag] = 3 WHERE [PhoneID] = 1 AND [Path] = 'L''''§';";
    return {
        {"DB_PLAYERMUSIC_DeleteList/New",
         DeleteList,
         {kPhoneLookUp, kFlagLookUp, kDeleteList, kDeleteFiles},
         GivenList("1")},
        {"DB_PLAYERMUSIC_DeleteList/Deleted",
         DeleteList,
         {kPhoneLookUp, kFlagLookUp, kDeleteList, kDeleteFiles},
         GivenList("4")},
        {"DB_PLAYERMUSIC_DeleteList/Current",
         DeleteList,
         {kPhoneLookUp, kFlagLookUp, kPhoneLookUp, unconfirm},
         GivenList("0")},
        {"DB_PLAYERMUSIC_DeleteList/AlsoCurrent",
         DeleteList,
         {kPhoneLookUp, kFlagLookUp, kPhoneLookUp, unconfirm},
         GivenList("2")},
        {"DB_PLAYERMUSIC_DeleteList/Unknown", DeleteList, {kPhoneLookUp, kFlagLookUp, kPhoneLookUp, unconfirm}},
        {"DB_PLAYERMUSIC_DeleteList/Unconfirmed",
         DeleteList,
         {kPhoneLookUp, kFlagLookUp, kDeleteUnlessOnPhone, kDeleteFiles},
         GivenList("3")},
        {"DB_PLAYERMUSIC_DeleteList/UnconfirmedOnPhone",
         DeleteList,
         {kPhoneLookUp, kFlagLookUp, kDeleteUnlessOnPhone},
         GivenList("3", "'P:/1'")},
        {"DB_PLAYERMUSIC_DeleteList/OtherFlag", DeleteList, {kPhoneLookUp, kFlagLookUp}, GivenList("5")},
        {"DB_PLAYERMUSIC_SetDeletedPlaylist",
         SetDeletedPlaylist,
         {kPhoneLookUp, kFlagLookUp, kPhoneLookUp,
          "UPDATE tPFolder SET [Flag] = 4 WHERE [PhoneID] = 1 AND [Path] = 'L''''§';"},
         GivenList("0")},
        {"DB_PLAYERMUSIC_SetDeletedPlaylist/Unconfirmed",
         SetDeletedPlaylist,
         {kPhoneLookUp, kFlagLookUp, kDeleteList, kDeleteFiles},
         GivenList("3")},
        {"DB_PLAYERMUSIC_SetDeletedPlaylist/New", SetDeletedPlaylist, {kPhoneLookUp, kFlagLookUp}, GivenList("1")},
    };
}

}  // namespace

std::vector<CallCase> PlaylistCases()
{
    std::vector<CallCase> cases = {
        {"DB_PLAYERMUSIC_AddPlaylist",
         [](const Exports& lib) {
             const Playlist list("L''§", "D''§");
             return lib.DB_PLAYERMUSIC_AddPlaylist(Imei(), &list);
         },
         {kPhoneLookUp,
          "UPDATE tPFolder SET [Flag] = 0, [Digest] = 'D''§', [Count] = 7, [Size] = 70000000000, [TotalSize] = "
          "700000000000, [Sized] = 1 WHERE [PhoneID] = 1 AND [Path] = 'L''''§' AND [Flag] = 3 AND [IdInPhone] NOTNULL "
          "AND [IdInPhone] <> '(null)';",
          "UPDATE tPFolder SET [Flag] = 1, [Digest] = 'D''§', [Count] = 7, [Size] = 70000000000, [TotalSize] = "
          "700000000000, [Sized] = 1 WHERE [PhoneID] = 1 AND [Path] = 'L''''§' AND [Flag] = 3 AND ([IdInPhone] ISNULL "
          "OR [IdInPhone] = '(null)');",
          "UPDATE tPFolder SET [Digest] = 'D''§', [Count] = 7, [Size] = 70000000000, [TotalSize] = 700000000000, "
          "[Sized] = 1 WHERE [PhoneID] = 1 AND [Path] = 'L''''§';",
          "INSERT INTO tPFolder ([PhoneID], [Path], [Digest], [Type], [Flag], [Count], [Size], [TotalSize], [Sized], "
          "[AddTime]) VALUES (1, 'L''''§', 'D''§', 5, 1, 7, 70000000000, 700000000000, 1, '<now>');"}},
        {"DB_PLAYERMUSIC_AddPlaylist/UnknownPhone",
         [](const Exports& lib) {
             const Playlist list("L''§", "D''§");
             return lib.DB_PLAYERMUSIC_AddPlaylist(W("X"), &list);
         },
         {"SELECT [ID] FROM tPhone WHERE  [IMEI] = 'X';"}},
        {"DB_PLAYERMUSIC_ClearAll",
         [](const Exports& lib) { return lib.DB_PLAYERMUSIC_ClearAll(Imei()); },
         {kPhoneLookUp, "UPDATE tPFolder SET [Flag] = 3 WHERE [PhoneID] = 1 AND [Flag] <> 4;"}},
        {"DB_PLAYERMUSIC_GetPlaylists",
         [](const Exports& lib) {
             PlaylistList list = {};
             return lib.DB_PLAYERMUSIC_GetPlaylists(Imei(), &list);
         },
         {kPhoneLookUp, "SELECT COUNT(*) FROM tPFolder WHERE [PhoneID] = 1;",
          "SELECT ROWID, [Path], [Digest], [IdInPhone], [Type], [Flag], [Count], [Size], [TotalSize], [Sized], "
          "[Selected] FROM tPFolder WHERE [PhoneID] = 1;"}},
        {"DB_PLAYERMUSIC_IsListSelected",
         [](const Exports& lib) { return lib.DB_PLAYERMUSIC_IsListSelected(Imei(), Name()); },
         {"SELECT [Selected] FROM vPFolder WHERE [IMEI] = 'I''§' AND [Path] = 'L''''§';"}},
        {"DB_PLAYERMUSIC_SetListSelected",
         [](const Exports& lib) { return lib.DB_PLAYERMUSIC_SetListSelected(Imei(), Name(), 7); },
         {kPhoneLookUp, "UPDATE tPFolder SET [Selected] = 7 WHERE [PhoneID] = 1 AND [Path] = 'L''''§';"}},
        {"DB_PLAYERMUSIC_SetAddedPlaylist",
         [](const Exports& lib) {
             const Playlist list("L''§", "D''§", "J''§");
             return lib.DB_PLAYERMUSIC_SetAddedPlaylist(Imei(), &list);
         },
         {kPhoneLookUp,
          "UPDATE tPFolder SET [Flag] = 0, [IdInPhone] = 'J''''§' WHERE [PhoneID] = 1 AND [Path] = 'L''''§';"}},
        {"DB_PLAYERMUSIC_SetUpdatedPlaylist",
         [](const Exports& lib) {
             const Playlist list("L''§");
             return lib.DB_PLAYERMUSIC_SetUpdatedPlaylist(Imei(), &list);
         },
         {kPhoneLookUp, "UPDATE tPFolder SET [Flag] = 0 WHERE [PhoneID] = 1 AND [Path] = 'L''''§';"}},
    };
    for (CallCase& each : DeletionCases()) {
        cases.push_back(std::move(each));
    }
    return cases;
}

std::vector<CallCase> PlaylistFileCases()
{
    return {
        {"DB_PLAYERMUSIC_IsSyncedFile",
         [](const Exports& lib) {
             SyncedFileRecord file = {};
             return lib.DB_PLAYERMUSIC_IsSyncedFile(Imei(), W("F''§"), &file);
         },
         {"SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vPFile WHERE [IMEI] = 'I''§' AND "
          "[Path] = 'F''''§';"}},
        {"DB_PLAYERMUSIC_GetSyncedFiles",
         [](const Exports& lib) {
             SyncedFileList list = {};
             return lib.DB_PLAYERMUSIC_GetSyncedFiles(Imei(), Name(), &list);
         },
         {"SELECT COUNT(*) FROM vPFile WHERE [IMEI] = 'I''§';",
          "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vPFile WHERE [IMEI] = 'I''§';"},
         "INSERT INTO tPFile VALUES (1, 'F', 'other', '', ''), (2, 'F', 'other', '', '')"},
        {"DB_PLAYERMUSIC_SetAddedFile",
         [](const Exports& lib) {
             const SyncedFile file("F''§", "L''§", "Q''§", kTime);
             return lib.DB_PLAYERMUSIC_SetAddedFile(Imei(), &file);
         },
         {kPhoneLookUp,
          "INSERT INTO tPFile ([PhoneID], [Path], [BasePath], [PhonePath], [ModifiedTime]) VALUES (1, 'F''''§', "
          "'L''''§', 'Q''''§', '2024-02-29 12:34:56');",
          "UPDATE tPFolder SET [Flag] = 0 WHERE [PhoneID] = 1 AND [PATH] = 'L''''§';"}},
        {"DB_PLAYERMUSIC_SetDeletedFile",
         [](const Exports& lib) {
             const SyncedFile file("F''§", "L''§", "Q''§", kTime);
             return lib.DB_PLAYERMUSIC_SetDeletedFile(Imei(), &file);
         },
         {kPhoneLookUp, "DELETE FROM tPFile WHERE [PhoneID] = 1 AND [Path] = 'F''''§';"}},
        {"DB_PLAYERMUSIC_SetUpdatedFile",
         [](const Exports& lib) {
             const SyncedFile file("F''§", "L''§", "Q''§", kTime);
             return lib.DB_PLAYERMUSIC_SetUpdatedFile(Imei(), &file);
         },
         {kPhoneLookUp,
          "UPDATE tPFile SET [PhonePath] = 'Q''''§', [ModifiedTime] = '2024-02-29 12:34:56' WHERE [PhoneID] = 1 AND "
          "[Path] = 'F''''§';"}},
        {"DB_PLAYERMUSIC_GetListFilesname",
         [](const Exports& lib) {
             FileNameArray names = {};
             return lib.DB_PLAYERMUSIC_GetListFilesname(Imei(), Name(), &names);
         },
         {"SELECT [Filename] FROM tPFilename WHERE [IMEI] = 'I''§' AND [Listname] = 'L''''§';"}},
        {"DB_PLAYERMUSIC_SetListFilesname",
         [](const Exports& lib) {
             Text first = W("A''§");
             Text second = W("B''§");
             DbChar* items[] = {first.get(), nullptr, second.get()};
             const FileNameArray names = {3, items};
             return lib.DB_PLAYERMUSIC_SetListFilesname(Imei(), Name(), &names);
         },
         {"DELETE FROM tPFilename WHERE [IMEI] = 'I''§' AND [Listname] = 'L''''§';",
          "INSERT INTO tPFilename ([IMEI], [Listname], [Filename]) VALUES ('I''§', 'L''''§', 'B''''§');",
          "INSERT INTO tPFilename ([IMEI], [Listname], [Filename]) VALUES ('I''§', 'L''''§', '');",
          "INSERT INTO tPFilename ([IMEI], [Listname], [Filename]) VALUES ('I''§', 'L''''§', 'A''''§');"}},
    };
}

}  // namespace kesta::test
