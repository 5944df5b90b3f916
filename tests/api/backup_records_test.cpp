// The records of backups, on a database that has the table for them.
#include "api/records.h"

namespace kesta::test {
namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;

constexpr char kTable[] =
    "CREATE TABLE tBackups ([bcID] INTEGER PRIMARY KEY AUTOINCREMENT, [phoneID] INTEGER, [Path] TEXT, [PhonePath] "
    "TEXT, [Size] NUMERIC, [ModifiedTime] DATETIME)";
constexpr char kEnterAdd[] = "Enter DB_BACKUP_AddBackup(szIMEI: 351111, Path: C:\\1).";
constexpr char kEnterAll[] = "Enter DB_BACKUP_GetAllBackups().";

class BackupRecords : public FamilyExports {
protected:
    BackupRecords() { givenSchema(kTable); }

    void givenBackups() const
    {
        sql.exec(
            "INSERT INTO tBackups VALUES (5, 1, 'C:\\1', 'P:/1', 10000000000, '2024-01-01 10:20:30'), (6, 2, "
            "'C:\\2', '', NULL, ''), (7, 1, 'C:\\3', NULL, -1, 'never')");
    }
    /// Puts a view in the place of the table, whose rows become those of "kept".
    void givenView(const std::string& path)
    {
        givenSchema("ALTER TABLE tBackups RENAME TO kept; CREATE VIEW tBackups AS SELECT [bcID], [phoneID], " + path +
                    " AS [Path], [PhonePath], [Size], [ModifiedTime] FROM kept");
    }
    [[nodiscard]] std::string rows() const { return sql.text("SELECT * FROM tBackups ORDER BY 1"); }
    void refuse(const std::string& what)
    {
        sql.exec("CREATE TRIGGER refuse BEFORE " + what + " ON tBackups BEGIN SELECT RAISE(ABORT, 'no'); END");
    }
};

TEST_F(BackupRecords, AddBackup_NewPath_IsInsertedAndNumbered)
{
    Backup backup("C:\\1", "P:/1");
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &backup), 0);
    EXPECT_EQ(backup.bcID, 1);
    EXPECT_EQ(rows(), "1|1|C:\\1|P:/1|12345678901|2024-02-29 12:34:56");
    EXPECT_THAT(trace.take(), ElementsAre(kEnterAdd, "Exit DB_BACKUP_AddBackup() with 0."));
}

TEST_F(BackupRecords, AddBackup_BehindAHighNumber_IsGivenTheNextOne)
{
    sql.exec("INSERT INTO tBackups ([bcID], [phoneID], [Path]) VALUES (2000000000, 1, 'C:\\0')");
    Backup backup("C:\\1", "P:/1");
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &backup), 0);
    EXPECT_EQ(backup.bcID, 2000000001);
}

TEST_F(BackupRecords, AddBackup_KnownPath_IsRefreshedUnderItsNumber)
{
    Backup first("C:\\1", "P:/1");
    ASSERT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &first), 0);
    trace.take();
    Backup second("C:\\1", "P:/O'Brien", 5, Date(2025, 1, 2, 3, 4, 5));
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &second), 183);
    EXPECT_EQ(second.bcID, first.bcID);
    EXPECT_EQ(rows(), "1|1|C:\\1|P:/O'Brien|5|2025-01-02 03:04:05");
    EXPECT_THAT(trace.take(), ElementsAre(kEnterAdd, "Exit DB_BACKUP_AddBackup() with 183."));
}

TEST_F(BackupRecords, AddBackup_PathOfAnotherPhone_IsFoundAndStaysThatPhones)
{
    givenBackups();
    Backup backup("C:\\2", "P:/new", 5);
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &backup), 183);
    EXPECT_EQ(backup.bcID, 6);
    EXPECT_EQ(sql.text("SELECT [phoneID], [PhonePath], [Size] FROM tBackups WHERE [bcID] = 6"), "2|P:/new|5");
    EXPECT_EQ(sql.text("SELECT count(*) FROM tBackups"), "3");
}

