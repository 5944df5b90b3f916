// Bookmarks, and the backups made of phones.
#include "statements/call_case.h"

namespace kesta::test {

std::vector<CallCase> BookmarkCases()
{
    const std::string given =
        "INSERT INTO tBFile ([PhoneID], [Path], [Type]) VALUES (1, 'U''''§', 5), (2, 'U''''§', 5);";
    return {
        {"DB_BOOKMARK_ClearAll",
         [](const Exports& lib) { return lib.DB_BOOKMARK_ClearAll(Imei()); },
         {kPhoneLookUp, "DELETE FROM tBFile WHERE [PhoneID] = 1;"}},
        {"DB_BOOKMARK_IsSyncedMark",
         [](const Exports& lib) { return lib.DB_BOOKMARK_IsSyncedMark(Imei(), W("U''§")); },
         {kTypeLookUp, "SELECT * FROM vBFile WHERE [IMEI] = 'I''§' AND [Path] = 'U''''§' AND [Type] = 5;"}},
        {"DB_BOOKMARK_GetSyncedMarks",
         [](const Exports& lib) {
             BookmarkList list = {};
             return lib.DB_BOOKMARK_GetSyncedMarks(Imei(), &list);
         },
         {kTypeLookUp, "SELECT COUNT(*) FROM vBFile WHERE [IMEI] = 'I''$' AND [Type] = 5;",
          "SELECT [Title], [Path], [PhoneMID], [Flag] FROM vBFile WHERE [IMEI] = 'I''$' AND [Type] = 5;"},
         given},
        {"DB_BOOKMARK_GetSyncedMark",
         [](const Exports& lib) {
             BookmarkRecord bookmark = {};
             return lib.DB_BOOKMARK_GetSyncedMark(Imei(), W("U''§"), &bookmark);
         },
         {kTypeLookUp,
          "SELECT [Title], [PhoneMID], [Flag], [Id] FROM vBFile WHERE [IMEI] = 'I''$' AND [Path] = 'U''''$' AND "
          "[Type] = 5;"}},
        {"DB_BOOKMARK_SetAddedMark",
         [](const Exports& lib) {
             const Bookmark bookmark("U''§", "T''§", "M''§");
             return lib.DB_BOOKMARK_SetAddedMark(Imei(), &bookmark);
         },
         {kTypeLookUp, kPhoneLookUp,
          "INSERT INTO tBFile ([PhoneID], [Title], [Path], [PhoneMID], [Id], [Flag], [Type]) VALUES (1, 'T''''§', "
          "'U''''§', 'M''''§', 11, 22, 5);"}},
        {"DB_BOOKMARK_SetDeletedMark",
         [](const Exports& lib) { return lib.DB_BOOKMARK_SetDeletedMark(Imei(), W("U''§")); },
         {kTypeLookUp, kPhoneLookUp, "DELETE FROM tBFile WHERE [PhoneID] = 1 AND [Path] = 'U''''§' AND [Type] = 5;"}},
        {"DB_BOOKMARK_SetUpdatedMark",
         [](const Exports& lib) {
             const Bookmark bookmark("U''§", "T''§", "M''§");
             return lib.DB_BOOKMARK_SetUpdatedMark(Imei(), &bookmark);
         },
         {kTypeLookUp, kPhoneLookUp,
          "UPDATE tBFile SET [Title] = 'T''''§', [PhoneMID] = 'M''''§', [Flag] = 22 WHERE [PhoneID] = 1 AND [Path] = "
          "'U''''§' AND [Type] = 5;"}},
    };
}

namespace {

const char* const kBackupLookUp = "SELECT [bcID] FROM tBackups WHERE [Path] = 'C''''§';";
const char* const kInsertBackup =
    "INSERT INTO tBackups ([phoneID], [Path], [PhonePath], [Size], [ModifiedTime]) \t\t\t\t\t\t\t\tVALUES (1, "
    "'C''''§', 'Q''''§', 12345678901, '2024-02-29 12:34:56');";
const std::string kBackupsTable =
    "CREATE TABLE tBackups([bcID] INTEGER PRIMARY KEY, [phoneID], [Path], [PhonePath], [Size], [ModifiedTime]);";

int32_t AddBackup(const Exports& lib)
{
    Backup backup("C''§", "Q''§");
    return lib.DB_BACKUP_AddBackup(Imei(), &backup);
}

}  // namespace

std::vector<CallCase> BackupCases()
{
    const std::string given = kBackupsTable + "INSERT INTO tBackups VALUES (8, 1, 'C''''§', '', 0, '');";
    return {
        {"DB_BACKUP_AddBackup/NoTable", AddBackup, {kPhoneLookUp, kBackupLookUp}},
        {"DB_BACKUP_AddBackup", AddBackup, {kPhoneLookUp, kBackupLookUp, kInsertBackup}, kBackupsTable},
        {"DB_BACKUP_AddBackup/Known",
         AddBackup,
         {kPhoneLookUp, kBackupLookUp,
          "UPDATE tBackups SET [PhonePath] = 'Q''''§', [Size] = 12345678901, [ModifiedTime] = '2024-02-29 12:34:56' "
          "WHERE [bcID] = 8;"},
         given},
        {"DB_BACKUP_AddBackup/KnownAsMinusOne",
         AddBackup,
         {kPhoneLookUp, kBackupLookUp,
          "UPDATE tBackups SET [PhonePath] = 'Q''''§', [Size] = 12345678901, [ModifiedTime] = '2024-02-29 12:34:56' "
          "WHERE [bcID] = -1;",
          kInsertBackup},
         kBackupsTable + "INSERT INTO tBackups VALUES (-1, 1, 'C''''§', '', 0, '');"},
        {"DB_BACKUP_ClearAll", [](const Exports& lib) { return lib.DB_BACKUP_ClearAll(); }, {"DELETE FROM tBackups;"}},
        {"DB_BACKUP_DeleteBackups",
         [](const Exports& lib) { return lib.DB_BACKUP_DeleteBackups(Imei()); },
         {kPhoneLookUp, "DELETE FROM tBackups WHERE [phoneID] = 1;"}},
        {"DB_BACKUP_DeleteBackup",
         [](const Exports& lib) { return lib.DB_BACKUP_DeleteBackup(-8); },
         {"DELETE FROM tBackups WHERE [bcID] = -8;"}},
        {"DB_BACKUP_FileExist",
         [](const Exports& lib) { return lib.DB_BACKUP_FileExist(W("C''§")); },
         {"SELECT COUNT(*) FROM tBackups WHERE [Path] = 'C''''§';"}},
        {"DB_BACKUP_GetAllBackups",
         [](const Exports& lib) {
             BackupList list = {};
             return lib.DB_BACKUP_GetAllBackups(&list);
         },
         {"SELECT COUNT(*) FROM tBackups;",
          "SELECT [bcID], [Path], [PhonePath], [Size], DATETIME([ModifiedTime]) FROM tBackups;"},
         given},
        {"DB_BACKUP_GetPhoneBackups",
         [](const Exports& lib) {
             BackupList list = {};
             return lib.DB_BACKUP_GetPhoneBackups(Imei(), &list);
         },
         {kPhoneLookUp, "SELECT COUNT(*) FROM tBackups WHERE [phoneID] = 1;",
          "SELECT [bcID], [Path], [PhonePath], [Size], DATETIME([ModifiedTime]) FROM tBackups WHERE [phoneID] = 1;"},
         given},
    };
}

}  // namespace kesta::test
