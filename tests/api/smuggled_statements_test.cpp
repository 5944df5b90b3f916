// A text that goes into a statement unescaped can end it and begin another. What can be smuggled in that way is
// bounded: rows can be read and changed, and nothing else.
#include "api/records.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class SmuggledStatement : public OpenDatabase, public ::testing::WithParamInterface<const char*> {
protected:
    SmuggledStatement()
    {
        givenPhone();
        schema = sql.text("SELECT type, name, sql FROM sqlite_master ORDER BY 1, 2");
    }

    std::string smuggle() const { return "x'; " + std::string(GetParam()) + "; --"; }

    /// No transaction is left open, no lock held, and the schema and the settings are what they were.
    void expectNothingDone()
    {
        sql.exec("UPDATE tPhone SET [Name] = 'another program can write'");
        EXPECT_EQ(sql.text("SELECT type, name, sql FROM sqlite_master ORDER BY 1, 2"), schema);
        EXPECT_EQ(sql.text("SELECT [SDType], [SDOldType] FROM tPhone"), "0|0");
        EXPECT_EQ(lib.DB_LIB_SetSDType(W(kImei), 3, 4), 0);
        EXPECT_EQ(sql.text("SELECT [SDType], [SDOldType] FROM tPhone"), "3|4");
    }

    std::string schema;
};

INSTANTIATE_TEST_SUITE_P(, SmuggledStatement,
                         ::testing::Values("BEGIN", "BEGIN EXCLUSIVE", "COMMIT", "ROLLBACK", "SAVEPOINT s", "RELEASE s",
                                           "PRAGMA synchronous = OFF", "PRAGMA journal_mode = MEMORY",
                                           "PRAGMA user_version = 7", "SELECT * FROM pragma_table_info('tPhone')",
                                           "DROP TABLE tMFile", "DROP VIEW vMFile", "DROP INDEX IDX_TPHONE_IMEI",
                                           "CREATE TABLE t(a)", "CREATE TEMP TABLE t(a)", "CREATE VIEW v AS SELECT 1",
                                           "CREATE TRIGGER r AFTER INSERT ON tPhone BEGIN SELECT 1; END",
                                           "CREATE INDEX i ON tPhone([Name])", "ALTER TABLE tPhone RENAME TO other",
                                           "ATTACH ':memory:' AS a", "DETACH main", "VACUUM",
                                           "VACUUM INTO 'elsewhere.db'", "ANALYZE", "REINDEX",
                                           "CREATE VIRTUAL TABLE f USING fts5(a)", "DELETE FROM sqlite_master",
                                           "UPDATE sqlite_master SET sql = ''"));

TEST_P(SmuggledStatement, InAStatementThatIsRun_IsRefusedAndCountsAsItsFailure)
{
    EXPECT_EQ(lib.DB_LIB_SetSDType(W(smuggle()), 1, 2), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(HasSubstr("Enter DB_LIB_SetSDType("), "Error in DB_LIB_SetSDType(), position 1.",
                            "Exit DB_LIB_SetSDType() with 1."));
    expectNothingDone();
}

TEST_P(SmuggledStatement, InALookUp_IsNotEvenCompiled)
{
    DateValue time = {};
    EXPECT_EQ(lib.DB_LIB_GetLastSyncTime(W(smuggle()), &time), 1);
    expectNothingDone();
}

/// Where a text is escaped it is a text, whatever it says.
TEST_P(SmuggledStatement, InAnEscapedText_IsStored)
{
    const Folder folder(smuggle());
    EXPECT_EQ(lib.DB_MUSIC_AddFolder(W(kImei), &folder), 0);
    EXPECT_EQ(sql.text("SELECT [Path] FROM tMFolder"), smuggle());
    expectNothingDone();
}

using SmuggledRows = OpenDatabase;

TEST_F(SmuggledRows, ChangesOfRows_AreNotRefused)
{
    givenPhone();
    EXPECT_EQ(lib.DB_LIB_SetSDType(W("x'; UPDATE tPhone SET [Name] = 'changed'; --"), 1, 2), 0);
    EXPECT_EQ(sql.text("SELECT [Name] FROM tPhone"), "changed");
}

/// The seven places where a text can bring a second statement along: one of a list of statements that is run whole.
class SecondStatement : public FamilyExports {
protected:
    /// In the place of the text, which stands between quotes; `rest` makes a whole statement of what follows it.
    static std::string smuggled(const std::string& rest = "--")
    {
        return "x'; UPDATE tPhone SET [Name] = 'changed'; " + rest;
    }

