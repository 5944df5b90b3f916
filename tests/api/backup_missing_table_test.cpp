// Backups on a database as the library makes it: there is no table for them, and every export says so in its own way.
#include "api/records.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

class BackupMissingTable : public FamilyExports {};

TEST_F(BackupMissingTable, FreshDatabase_HasTheTableOfTheOtherName)
{
    EXPECT_EQ(sql.text("SELECT name FROM sqlite_schema WHERE type = 'table' AND name LIKE 'tBackup%'"), "tBackup");
}

TEST_F(BackupMissingTable, AddBackup_FailsAtTheSearch)
{
    Backup backup("C:\\1");
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &backup), 1);
    EXPECT_EQ(backup.bcID, -1);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_BACKUP_AddBackup(szIMEI: 351111, Path: C:\\1).",
                            "Error in DB_BACKUP_AddBackup(), position 1.", "Exit DB_BACKUP_AddBackup() with 1."));
}

TEST_F(BackupMissingTable, ClearAll_GivesSqlitesCode)
{
    EXPECT_EQ(lib.DB_BACKUP_ClearAll(), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_BACKUP_ClearAll().", "Error in DB_INTERNAL_ClearTable(), position 1.",
                            "Exit DB_BACKUP_ClearAll() with 1."));
}

TEST_F(BackupMissingTable, DeleteBackups_GivesSqlitesCode)
{
    EXPECT_EQ(lib.DB_BACKUP_DeleteBackups(W(kImei)), 1);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_BACKUP_DeleteBackups(szIMEI: 351111).",
                                          "Error in DB_BACKUP_DeleteBackups(), position 1.",
                                          "Exit DB_BACKUP_DeleteBackups() with 1."));
}

TEST_F(BackupMissingTable, DeleteBackup_GivesSqlitesCode)
{
    EXPECT_EQ(lib.DB_BACKUP_DeleteBackup(3), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_BACKUP_DeleteBackup(BackupID: 3).",
                            "Error in DB_BACKUP_DeleteBackup(), position 1.", "Exit DB_BACKUP_DeleteBackup() with 1."));
}

TEST_F(BackupMissingTable, FileExist_AnswersZero)
{
    EXPECT_EQ(lib.DB_BACKUP_FileExist(W("C:\\1")), 0);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_BACKUP_FileExist(szPath: C:\\1).", "Error in DB_BACKUP_FileExist(), position 1.",
                            "Exit DB_BACKUP_FileExist() with bExit = 0."));
}

TEST_F(BackupMissingTable, Lists_FailAndStayEmpty)
{
    BackupList list = {};
    EXPECT_EQ(lib.DB_BACKUP_GetAllBackups(&list), 1);
    EXPECT_EQ(lib.DB_BACKUP_GetPhoneBackups(W(kImei), &list), 1);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(
        trace.take(),
        ElementsAre("Enter DB_BACKUP_GetAllBackups().", "Error in DB_BACKUP_GetAllBackups(), position 1.",
                    "Exit DB_BACKUP_GetAllBackups() with 1.", "Enter DB_BACKUP_GetPhoneBackups(szIMEI: 351111).",
                    "Error in DB_BACKUP_GetPhoneBackups(), position 1.", "Exit DB_BACKUP_GetPhoneBackups() with 1."));
}

TEST_F(ClosedDatabase, Backups_EveryExport_AnswersItsPreset)
{
    Backup backup("C:\\1");
    BackupList list = {};
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &backup), 1);
    EXPECT_EQ(backup.bcID, -1);
    EXPECT_EQ(lib.DB_BACKUP_ClearAll(), 1);
    EXPECT_EQ(lib.DB_BACKUP_DeleteBackups(W(kImei)), 1);
    EXPECT_EQ(lib.DB_BACKUP_DeleteBackup(1), 1);
    EXPECT_EQ(lib.DB_BACKUP_FileExist(W("C:\\1")), 0);
    EXPECT_EQ(lib.DB_BACKUP_GetAllBackups(&list), 1);
    EXPECT_EQ(lib.DB_BACKUP_GetPhoneBackups(W(kImei), &list), 1);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(
        trace.take(),
        ElementsAre("Enter DB_BACKUP_AddBackup(szIMEI: 351111, Path: C:\\1).", "Exit DB_BACKUP_AddBackup() with 1.",
                    "Enter DB_BACKUP_ClearAll().", "Exit DB_BACKUP_ClearAll() with 1.",
                    "Enter DB_BACKUP_DeleteBackups(szIMEI: 351111).", "Exit DB_BACKUP_DeleteBackups() with 1.",
                    "Enter DB_BACKUP_DeleteBackup(BackupID: 1).", "Exit DB_BACKUP_DeleteBackup() with 1.",
                    "Enter DB_BACKUP_FileExist(szPath: C:\\1).", "Exit DB_BACKUP_FileExist() with bExit = 0.",
                    "Enter DB_BACKUP_GetAllBackups().", "Exit DB_BACKUP_GetAllBackups() with 1.",
                    "Enter DB_BACKUP_GetPhoneBackups(szIMEI: 351111).", "Exit DB_BACKUP_GetPhoneBackups() with 1."));
}

}  // namespace
}  // namespace kesta::test
