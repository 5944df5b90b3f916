// The connection and what runs on it: creation of the schema, statements without rows, columns, compiled look-ups.
#include "core/connection.h"

#include <sqlite3.h>

#include "core/busy_retry.h"
#include "core/caller_memory.h"
#include "core/database_file.h"
#include "core/schema.h"
#include "core/sql_exec.h"
#include "unit/module_under_test.h"

namespace kesta {
namespace {

using test::W;
using ::testing::ElementsAre;

class ConnectionParts : public ModuleUnderTest {
protected:
    /// One column of one row, as ReadTextColumn gives it.
    static std::string readText(const char* expression)
    {
        Statement rows = db().prepare(NarrowSql("SELECT %s", Name{expression}));
        if (!rows.step()) {
            return "no row";
        }
        DbChar* text = rows.newText(0);
        const std::string read = test::Utf8(text);
        FreeText(text);
        return read;
    }

    bool complete = false;
    std::string path = reinterpret_cast<const char*>(data.databasePath().u8string().c_str());
};

TEST_F(ConnectionParts, Create_FileWithTables_FailsAtPositionTwo)
{
    EXPECT_EQ(DB_INTERNAL_Create(path.c_str(), complete), ResultCode::kFailure);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre("DB TRACE >> Error in DB_INTERNAL_Create(), position 2.\n"));
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tVersion"), "1");
}

TEST_F(ConnectionParts, Create_SomeTableThereAlready_KeepsWhatRanBefore)
{
    const std::filesystem::path other = data.databaseFolder() / "other.db";
    const std::string name = reinterpret_cast<const char*>(other.u8string().c_str());
    ASSERT_EQ(DB_INTERNAL_Create(name.c_str(), complete), ResultCode::kSuccess);
    EXPECT_TRUE(complete);
    const test::Sql look(other);
    look.exec("DROP TABLE tBFile; DROP TABLE tBackup; DELETE FROM tVersion");
    EXPECT_EQ(DB_INTERNAL_Create(name.c_str(), complete), ResultCode::kFailure);
    EXPECT_FALSE(complete);
    EXPECT_EQ(look.text("SELECT name FROM sqlite_master WHERE name IN ('tBFile', 'tBackup') ORDER BY 1"),
              "tBFile\ntBackup");
    EXPECT_EQ(look.text("SELECT COUNT(*) FROM tVersion"), "0");
}

TEST_F(ConnectionParts, Create_PathThatCannotBe_FailsAtPositionOne)
{
    EXPECT_EQ(DB_INTERNAL_Create((path + "/below").c_str(), complete), ResultCode::kFailure);
    EXPECT_EQ(DB_INTERNAL_Create(nullptr, complete), ResultCode::kFailure);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre("DB TRACE >> Error in DB_INTERNAL_Create(), position 1.\n",
                                                      "DB TRACE >> Error in DB_INTERNAL_Create(), position 1.\n"));
}

TEST_F(ConnectionParts, ReadDatabaseVersion_EachKindOfFile_TellsWhatItIs)
{
    EXPECT_EQ(ReadDatabaseVersion(DatabasePath(data.databasePath())), 5005);
    sql.exec("UPDATE tVersion SET [Version] = 17");
    EXPECT_EQ(ReadDatabaseVersion(DatabasePath(data.databasePath())), 17);
    sql.exec("DELETE FROM tVersion");
    EXPECT_EQ(ReadDatabaseVersion(DatabasePath(data.databasePath())), -1);
    sql.exec("DROP TABLE tVersion");
    EXPECT_EQ(ReadDatabaseVersion(DatabasePath(data.databasePath())), -1);
    EXPECT_FALSE(ReadDatabaseVersion(DatabasePath(data.databasePath() / "below")).has_value());
}

TEST_F(ConnectionParts, SqlExec_SeveralStatements_RunInTheirOrder)
{
    EXPECT_EQ(SqlExec(NarrowSql("DELETE FROM tVersion; INSERT INTO tVersion VALUES (%d); "
                                "UPDATE tVersion SET [Version] = [Version] + 1",
                                int32_t{7})),
              ResultCode::kSuccess);
    EXPECT_EQ(sql.text("SELECT [Version] FROM tVersion"), "8");
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
}

TEST_F(ConnectionParts, SqlExec_RowsOfAQuery_AreNobodys)
{
    EXPECT_EQ(SqlExec(NarrowSql("SELECT * FROM tLibMainFolder")), ResultCode::kSuccess);
}