TEST_F(BackupRecords, AddBackup_PathWithApostropheAndEmoji_IsFoundAgain)
{
    const std::string path = "C:\\it's \xF0\x9F\x98\x80";
    Backup backup(path, "P:/it's");
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &backup), 0);
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &backup), 183);
    EXPECT_EQ(sql.text("SELECT [Path], [PhonePath] FROM tBackups"), path + "|P:/it's");
    EXPECT_EQ(lib.DB_BACKUP_FileExist(W(path)), 1);
}

TEST_F(BackupRecords, AddBackup_NullAndInvalidDates_ReadBackAsInvalid)
{
    Backup null("C:\\1", "P:/", 1, NullDate());
    Backup invalid("C:\\2", "P:/", 2, InvalidDate());
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &null), 0);
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &invalid), 0);
    EXPECT_EQ(sql.text("SELECT '<' || [ModifiedTime] || '>' FROM tBackups ORDER BY [bcID]"), "<>\n<Invalid DateTime>");
    BackupList list = {};
    EXPECT_EQ(lib.DB_BACKUP_GetAllBackups(&list), 0);
    EXPECT_THAT(Records(list), ElementsAre("1|C:\\1|P:/|1|<invalid>", "2|C:\\2|P:/|2|<invalid>"));
}

TEST_F(BackupRecords, AddBackup_NullTexts_AreStoredEmpty)
{
    Backup backup("");
    backup.Path = backup.PhonePath = nullptr;
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &backup), 0);
    EXPECT_EQ(sql.text("SELECT '<' || [Path] || [PhonePath] || '>' FROM tBackups"), "<>");
    EXPECT_EQ(trace.take().front(), "Enter DB_BACKUP_AddBackup(szIMEI: 351111, Path: (null)).");
}

TEST_F(BackupRecords, AddBackup_UnknownPhone_FailsWithoutNumber)
{
    Backup backup("C:\\1");
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W("999"), &backup), 1);
    EXPECT_EQ(backup.bcID, -1);
    EXPECT_EQ(rows(), "");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_BACKUP_AddBackup(szIMEI: 999, Path: C:\\1).",
                                          "Exit DB_BACKUP_AddBackup() with 1."));
}

TEST_F(BackupRecords, AddBackup_UpdateFails_StillTellsThatItWasKnown)
{
    givenBackups();
    refuse("UPDATE");
    Backup backup("C:\\1");
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &backup), 183);
    EXPECT_EQ(backup.bcID, -1);
    EXPECT_EQ(sql.text("SELECT count(*) FROM tBackups"), "3");
    EXPECT_THAT(trace.take(), ElementsAre(kEnterAdd, "Error in DB_BACKUP_AddBackup(), position 2.",
                                          "Exit DB_BACKUP_AddBackup() with 183."));
}

TEST_F(BackupRecords, AddBackup_InsertFails_TracesPositionThree)
{
    refuse("INSERT");
    Backup backup("C:\\1");
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &backup), 1);
    EXPECT_EQ(backup.bcID, -1);
    EXPECT_THAT(trace.take(), ElementsAre(kEnterAdd, "Error in DB_BACKUP_AddBackup(), position 3.",
                                          "Exit DB_BACKUP_AddBackup() with 1."));
}

/// A number of -1 is the sentinel for "none": such a row is refreshed, and then a second one is inserted.
TEST_F(BackupRecords, AddBackup_KnownPathUnderMinusOne_IsInsertedAgain)
{
    sql.exec("INSERT INTO tBackups VALUES (-1, 1, 'C:\\1', 'old', 1, '')");
    Backup backup("C:\\1", "P:/new", 5);
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &backup), 0);
    EXPECT_GT(backup.bcID, 0);
    EXPECT_EQ(sql.text("SELECT [Path], [PhonePath], [Size] FROM tBackups ORDER BY [bcID]"),
              "C:\\1|P:/new|5\nC:\\1|P:/new|5");
}

TEST_F(BackupRecords, AddBackup_KnownPathUnderMinusOneThatCannotBeInserted_TellsThatItWasKnown)
{
    sql.exec("INSERT INTO tBackups VALUES (-1, 1, 'C:\\1', 'old', 1, '')");
    refuse("INSERT");
    Backup backup("C:\\1");
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &backup), 183);
    EXPECT_EQ(backup.bcID, -1);
    EXPECT_THAT(trace.take(), ElementsAre(kEnterAdd, "Error in DB_BACKUP_AddBackup(), position 3.",
                                          "Exit DB_BACKUP_AddBackup() with 183."));
}

