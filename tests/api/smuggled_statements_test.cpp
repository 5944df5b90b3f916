// A text that goes into a statement unescaped can end it and begin another. What can be smuggled in that way is
// bounded: rows can be read and changed, and nothing else.
#include "api/given.h"

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