TEST_F(ConnectionParts, SqlExec_FailingStatement_IsPositionOneWithoutSqlitesCode)
{
    EXPECT_EQ(SqlExec(NarrowSql("INSERT INTO tLibMainFolder VALUES (1000, 'x', 0, 0, '')")), ResultCode::kFailure);
    EXPECT_EQ(SqlExec(NarrowSql("nonsense")), ResultCode::kFailure);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre("DB TRACE >> Error in SqlExec(), position 1.\n",
                                                      "DB TRACE >> Error in SqlExec(), position 1.\n"));
}

TEST_F(ConnectionParts, SqlExec_ConnectionClosed_FailsSilently)
{
    db().close();
    EXPECT_EQ(SqlExec(NarrowSql("SELECT 1")), ResultCode::kFailure);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
}

TEST_F(ConnectionParts, BusyRetry_HundredAndOneTimes_AsksAgainAndThenGivesUp)
{
    for (int tries = 0; tries <= 100; ++tries) {
        EXPECT_EQ(BusyRetry(nullptr, tries), 5);
    }
    const std::vector<std::string> waiting = ReplacedServices::take();
    EXPECT_EQ(waiting, std::vector<std::string>(101, "DB TRACE >> Database busy, try again.\n"));
    EXPECT_EQ(ReplacedServices::sleeps(), std::vector<uint32_t>(101, 100u));
    EXPECT_EQ(BusyRetry(nullptr, 101), 0);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre("DB TRACE >> Database busy, failed.\n"));
    EXPECT_EQ(ReplacedServices::sleeps().size(), 101u);
}

TEST_F(ConnectionParts, NewText_EmptyAndNull_AreNull)
{
    EXPECT_EQ(readText("NULL"), "<null>");
    EXPECT_EQ(readText("''"), "<null>");
    EXPECT_EQ(readText("x''"), "<null>");
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
}

TEST_F(ConnectionParts, NewText_OneLongCharacterAmongOtherLetters_IsReadAtEveryPlace)
{
    for (const std::string character :
         {"x", "\xC2\x80", "\xC3\xA9", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBD",
          "\xF0\x90\x80\x80", "\xF0\x9F\x8E\xB5", "\xF4\x8F\xBF\xBF"}) {
        for (size_t length = 0; length < 40; ++length) {
            for (size_t place = 0; place <= length; ++place) {
                std::string text(length, 'a');
                text.insert(place, character);
                ASSERT_EQ(readText(("'" + text + "'").c_str()), text);
            }
        }
    }
}

TEST_F(ConnectionParts, NewText_LengthsAroundTheShortText_AreWhole)
{
    for (const size_t length : {1000u, 1021u, 1022u, 1023u, 1024u, 1025u, 2000u, 5000u}) {
        const std::string text = std::string(length, 'a') + "\xC3\xA9";
        EXPECT_EQ(readText(("'" + text + "'").c_str()), text) << length;
    }
}

TEST_F(ConnectionParts, Step_FileHeldByAnother_IsNoRow)
{
    Connection other;
    ASSERT_EQ(other.open(path.c_str()), SqliteCode::kOk);
    Statement rows = other.prepare(NarrowSql("SELECT [ID] FROM tLibMainFolder"));
    ASSERT_TRUE(rows.prepared());
    Connection holder;
    ASSERT_EQ(holder.open(path.c_str()), SqliteCode::kOk);
    ASSERT_EQ(holder.exec("BEGIN EXCLUSIVE"), SqliteCode::kOk);
    EXPECT_FALSE(rows.step());
    EXPECT_EQ(rows.last(), SqliteCode::kBusy);
    EXPECT_EQ(holder.exec("COMMIT"), SqliteCode::kOk);
}

/// What SQLite's own conversion makes of bytes that are not sound UTF-8, or are characters that are none.
TEST_F(ConnectionParts, NewText_UnsoundBytes_AreReadAsSqliteReadsThem)
{
    for (const char* bytes :
         {"80",     "C3",         "C328",   "E697",         "E69741",     "F09F8E",   "F09F8E41", "C080", "C1BF",
          "E08080", "EDA080",     "EDBFBF", "EDA0BDEDB880", "F0808080",   "F4908080", "F8888080", "FE",   "FF",
          "C3A980", "41C3A98041", "EFBFBE", "EFBFBF",       "41EFBFBF41", "EFBBBF41", "4100"}) {
        const std::string expression = "CAST(x'" + std::string(bytes) + "' AS TEXT)";
        Statement rows = db().prepare(NarrowSql("SELECT %s", Name{expression.c_str()}));
        ASSERT_TRUE(rows.step());
        DbChar* read = rows.newText(0);
        EXPECT_EQ(test::Utf8(read), test::Utf8(rows.wideText(0))) << bytes;
        FreeText(read);
    }
}