TEST_F(BackupRecords, AddBackup_PathTooLongForAStatement_FailsAtTheSearch)
{
    Backup backup(std::string(41000, 'x'));
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), &backup), 1);
    EXPECT_EQ(backup.bcID, -1);
    EXPECT_EQ(trace.take().at(1), "Error in DB_BACKUP_AddBackup(), position 1.");
}

TEST_F(BackupRecords, AddBackup_NullRecord_TakesTheExceptionWay)
{
    EXPECT_EQ(lib.DB_BACKUP_AddBackup(W(kImei), nullptr), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre("An exception occured in DB_BACKUP_AddBackup().", "Exit DB_BACKUP_AddBackup() with 1."));
}

TEST_F(BackupRecords, ClearAll_SeveralPhones_AllGo)
{
    givenBackups();
    EXPECT_EQ(lib.DB_BACKUP_ClearAll(), 0);
    EXPECT_EQ(rows(), "");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_BACKUP_ClearAll().", "Exit DB_BACKUP_ClearAll() with 0."));
}

TEST_F(BackupRecords, ClearAll_DeleteRefused_GivesSqlitesCode)
{
    givenBackups();
    refuse("DELETE");
    EXPECT_EQ(lib.DB_BACKUP_ClearAll(), 19);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_BACKUP_ClearAll().", "Error in DB_INTERNAL_ClearTable(), position 1.",
                            "Exit DB_BACKUP_ClearAll() with 19."));
}

TEST_F(BackupRecords, DeleteBackups_OnePhone_KeepsTheOthers)
{
    givenBackups();
    EXPECT_EQ(lib.DB_BACKUP_DeleteBackups(W(kImei)), 0);
    EXPECT_EQ(sql.text("SELECT [bcID] FROM tBackups"), "6");
    EXPECT_EQ(lib.DB_BACKUP_DeleteBackups(W("999")), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_BACKUP_DeleteBackups(szIMEI: 351111).", "Exit DB_BACKUP_DeleteBackups() with 0.",
                            "Enter DB_BACKUP_DeleteBackups(szIMEI: 999).", "Exit DB_BACKUP_DeleteBackups() with 1."));
}

TEST_F(BackupRecords, DeleteBackups_DeleteRefused_GivesSqlitesCode)
{
    givenBackups();
    refuse("DELETE");
    EXPECT_EQ(lib.DB_BACKUP_DeleteBackups(W(kImei)), 19);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_BACKUP_DeleteBackups(szIMEI: 351111).",
                                          "Error in DB_BACKUP_DeleteBackups(), position 1.",
                                          "Exit DB_BACKUP_DeleteBackups() with 19."));
}

TEST_F(BackupRecords, DeleteBackup_KnownAndUnknownNumber_Succeed)
{
    givenBackups();
    EXPECT_EQ(lib.DB_BACKUP_DeleteBackup(5), 0);
    EXPECT_EQ(lib.DB_BACKUP_DeleteBackup(-1), 0);
    EXPECT_EQ(sql.text("SELECT [bcID] FROM tBackups ORDER BY 1"), "6\n7");
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_BACKUP_DeleteBackup(BackupID: 5).", "Exit DB_BACKUP_DeleteBackup() with 0.",
                            "Enter DB_BACKUP_DeleteBackup(BackupID: -1).", "Exit DB_BACKUP_DeleteBackup() with 0."));
}

TEST_F(BackupRecords, DeleteBackup_DeleteRefused_GivesSqlitesCode)
{
    givenBackups();
    refuse("DELETE");
    EXPECT_EQ(lib.DB_BACKUP_DeleteBackup(5), 19);
    EXPECT_EQ(trace.take().at(1), "Error in DB_BACKUP_DeleteBackup(), position 1.");
}

