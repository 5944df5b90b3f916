// Statements that stay compiled: what is kept and for how long, and that nobody can tell.
#include "core/statement_cache.h"

#include <sqlite3.h>

#include "core/routine.h"
#include "unit/module_under_test.h"

namespace kesta {
namespace {

using test::Text;
using test::W;
using ::testing::ElementsAre;
using Lifetime = StatementCache::Lifetime;
using Verdict = StatementCache::Verdict;

/// A cache over a connection of its own, looked into.
class Cache : public ::testing::Test {
protected:
    Cache()
    {
        sqlite3_open(reinterpret_cast<const char*>(file.u8string().c_str()), &handle);
        other.exec("CREATE TABLE a(n INTEGER, t TEXT); CREATE TABLE b(n INTEGER UNIQUE, t TEXT)");
    }
    ~Cache() override
    {
        cache.drop();
        EXPECT_EQ(sqlite3_close(handle), SQLITE_OK);  // nothing compiled is left
    }

    StatementCache::Found find(const Sql& sql) { return cache.find(handle, sql, buffer, Lifetime::kUntilFinished); }

    /// How often the statement had run before; -1 when it is not kept.
    int runsBefore(const Sql& sql)
    {
        const StatementCache::Found found = find(sql);
        if (found.verdict != Verdict::kCached) {
            return -1;
        }
        const int runs = sqlite3_stmt_status(found.entry->statement, SQLITE_STMTSTATUS_RUN, 0);
        int code = SQLITE_ROW;
        while (code == SQLITE_ROW) {
            code = sqlite3_step(found.entry->statement);
        }
        cache.giveBack(handle, *found.entry, code == SQLITE_DONE);
        return runs;
    }

    int runsOfInsert(const char* table, int32_t number)
    {
        return runsBefore(WideSql("INSERT INTO %s VALUES (%d, '%s')", Name{table}, number, Escaped{W("x")}));
    }
    int runsOfCount() { return runsBefore(WideSql("SELECT COUNT(*) FROM a")); }

    std::string bound(const Sql& sql)
    {
        const StatementCache::Found found = find(sql);
        if (found.verdict != Verdict::kCached) {
            return "not kept";
        }
        char* text = sqlite3_expanded_sql(found.entry->statement);
        std::string expanded = text;
        sqlite3_free(text);
        cache.giveBack(handle, *found.entry, false);
        return expanded;
    }