TEST_F(ConnectionParts, NewText_Numbers_AreReadAsTheirTexts)
{
    EXPECT_EQ(readText("12345"), "12345");
    EXPECT_EQ(readText("-1.5"), "-1.5");
    EXPECT_EQ(readText("x'4142'"), "AB");
}

TEST_F(ConnectionParts, BindBlob_LongerThanSqliteTakes_FailsTheStep)
{
    const uint8_t byte = 0;
    Statement insert = db().prepare(NarrowSql("INSERT INTO tPimItem ([pfID], [PimID], [Data]) VALUES (1, 'x', ?)"));
    insert.bindBlob(1, &byte, 2'000'000'000);
    EXPECT_FALSE(insert.step());
    EXPECT_EQ(insert.last(), SqliteCode::kTooBig);
    EXPECT_FALSE(insert.step());
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tPimItem"), "0");
}

TEST_F(ConnectionParts, Bind_NoSuchParameter_FailsTheStepThoughALaterOneIsBound)
{
    Statement insert = db().prepare(NarrowSql("INSERT INTO tPimInfo VALUES (?)"));
    insert.bindText(2, W("x"));
    insert.bindText(1, W("y"));
    EXPECT_FALSE(insert.step());
    EXPECT_EQ(static_cast<int>(insert.last()), 25);
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tPimInfo"), "0");
}

/// A view that never ends is part of a schema that somebody else has written.
TEST_F(ConnectionParts, EndlessStatement_IsInterrupted)
{
    sql.exec(
        "CREATE VIEW endless AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT i FROM n; "
        "CREATE TABLE t(a); CREATE TRIGGER forever AFTER INSERT ON t BEGIN DELETE FROM t WHERE a IN endless; END");
    db().limitRounds(3);
    EXPECT_EQ(db().exec(NarrowSql("SELECT COUNT(*) FROM endless")), SqliteCode::kInterrupted);
    EXPECT_EQ(db().exec(NarrowSql("INSERT INTO t VALUES (0)")), SqliteCode::kInterrupted);
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM t"), "0");
    for (int round = 0; round < 2; ++round) {
        Statement rows = db().prepareKept(NarrowSql("SELECT COUNT(*) FROM endless"));
        EXPECT_FALSE(rows.step());
        EXPECT_EQ(rows.last(), SqliteCode::kInterrupted);
    }
}

constexpr const char* kCountToTenThousand =
    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 10000) SELECT COUNT(*) FROM n";

/// Each statement has all of its steps, however often it runs and by whatever way.
TEST_F(ConnectionParts, ManyStatements_AreNotInterrupted)
{
    constexpr int kTimes = 12;
    db().limitRounds(6);
    for (int i = 0; i < kTimes; ++i) {
        EXPECT_EQ(db().exec(kCountToTenThousand), SqliteCode::kOk) << i;
    }
    for (int i = 0; i < kTimes; ++i) {
        Statement rows = db().prepare(NarrowSql("%s", Name{kCountToTenThousand}));
        ASSERT_TRUE(rows.step()) << i;
        EXPECT_EQ(rows.int32(0), 10000);
    }
    for (int i = 0; i < kTimes; ++i) {
        EXPECT_EQ(db().execKept(NarrowSql("%s", Name{kCountToTenThousand})), SqliteCode::kOk) << i;
    }
}