TEST_F(BackupRecords, FileExist_RecordedPath_AnswersOneHoweverOften)
{
    givenBackups();
    sql.exec("INSERT INTO tBackups SELECT NULL, 2, [Path], '', 0, '' FROM tBackups");
    EXPECT_EQ(lib.DB_BACKUP_FileExist(W("C:\\1")), 1);
    EXPECT_EQ(lib.DB_BACKUP_FileExist(W("c:\\1")), 0);
    EXPECT_EQ(lib.DB_BACKUP_FileExist(nullptr), 0);
    EXPECT_THAT(
        trace.take(),
        ElementsAre("Enter DB_BACKUP_FileExist(szPath: C:\\1).", "Exit DB_BACKUP_FileExist() with bExit = 1.",
                    "Enter DB_BACKUP_FileExist(szPath: c:\\1).", "Exit DB_BACKUP_FileExist() with bExit = 0.",
                    "Enter DB_BACKUP_FileExist(szPath: (null)).", "Exit DB_BACKUP_FileExist() with bExit = 0."));
}

TEST_F(BackupRecords, GetAllBackups_SeveralBackups_GivesEveryField)
{
    givenBackups();
    BackupList list = {};
    EXPECT_EQ(lib.DB_BACKUP_GetAllBackups(&list), 0);
    EXPECT_THAT(Records(list), ElementsAre("5|C:\\1|P:/1|10000000000|2024-01-01 10:20:30", "6|C:\\2|<null>|0|<invalid>",
                                           "7|C:\\3|<null>|-1|<invalid>"));
    EXPECT_THAT(trace.take(), ElementsAre(kEnterAll, "Memory NEW.", "Memory NEW.", "Memory NEW.", "Memory NEW.",
                                          "Memory NEW.", "Exit DB_BACKUP_GetAllBackups() with 0."));
}

TEST_F(BackupRecords, GetAllBackups_NoBackups_EmptiesTheList)
{
    givenBackups();
    BackupList list = {};
    AliveMemory memory;
    ASSERT_EQ(lib.DB_BACKUP_GetAllBackups(&list), 0);
    EXPECT_EQ(memory.after(trace.take(Addresses::kKept)), 5u);
    sql.exec("DELETE FROM tBackups");
    EXPECT_EQ(lib.DB_BACKUP_GetAllBackups(&list), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    const std::vector<std::string> lines = trace.take(Addresses::kKept);
    EXPECT_EQ(memory.after(lines), 0u);
    EXPECT_EQ(lines.front(), kEnterAll);
}

TEST_F(BackupRecords, GetAllBackups_RowQueryFails_TracesPositionThreeAndKeepsTheArray)
{
    givenBackups();
    givenSchema("ALTER TABLE tBackups RENAME COLUMN [Size] TO [Elsewhere]");
    BackupList list = {};
    EXPECT_EQ(lib.DB_BACKUP_GetAllBackups(&list), 1);
    EXPECT_EQ(list.Count, 0);
    EXPECT_NE(list.Items, nullptr);
    EXPECT_EQ(lib.DB_BACKUP_GetPhoneBackups(W(kImei), &list), 1);
    EXPECT_NE(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre(kEnterAll, "Memory NEW.", "Error in DB_BACKUP_GetAllBackups(), position 3.",
                                          "Exit DB_BACKUP_GetAllBackups() with 1.",
                                          "Enter DB_BACKUP_GetPhoneBackups(szIMEI: 351111).", "Memory DELETE.",
                                          "Memory NEW.", "Error in DB_BACKUP_GetPhoneBackups(), position 3.",
                                          "Exit DB_BACKUP_GetPhoneBackups() with 1."));
}

TEST_F(BackupRecords, GetAllBackups_ReadingARowFails_GivesTheStepsCodeAndTheRowsBefore)
{
    givenBackups();
    givenView("CASE WHEN [bcID] = 6 THEN zeroblob(2000000000) ELSE [Path] END");
    BackupList list = {};
    EXPECT_EQ(lib.DB_BACKUP_GetAllBackups(&list), 18);
    EXPECT_THAT(Records(list), ElementsAre("5|C:\\1|P:/1|10000000000|2024-01-01 10:20:30"));
    EXPECT_EQ(trace.take().back(), "Exit DB_BACKUP_GetAllBackups() with 18.");
}

/// Each query over this view yields another number of rows, so that sooner or later more come than were counted.
TEST_F(BackupRecords, GetAllBackups_MoreRowsThanCounted_FillsWhatWasCountedAndGivesTheRowCode)
{
    givenSchema(
        "DROP TABLE tBackups; CREATE VIEW tBackups AS WITH RECURSIVE some(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM "
        "some WHERE n < 20) SELECT n AS [bcID], 1 AS [phoneID], 'C:\\' AS [Path], 'P:/' AS [PhonePath], 1 AS [Size], "
        "'' AS [ModifiedTime] FROM some WHERE random() % 2 = 0");
    BackupList list = {};
    bool moreCame = false;
    for (int i = 0; i < 200 && !moreCame; ++i) {
        const int32_t result =
            i % 2 == 0 ? lib.DB_BACKUP_GetAllBackups(&list) : lib.DB_BACKUP_GetPhoneBackups(W(kImei), &list);
        ASSERT_THAT(result, AnyOf(0, 100));
        moreCame = result == 100 && list.Count > 0;
    }
    EXPECT_TRUE(moreCame);
}

TEST_F(BackupRecords, GetPhoneBackups_OnePhone_ListsItsOwn)
{
    givenBackups();
    BackupList list = {};
    EXPECT_EQ(lib.DB_BACKUP_GetPhoneBackups(W(kImei), &list), 0);
    EXPECT_THAT(Records(list),
                ElementsAre("5|C:\\1|P:/1|10000000000|2024-01-01 10:20:30", "7|C:\\3|<null>|-1|<invalid>"));
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_BACKUP_GetPhoneBackups(szIMEI: 351111).", "Memory NEW.", "Memory NEW.",
                            "Memory NEW.", "Memory NEW.", "Exit DB_BACKUP_GetPhoneBackups() with 0."));
}