    void expectRun() { EXPECT_EQ(sql.text("SELECT DISTINCT [Name] FROM tPhone"), "changed"); }
    void expectNotRun() { EXPECT_EQ(sql.text("SELECT DISTINCT [Name] FROM tPhone"), kName); }
};

TEST_F(SecondStatement, ImeiOfLastSyncTime_IsRun)
{
    const DateValue time = Date(2024, 2, 29);
    (void)lib.DB_LIB_SetLastSyncTime(W(smuggled()), &time, 0, 0);
    expectRun();
}

TEST_F(SecondStatement, ImeiOfSdType_IsRun)
{
    (void)lib.DB_LIB_SetSDType(W(smuggled()), 1, 2);
    expectRun();
}

TEST_F(SecondStatement, ImeiOfFileNames_IsRun)
{
    const FileNameArray none = {0, nullptr};
    (void)lib.DB_PLAYERMUSIC_SetListFilesname(W(smuggled()), W("list"), &none);
    expectRun();
}

TEST_F(SecondStatement, DigestOfPlaylist_IsRun)
{
    const Playlist playlist("list", "x' WHERE 0; UPDATE tPhone SET [Name] = 'changed'; --");
    (void)lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &playlist);
    expectRun();
}

TEST_F(SecondStatement, GuidOfLogItem_IsRun)
{
    Text guid = W("a', 'b', '', ''); UPDATE tPhone SET [Name] = 'changed'; --");
    Text luid = W("l");
    PimLogItem item = {guid.get(), luid.get(), NullDate(), NullDate()};
    const PimLog log = {1, 1, &item};
    (void)lib.DB_PIMLOG_SaveLog(W(kImei), &log);
    expectRun();
}

TEST_F(SecondStatement, LuidOfLogItem_IsRun)
{
    Text guid = W("g");
    Text luid = W("b', '', ''); UPDATE tPhone SET [Name] = 'changed'; --");
    PimLogItem item = {guid.get(), luid.get(), NullDate(), NullDate()};
    const PimLog log = {1, 1, &item};
    (void)lib.DB_PIMLOG_SaveLog(W(kImei), &log);
    expectRun();
}

TEST_F(SecondStatement, PimIdOfFolder_IsRun)
{
    const PimFolder folder("f', 'p', 1); UPDATE tPhone SET [Name] = 'changed'; --");
    (void)lib.DB_PIM_AddFolder(&folder, nullptr);
    expectRun();
}

/// Elsewhere the first statement is the only one, whatever stands behind it.
TEST_F(SecondStatement, TextsOfOtherCalls_AreNotRun)
{
    const Text second = W(smuggled());
    int32_t type = 0;
    int32_t oldType = 0;
    DateValue time = {};
    PhoneSettingRecord phone = {};
    FolderList folders = {};
    SyncedFileList files = {};
    SyncedFileRecord file = {};
    const Folder folder("C:\\Music");
    const PimItem item("i', ?, 1); UPDATE tPhone SET [Name] = 'changed'; --");
    (void)lib.DB_LIB_GetSDType(second, &type, &oldType);
    (void)lib.DB_LIB_GetLastSyncTime(second, &time);
    (void)lib.DB_LIB_GetPhoneSetting(second, &phone);
    (void)lib.DB_LIB_SetFolderSelected(second, kMainFolderMusic, 1);
    (void)lib.DB_MUSIC_AddFolder(second, &folder);
    (void)lib.DB_MUSIC_GetFolders(second, &folders);
    (void)lib.DB_MUSIC_GetSyncedFiles(second, nullptr, &files);
    (void)lib.DB_MUSIC_IsSyncedFile(second, W("p"), &file);
    (void)lib.DB_BOOKMARK_IsSyncedMark(second, W("u"));
    (void)lib.DB_PIM_AddItem(&item, nullptr);
    (void)lib.DB_PIM_DeleteFolder(second);
    expectNotRun();
}

TEST_F(SmuggledRows, TriggersAndViewsOfTheFile_Work)
{
    givenPhone();
    changeSchema(
        "CREATE TABLE log(a); CREATE VIEW names AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
        "WHERE "
        "i < 3) SELECT upper('n' || i) AS name FROM n; CREATE TRIGGER t AFTER UPDATE ON tPhone BEGIN INSERT INTO log "
        "SELECT name FROM names; UPDATE log SET a = a || '!' WHERE a = 'N2'; DELETE FROM log WHERE a = 'N3'; END");
    EXPECT_EQ(lib.DB_LIB_SetSDType(W(kImei), 1, 2), 0);
    EXPECT_EQ(sql.text("SELECT a FROM log"), "N1\nN2!");
}

}  // namespace
}  // namespace kesta::test