/// The limit is what a statement may still take: SQLite itself counts the rounds.
TEST_F(ConnectionParts, StatementOfExactlyTheMostRounds_IsNotInterrupted)
{
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(":memory:", &other), SQLITE_OK);
    int32_t rounds = 0;
    const auto count = [](void* counted) { return ++*static_cast<int32_t*>(counted) < 0 ? 1 : 0; };
    sqlite3_progress_handler(other, Connection::kStepsPerRound, count, &rounds);
    EXPECT_EQ(sqlite3_exec(other, kCountToTenThousand, nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(other);
    ASSERT_GT(rounds, 0);
    db().limitRounds(rounds);
    EXPECT_EQ(db().exec(kCountToTenThousand), SqliteCode::kOk);
    db().limitRounds(rounds - 1);
    EXPECT_EQ(db().exec(kCountToTenThousand), SqliteCode::kInterrupted);
}

/// Whoever can write the file can write its schema: a view may use only what is harmless.
TEST_F(ConnectionParts, ViewOfWhatIsNotHarmless_IsRefused)
{
    sql.exec("CREATE VIEW columns AS SELECT name FROM pragma_table_info('tPhone')");
    EXPECT_NE(sql.text("SELECT COUNT(*) FROM pragma_table_info('tPhone')"), "0");
    Connection other;
    ASSERT_EQ(other.open(path.c_str()), SqliteCode::kOk);
    EXPECT_EQ(other.exec("SELECT * FROM pragma_table_info('tPhone')"), SqliteCode::kOk);
    EXPECT_EQ(other.exec("SELECT * FROM columns"), SqliteCode::kError);
}

TEST_F(ConnectionParts, PrepareKept_SameTextAgain_GivesTheRowsOfNow)
{
    const auto phone = [] {
        Statement rows = db().prepareKept(NarrowSql("SELECT [ID] FROM tPhone WHERE [IMEI] = '1'"));
        return rows.prepared() && rows.step() ? rows.int32(0) : -1;
    };
    EXPECT_EQ(phone(), -1);
    sql.exec("INSERT INTO tPhone ([IMEI]) VALUES ('1')");
    EXPECT_EQ(phone(), 1);
    EXPECT_EQ(phone(), 1);
    sql.exec("UPDATE tPhone SET [ID] = 9");
    EXPECT_EQ(phone(), 9);
    sql.exec("ALTER TABLE tPhone RENAME TO elsewhere");
    EXPECT_EQ(phone(), -1);
    sql.exec("ALTER TABLE elsewhere RENAME TO tPhone");
    EXPECT_EQ(phone(), 9);
}

/// Compiled again it would not be prepared without its table.
TEST_F(ConnectionParts, PrepareKept_SameTextAgain_IsNotCompiledAgain)
{
    const auto look = [] { return db().prepareKept(NarrowSql("SELECT [ID] FROM tPhone")); };
    ASSERT_TRUE(look().prepared());
    sql.exec("ALTER TABLE tPhone RENAME TO elsewhere");
    EXPECT_EQ(db().exec("SELECT [ID] FROM tLibMainFolder"), SqliteCode::kOk);  // and learns of the renaming
    EXPECT_TRUE(look().prepared());
    EXPECT_FALSE(db().prepareKept(NarrowSql("SELECT [ID]  FROM tPhone")).prepared());
}

TEST_F(ConnectionParts, PrepareKept_ManyTextsByTurns_StayApart)
{
    for (int round = 0; round < 3; ++round) {
        for (int32_t i = 0; i < 10; ++i) {
            Statement rows = db().prepareKept(NarrowSql("SELECT %d", i));
            ASSERT_TRUE(rows.step());
            EXPECT_EQ(rows.int32(0), i);
        }
    }
    for (const size_t length : {200u, 248u, 249u, 250u, 300u, 5000u}) {  // around the longest text that is kept
        for (int round = 0; round < 2; ++round) {
            const std::string text(length, 'x');
            Statement rows = db().prepareKept(WideSql("SELECT '%s'", Escaped{W(text)}));
            ASSERT_TRUE(rows.step());
            EXPECT_EQ(test::Utf8(rows.wideText(0)), text);
        }
    }
}

TEST_F(ConnectionParts, PrepareKept_ReadHalfway_LetsGoOfTheFile)
{
    {
        Statement rows = db().prepareKept(NarrowSql("SELECT [ID] FROM tLibMainFolder"));
        ASSERT_TRUE(rows.step());
    }
    sql.exec("DELETE FROM tLibMainFolder");
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tLibMainFolder"), "0");
}

TEST_F(ConnectionParts, PrepareKept_NoStatement_TellsTheCode)
{
    EXPECT_EQ(db().prepareKept(NarrowSql("nonsense")).last(), SqliteCode::kError);
    EXPECT_FALSE(db().prepareKept(NarrowSql("nonsense")).prepared());
}

TEST_F(ConnectionParts, ExecKept_Failures_GiveSqlitesCode)
{
    const auto insert = [] { return db().execKept(NarrowSql("INSERT INTO tLibMainFolder VALUES (1, 'x', 0, 0, '')")); };
    EXPECT_EQ(insert(), SqliteCode::kOk);
    EXPECT_EQ(insert(), SqliteCode::kConstraint);
    EXPECT_EQ(db().execKept(NarrowSql("nonsense")), SqliteCode::kError);
    EXPECT_EQ(db().execKept(NarrowSql("SELECT * FROM tLibMainFolder")), SqliteCode::kOk);
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tLibMainFolder"), "8");
}

}  // namespace
}  // namespace kesta
