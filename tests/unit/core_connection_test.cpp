// The connection and what runs on it: creation of the schema, statements without rows, columns, compiled look-ups.
#include "core/connection.h"

#include <sqlite3.h>

#include "core/busy_retry.h"
#include "core/caller_memory.h"
#include "core/database_file.h"
#include "core/routine.h"
#include "core/schema.h"
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

TEST_F(ConnectionParts, Exec_SeveralStatements_RunInTheirOrder)
{
    EXPECT_EQ(db().exec(NarrowSql("DELETE FROM tVersion; INSERT INTO tVersion VALUES (%d); "
                                  "UPDATE tVersion SET [Version] = [Version] + 1",
                                  int32_t{7})),
              SqliteCode::kOk);
    EXPECT_EQ(sql.text("SELECT [Version] FROM tVersion"), "8");
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
}

TEST_F(ConnectionParts, Exec_RowsOfAQuery_AreNobodys)
{
    EXPECT_EQ(db().exec(NarrowSql("SELECT * FROM tLibMainFolder")), SqliteCode::kOk);
}

TEST_F(ConnectionParts, RoutineRun_FailingStatement_IsToldWithItsPosition)
{
    Routine self(db(), Trail("Some"));
    EXPECT_EQ(self.run(1, NarrowSql("INSERT INTO tLibMainFolder VALUES (1000, 'x', 0, 0, '')")), ResultCode::kFailure);
    EXPECT_EQ(self.exec(2, NarrowSql("INSERT INTO tLibMainFolder VALUES (1000, 'x', 0, 0, '')")),
              SqliteCode::kConstraint);
    EXPECT_EQ(self.run(3, NarrowSql("nonsense")), ResultCode::kFailure);
    EXPECT_EQ(self.run(1, NarrowSql("DELETE FROM tBFile")), ResultCode::kSuccess);
    EXPECT_THAT(ReplacedServices::take(),
                ElementsAre("DB TRACE >> Error in Some(), position 1.\n", "DB TRACE >> Error in Some(), position 2.\n",
                            "DB TRACE >> Error in Some(), position 3.\n"));
}