TEST_F(BackupRecords, GetPhoneBackups_PhoneWithoutBackupsBesideOneThatHasSome_EmptiesTheList)
{
    givenBackups();
    ASSERT_EQ(givenPhone("352222"), 2);
    ASSERT_EQ(givenPhone("353333"), 3);
    BackupList list = {};
    ASSERT_EQ(lib.DB_BACKUP_GetPhoneBackups(W("352222"), &list), 0);
    EXPECT_THAT(Records(list), ElementsAre("6|C:\\2|<null>|0|<invalid>"));
    trace.take();
    EXPECT_EQ(lib.DB_BACKUP_GetPhoneBackups(W("353333"), &list), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_BACKUP_GetPhoneBackups(szIMEI: 353333).", "Memory DELETE.",
                                          "Memory DELETE.", "Exit DB_BACKUP_GetPhoneBackups() with 0."));
}

TEST_F(BackupRecords, GetPhoneBackups_UnknownPhone_FailsWithAnEmptyList)
{
    givenBackups();
    BackupList list = {};
    ASSERT_EQ(lib.DB_BACKUP_GetPhoneBackups(W(kImei), &list), 0);
    trace.take();
    EXPECT_EQ(lib.DB_BACKUP_GetPhoneBackups(W("999"), &list), 1);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_BACKUP_GetPhoneBackups(szIMEI: 999).", "Memory DELETE.", "Memory DELETE.",
                            "Memory DELETE.", "Memory DELETE.", "Exit DB_BACKUP_GetPhoneBackups() with 1."));
}

TEST_F(BackupRecords, NullLists_TakeTheExceptionWay)
{
    EXPECT_EQ(lib.DB_BACKUP_GetAllBackups(nullptr), 1);
    EXPECT_EQ(lib.DB_BACKUP_GetPhoneBackups(W(kImei), nullptr), 1);
    EXPECT_THAT(trace.take(), ElementsAre(kEnterAll, "An exception occured in DB_BACKUP_GetAllBackups().",
                                          "Exit DB_BACKUP_GetAllBackups() with 1.",
                                          "Enter DB_BACKUP_GetPhoneBackups(szIMEI: 351111).",
                                          "An exception occured in DB_BACKUP_GetPhoneBackups().",
                                          "Exit DB_BACKUP_GetPhoneBackups() with 1."));
}

}  // namespace
}  // namespace kesta::test