    test::DataFolder data;
    std::filesystem::path file = [this] {
        std::filesystem::create_directories(data.databaseFolder());
        return data.databaseFolder() / "cache.db";
    }();
    test::Sql other{file};
    sqlite3* handle = nullptr;
    StatementCache cache;
    char buffer[2 * 40960];
};

TEST_F(Cache, Find_SameFormatAndNames_IsTheSameStatement)
{
    EXPECT_EQ(runsOfInsert("a", 1), 0);
    EXPECT_EQ(runsOfInsert("a", 2), 1);
    EXPECT_EQ(runsOfInsert("b", 3), 0);
    EXPECT_EQ(runsOfInsert("b", 4), 1);
    EXPECT_EQ(runsOfInsert("a", 5), 2);
    EXPECT_EQ(other.text("SELECT GROUP_CONCAT(n) FROM a"), "1,2,5");
}

TEST_F(Cache, Find_NamesThatReadAlikeTogether_AreTwoStatements)
{
    const auto named = [&](const char* column, const char* table) {
        return bound(NarrowSql("SELECT n AS %s FROM a AS %s", Name{column}, Name{table}));
    };
    EXPECT_EQ(named("cc", "t"), "SELECT n AS cc FROM a AS t");
    EXPECT_EQ(named("c", "ct"), "SELECT n AS c FROM a AS ct");
}

TEST_F(Cache, Find_FailedInsertsAndQueriesInBetween_KeepIt)
{
    EXPECT_EQ(runsOfInsert("b", 1), 0);
    for (int i = 1; i < 5; ++i) {
        EXPECT_EQ(runsOfInsert("b", 1), i);  // fails on the key
        EXPECT_EQ(runsOfCount(), i - 1);
    }
}

TEST_F(Cache, Find_AfterAnothersChange_IsCompiledAnewOnceItIsNoticed)
{
    EXPECT_EQ(runsOfInsert("a", 1), 0);
    EXPECT_EQ(runsOfCount(), 0);
    other.exec("INSERT INTO a VALUES (7, 'y')");
    EXPECT_EQ(runsOfCount(), 1);  // which notices it
    EXPECT_EQ(runsOfInsert("a", 2), 0);
    EXPECT_EQ(runsOfCount(), 0);
    other.exec("INSERT INTO a VALUES (8, 'y')");
    EXPECT_EQ(runsOfInsert("a", 3), 1);  // which notices it, and changes the file too
    EXPECT_EQ(runsOfInsert("a", 4), 0);
}

TEST_F(Cache, Find_MoreThanAreKept_LetsTheOldestGo)
{
    const auto run = [&](size_t i) {
        const std::string name = "c" + std::to_string(i);
        return runsBefore(NarrowSql("SELECT n AS %s FROM a WHERE n = %d", Name{name.c_str()}, int32_t{1}));
    };
    for (size_t i = 0; i < StatementCache::kMost; ++i) {
        EXPECT_EQ(run(i), 0);
    }
    EXPECT_EQ(run(0), 1);
    EXPECT_EQ(run(StatementCache::kMost), 0);  // in the place of number 1
    EXPECT_EQ(run(0), 2);
    EXPECT_EQ(run(2), 1);
    EXPECT_EQ(run(1), 0);
}

TEST_F(Cache, Find_MoreThanAreKept_LeavesTheOneInUse)
{
    const StatementCache::Found first = find(NarrowSql("SELECT 7"));
    ASSERT_EQ(first.verdict, Verdict::kCached);
    for (size_t i = 0; i < StatementCache::kMost; ++i) {
        const std::string name = "c" + std::to_string(i);
        EXPECT_EQ(runsBefore(NarrowSql("SELECT 7 AS %s", Name{name.c_str()})), 0);
    }
    EXPECT_EQ(sqlite3_step(first.entry->statement), SQLITE_ROW);
    EXPECT_EQ(std::string(sqlite3_sql(first.entry->statement)), "SELECT 7");
    cache.giveBack(handle, *first.entry, false);
}

TEST_F(Cache, Find_StillInUse_IsNotGivenTwice)
{
    const StatementCache::Found first = find(WideSql("SELECT n FROM a"));
    ASSERT_EQ(first.verdict, Verdict::kCached);
    const StatementCache::Found second = find(WideSql("SELECT n FROM a"));
    EXPECT_EQ(second.verdict, Verdict::kAsText);
    cache.drop();  // leaves the one in use to its user
    EXPECT_EQ(sqlite3_step(first.entry->statement), SQLITE_DONE);
    cache.giveBack(handle, *first.entry, true);
    EXPECT_EQ(sqlite3_next_stmt(handle, nullptr), nullptr);
}

TEST_F(Cache, Find_Values_AreBoundAsTheTextMeansThem)
{
    const std::string null = "SELECT '', '(null)'";
    EXPECT_EQ(bound(WideSql("SELECT '%s', '%s'", Escaped{nullptr}, Plain{nullptr})), null);
    EXPECT_EQ(bound(WideSql("SELECT '%s' AS x", Escaped{W("it's")})), "SELECT 'it''s' AS x");
    EXPECT_EQ(bound(WideSql("SELECT '%s' AS y", Escaped{W("35:11"), static_cast<DbChar>(':')})), "SELECT '35' AS y");
    EXPECT_EQ(bound(WideSql("SELECT %d, %I64d", int32_t{INT32_MIN}, int64_t{INT64_MIN})),
              "SELECT -2147483648, -9223372036854775808");
    EXPECT_EQ(bound(WideSql("SELECT '%s' AS z", Escaped{Text::ofUnits({0xD83D, 'x'})})), "SELECT '\xEF\xBF\xBDx' AS z");
    EXPECT_EQ(bound(WideSql("SELECT '%s' AS d", FormatDateTime(DateValue{1.5, kDateValid}))),
              "SELECT '1899-12-31 12:00:00' AS d");
    EXPECT_EQ(bound(WideSql("SELECT '%s' AS d", FormatDateTime(DateValue{0, kDateNull}))), "SELECT '' AS d");
    EXPECT_EQ(bound(NarrowSql("SELECT '%s', ?, %d", Ansi{W("a")}, int32_t{5})), "SELECT 'a', NULL, 5");
}

TEST_F(Cache, Find_WhatMeansSomethingElseAsText_GoesAsText)
{
    EXPECT_EQ(bound(WideSql("SELECT '%s'", Plain{W("it's")})), "not kept");
    EXPECT_EQ(bound(NarrowSql("SELECT '%s'", Ansi{W("it's")})), "not kept");
    EXPECT_EQ(bound(NarrowSql("SELECT '%s'", EscapedAnsi{W("it's")})), "not kept");
    EXPECT_EQ(bound(WideSql("SELECT '%s'", Escaped{W(std::string(20'000, 'x'))})), "not kept");
    EXPECT_EQ(bound(WideSql("SELECT '<%s>'", Escaped{W("x")})), "not kept");
    EXPECT_EQ(bound(WideSql("SELECT '%d'", int32_t{1})), "not kept");
    EXPECT_EQ(bound(WideSql("SELECT 1; SELECT %d", int32_t{1})), "not kept");
    EXPECT_EQ(bound(NarrowSql("SELECT ?, ?, %d", int32_t{1})), "not kept");
    const std::string name = "\"" + std::string(100, 'n') + "\"";
    EXPECT_EQ(bound(WideSql("SELECT 1 AS %s", Name{name.c_str()})), "not kept");
}

TEST_F(Cache, Find_NoSuchTable_IsRefusedWithSqlitesCode)
{
    const StatementCache::Found found = find(WideSql("SELECT * FROM nowhere"));
    EXPECT_EQ(found.verdict, Verdict::kRefused);
    EXPECT_EQ(found.code, SQLITE_ERROR);
}

/// After a fork they are the parent's: they are neither used nor finalised.
TEST_F(Cache, Abandon_CompiledStatements_AreLeftAsTheyAre)
{
    EXPECT_EQ(runsOfCount(), 0);
    sqlite3_stmt* parents = sqlite3_next_stmt(handle, nullptr);
    cache.abandon();
    EXPECT_EQ(runsOfCount(), 0);
    cache.drop();
    ASSERT_EQ(sqlite3_next_stmt(handle, nullptr), parents);
    sqlite3_finalize(parents);
}

/// Both ways beside each other through the module's connection.
class BothWays : public ModuleUnderTest, public ::testing::WithParamInterface<bool> {
protected:
    BothWays() { statementsStayCompiled = GetParam(); }
    ~BothWays() override { statementsStayCompiled = true; }

    static int32_t phone()
    {
        return Routine(db(), Trail("Some")).firstNumber(2, NarrowSql("SELECT [ID] FROM tPhone WHERE [IMEI] = '1'"), -1);
    }
};

INSTANTIATE_TEST_SUITE_P(, BothWays, ::testing::Bool(),
                         [](const auto& tested) { return tested.param ? "Compiled" : "AsText"; });

TEST_P(BothWays, Prepare_AgainAfterChangesOfOthers_GivesTheRowsOfNow)
{
    EXPECT_EQ(phone(), -1);
    sql.exec("INSERT INTO tPhone ([IMEI]) VALUES ('1')");
    EXPECT_EQ(phone(), 1);
    EXPECT_EQ(phone(), 1);
    sql.exec("UPDATE tPhone SET [ID] = 9");
    EXPECT_EQ(phone(), 9);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
}

/// The first statement after the change compiles against the schema of before, and fails when it is stepped.
TEST_P(BothWays, Prepare_TableGone_IsToldFromTheSecondTimeOn)
{
    EXPECT_EQ(phone(), -1);
    sql.exec("INSERT INTO tPhone ([IMEI]) VALUES ('1')");
    EXPECT_EQ(phone(), 1);
    sql.exec("ALTER TABLE tPhone RENAME TO elsewhere");
    EXPECT_EQ(phone(), -1);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre());
    EXPECT_EQ(phone(), -1);
    EXPECT_EQ(phone(), -1);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre("DB TRACE >> Error in Some(), position 2.\n",
                                                      "DB TRACE >> Error in Some(), position 2.\n"));
    sql.exec("ALTER TABLE elsewhere RENAME TO tPhone");
    EXPECT_EQ(phone(), 1);
}

/// Another statement notices the change first: for this one the table is missing already when it is prepared.
TEST_P(BothWays, Prepare_TableGoneAndNoticedElsewhere_IsToldAtOnce)
{
    const auto settle = [] { return db().exec(NarrowSql("UPDATE tVersion SET [Version] = %d", int32_t{5005})); };
    EXPECT_EQ(settle(), SqliteCode::kOk);
    EXPECT_EQ(phone(), -1);
    sql.exec("DROP TABLE tPhone");
    EXPECT_EQ(settle(), SqliteCode::kOk);
    EXPECT_EQ(phone(), -1);
    EXPECT_THAT(ReplacedServices::take(), ElementsAre("DB TRACE >> Error in Some(), position 2.\n"));
}

TEST_P(BothWays, Prepare_ManyTextsByTurns_StayApart)
{
    for (int round = 0; round < 3; ++round) {
        for (int32_t i = 0; i < 10; ++i) {
            Statement rows = db().prepare(NarrowSql("SELECT %d", i));
            ASSERT_TRUE(rows.step());
            EXPECT_EQ(rows.int32(0), i);
        }
    }
    for (const size_t length : {1u, 5000u, 16'383u, 16'384u, 16'385u, 30'000u}) {  // around the longest that is bound
        for (int round = 0; round < 2; ++round) {
            const std::string text(length, 'x');
            Statement rows = db().prepare(WideSql("SELECT '%s'", Escaped{W(text)}));
            ASSERT_TRUE(rows.step());
            EXPECT_EQ(test::Utf8(rows.wideText(0)), text);
        }
    }
}

TEST_P(BothWays, Prepare_ReadHalfway_LetsGoOfTheFile)
{
    {
        Statement rows = db().prepare(NarrowSql("SELECT [ID] FROM tLibMainFolder"));
        ASSERT_TRUE(rows.step());
    }
    sql.exec("DELETE FROM tLibMainFolder");
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tLibMainFolder"), "0");
}

TEST_P(BothWays, Prepare_TextsOfRowsStillRead_OutliveTheNextStatement)
{
    sql.exec("INSERT INTO tPFilename VALUES ('i', 'list', 'one'), ('i', 'list', 'two')");
    const std::string list = "list";
    Statement rows = db().prepare(WideSql("SELECT [Filename], '%s' FROM tPFilename WHERE [Listname] || '' = '%s'",
                                          Escaped{W(list)}, Escaped{W(list)}));
    ASSERT_TRUE(rows.step());
    EXPECT_EQ(db().exec(WideSql("DELETE FROM tPFilename WHERE [Filename] = '%s'", Escaped{W("none at all")})),
              SqliteCode::kOk);
    ASSERT_TRUE(rows.step());
    EXPECT_EQ(test::Utf8(rows.wideText(0)), "two");
    EXPECT_EQ(test::Utf8(rows.wideText(1)), "list");
}

TEST_P(BothWays, Exec_Failures_GiveSqlitesCode)
{
    const auto insert = [] { return db().exec(NarrowSql("INSERT INTO tLibMainFolder VALUES (1, 'x', 0, 0, '')")); };
    EXPECT_EQ(insert(), SqliteCode::kOk);
    EXPECT_EQ(insert(), SqliteCode::kConstraint);
    EXPECT_EQ(db().exec(NarrowSql("nonsense")), SqliteCode::kError);
    EXPECT_EQ(db().exec(NarrowSql("DROP TABLE tPhone")), SqliteCode::kRefused);
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tLibMainFolder"), "8");
    const Statement none = db().prepare(NarrowSql("nonsense"));
    EXPECT_FALSE(none.prepared());
    EXPECT_EQ(none.last(), SqliteCode::kError);
}

/// An apostrophe in a text that goes in as it is ends the quotes, and what follows is a statement too.
TEST_P(BothWays, Exec_ApostropheInAPlainText_IsPartOfTheStatement)
{
    const auto clear = [](const char* imei) {
        return db().exec(WideSql("DELETE FROM tPFilename WHERE [IMEI] = '%s' AND [Listname] = '%s';", Plain{W(imei)},
                                 Escaped{W("l")}));
    };
    EXPECT_EQ(clear("1"), SqliteCode::kOk);
    EXPECT_EQ(clear("it's"), SqliteCode::kError);
    EXPECT_EQ(clear("1'; DELETE FROM tLibMainFolder; --"), SqliteCode::kOk);
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tLibMainFolder"), "0");
    EXPECT_EQ(clear("1"), SqliteCode::kOk);
}

TEST_P(BothWays, Exec_TextsAroundTheLimit_AreRunOrTooBig)
{
    const auto insert = [](size_t letters) {
        return db().exec(WideSql("INSERT INTO tPimInfo VALUES ('%s')", Escaped{W(std::string(letters, '\''))}));
    };
    constexpr size_t kAround = std::string_view("INSERT INTO tPimInfo VALUES ('')").size();
    EXPECT_EQ(insert(8'000), SqliteCode::kOk);
    EXPECT_EQ(insert((kStatementBytes - kAround) / 2), SqliteCode::kOk);
    EXPECT_EQ(insert((kStatementBytes - kAround) / 2 + 1), SqliteCode::kTooBig);
    EXPECT_EQ(sql.text("SELECT MAX(LENGTH([Profile])) FROM tPimInfo"), std::to_string((kStatementBytes - kAround) / 2));
}

/// Each of the texts is short enough alone; as text they come to more than a statement may have.
TEST_P(BothWays, Exec_TextsTooLongTogether_AreTooBig)
{
    const std::string letters(15'000, 'x');
    const auto insert = [&] {
        return db().exec(WideSql("INSERT INTO tPFilename VALUES ('%s', '%s', '%s')", Escaped{W(letters)},
                                 Escaped{W(letters)}, Escaped{W(letters)}));
    };
    EXPECT_EQ(insert(), SqliteCode::kTooBig);
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tPFilename"), "0");
}

/// Each statement has all of its steps, however often it runs.
TEST_P(BothWays, ManyStatements_AreNotInterrupted)
{
    constexpr int kTimes = 12;
    db().limitRounds(6);
    const auto count = [] {
        return NarrowSql(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 10000) SELECT COUNT(*) FROM n");
    };
    for (int i = 0; i < kTimes; ++i) {
        EXPECT_EQ(db().exec(count()), SqliteCode::kOk);
    }
    for (int i = 0; i < kTimes; ++i) {
        Statement rows = db().prepare(count());
        ASSERT_TRUE(rows.step());
        EXPECT_EQ(rows.int32(0), 10000);
    }
}

}  // namespace
}  // namespace kesta