TEST_F(ConnectionParts, RoutineQueries_NoRowOrNoStatement_TakeWhatTheyAreGiven)
{
    Routine self(db(), Trail("Some"));
    EXPECT_EQ(self.firstNumber(1, NarrowSql("SELECT 5"), 7), 5);
    EXPECT_EQ(self.firstNumber(1, NarrowSql("SELECT 5 WHERE 0"), 7), 7);
    EXPECT_EQ(self.count(1, NarrowSql("SELECT 5")), 5);
    EXPECT_EQ(self.count(1, NarrowSql("SELECT 5 WHERE 0")), 0);
    int read = 0;
    const auto note = [&](const Statement& row) { read = row.int32(0); };
    EXPECT_EQ(self.first(1, NarrowSql("SELECT 6"), PassThrough, note), ResultCode::kSuccess);
    EXPECT_EQ(read, 6);
    EXPECT_EQ(static_cast<int>(self.first(1, NarrowSql("SELECT 8 WHERE 0"), PassThrough, note)), 101);
    EXPECT_EQ(self.first(1, NarrowSql("SELECT 8 WHERE 0"), EndOfRows, note), ResultCode::kSuccess);
    EXPECT_EQ(self.first(1, NarrowSql("SELECT 8 WHERE 0"), NoRowIsFailure, note), ResultCode::kFailure);
    EXPECT_EQ(read, 6);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
    EXPECT_EQ(self.firstNumber(1, NarrowSql("nonsense"), 7), 7);
    EXPECT_EQ(self.count(2, NarrowSql("nonsense")), std::nullopt);
    EXPECT_EQ(self.first(3, NarrowSql("nonsense"), NoRowIsSuccess, note), ResultCode::kFailure);
    EXPECT_THAT(ReplacedServices::take(),
                ElementsAre("DB TRACE >> Error in Some(), position 1.\n", "DB TRACE >> Error in Some(), position 2.\n",
                            "DB TRACE >> Error in Some(), position 3.\n"));
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

/// What SQLite's own conversion makes of bytes that are not valid UTF-8, or are characters that are none.
TEST_F(ConnectionParts, NewText_InvalidBytes_AreReadAsSqliteReadsThem)
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
    Statement rows = other.prepare("SELECT [ID] FROM tLibMainFolder");
    ASSERT_TRUE(rows.prepared());
    Connection holder;
    ASSERT_EQ(holder.open(path.c_str()), SqliteCode::kOk);
    ASSERT_EQ(holder.exec("BEGIN EXCLUSIVE"), SqliteCode::kOk);
    EXPECT_FALSE(rows.step());
    EXPECT_EQ(rows.last(), SqliteCode::kBusy);
    EXPECT_EQ(holder.exec("COMMIT"), SqliteCode::kOk);
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

/// In a file that keeps texts in UTF-16 SQLite has no need to convert the text, and so to copy it, by itself.
TEST_F(ConnectionParts, BindText_InAFileOfUtf16_OutlivesTheCall)
{
    const std::u8string file = (data.databaseFolder() / "wide.db").u8string();
    const auto* const name = reinterpret_cast<const char*>(file.c_str());
    sqlite3* made = nullptr;
    ASSERT_EQ(sqlite3_open(name, &made), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(made, "PRAGMA encoding = 'UTF-16le'; CREATE TABLE t(a)", nullptr, nullptr, nullptr),
              SQLITE_OK);
    EXPECT_EQ(sqlite3_close(made), SQLITE_OK);
    Connection connection;
    StatementBuffer buffer;
    ASSERT_EQ(connection.open(name), SqliteCode::kOk);
    connection.makeStatementsIn(buffer);
    const std::string text(300, 'x');
    {
        Statement insert = connection.prepare(NarrowSql("INSERT INTO t VALUES (?)"));
        insert.bindText(1, W(text));
        const std::vector<std::basic_string<DbChar>> others(100, std::basic_string<DbChar>(text.size(), DbChar{}));
        EXPECT_FALSE(insert.step());
        EXPECT_EQ(insert.last(), SqliteCode::kDone);
    }
    Statement rows = connection.prepare(NarrowSql("SELECT a FROM t"));
    ASSERT_TRUE(rows.step());
    DbChar* read = rows.newText(0);
    EXPECT_EQ(test::Utf8(read), text);
    FreeText(read);
}

/// What is cut would be a statement of its own here.
TEST_F(ConnectionParts, QueryThatIsTooLong_IsNotRunCut)
{
    const std::string comment = "1 -- " + std::string(41000, 'x');
    Statement rows = db().prepare(NarrowSql("SELECT %s", Name{comment.c_str()}));
    EXPECT_FALSE(rows.prepared());
    EXPECT_EQ(rows.last(), SqliteCode::kTooBig);
    EXPECT_EQ(db().exec(NarrowSql("SELECT %s", Name{comment.c_str()})), SqliteCode::kTooBig);
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
        Statement rows = db().prepare(NarrowSql("SELECT COUNT(*) FROM endless"));
        EXPECT_FALSE(rows.step());
        EXPECT_EQ(rows.last(), SqliteCode::kInterrupted);
    }
}

/// The limit is what a statement may still take: SQLite itself counts the rounds.
TEST_F(ConnectionParts, StatementOfExactlyTheMostRounds_IsNotInterrupted)
{
    constexpr const char* kCount =
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 10000) SELECT COUNT(*) FROM n";
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(":memory:", &other), SQLITE_OK);
    int32_t rounds = 0;
    const auto count = [](void* counted) { return ++*static_cast<int32_t*>(counted) < 0 ? 1 : 0; };
    sqlite3_progress_handler(other, Connection::kStepsPerRound, count, &rounds);
    EXPECT_EQ(sqlite3_exec(other, kCount, nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(other);
    ASSERT_GT(rounds, 0);
    db().limitRounds(rounds);
    EXPECT_EQ(db().exec(kCount), SqliteCode::kOk);
    db().limitRounds(rounds - 1);
    EXPECT_EQ(db().exec(kCount), SqliteCode::kInterrupted);
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

}  // namespace
}  // namespace kesta
