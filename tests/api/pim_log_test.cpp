// The log of a phone's contact and calendar syncs: its items.
#include "api/records.h"

namespace kesta::test {
namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;

std::string Error(const std::string& operation, int position)
{
    return "Error in DB_PIMLOG_" + operation + "(), position " + std::to_string(position) + ".";
}
std::string Exception(const std::string& operation)
{
    return "An exception occured in DB_PIMLOG_" + operation + "().";
}

/// The caller's log, with items and texts that stay the caller's.
class Log : public PimLog {
public:
    struct Entry {
        std::string_view guid;
        std::string_view luid;
        DateValue pcTime = Date(2024, 2, 29, 12, 34, 56);
        DateValue phoneTime = Date(2025, 1, 2, 3, 4, 5);
    };
    Log(int32_t type, std::initializer_list<Entry> entries) : PimLog{}
    {
        texts_.reserve(2 * entries.size());
        for (const Entry& entry : entries) {
            DbChar* guid = texts_.emplace_back(entry.guid).get();
            DbChar* luid = texts_.emplace_back(entry.luid).get();
            items_.push_back({guid, luid, entry.pcTime, entry.phoneTime});
        }
        Type = type;
        Count = static_cast<int32_t>(items_.size());
        Items = items_.data();
    }
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

private:
    std::vector<Text> texts_;
    std::vector<PimLogItem> items_;
};

class PimLogs : public FamilyExports {
protected:
    void givenLog(int plId, int type, const std::string& profile = "NULL", int phoneId = 1) const
    {
        sql.exec("INSERT INTO tPimLog VALUES (" + std::to_string(plId) + ", " + std::to_string(phoneId) + ", " +
                 std::to_string(type) + ", " + profile + ")");
    }
    void givenItem(int plId, const std::string& guid) const
    {
        sql.exec("INSERT INTO tPimLogItem ([plID], [Guid], [Luid], [PCTime], [PhoneTime]) VALUES (" +
                 std::to_string(plId) + ", " + Quoted(guid) + ", 'L', '2024-01-01 10:20:30', '')");
    }
    [[nodiscard]] std::string logs() const { return sql.text("SELECT * FROM tPimLog ORDER BY 1"); }
    [[nodiscard]] std::string items() const
    {
        return sql.text("SELECT [plID], [Guid], [Luid], [PCTime], [PhoneTime] FROM tPimLogItem ORDER BY [ptID]");
    }
    int32_t read(PimLog& log) { return lib.DB_PIMLOG_ReadLog(W(kImei), &log); }
};

TEST_F(PimLogs, ReadLog_SeveralItems_GivesEveryField)
{
    givenLog(4, 7);
    givenLog(5, 8);
    sql.exec(
        "INSERT INTO tPimLogItem ([plID], [Guid], [Luid], [PCTime], [PhoneTime]) VALUES (4, 'it''s', 'L1', "
        "'2024-01-01 10:20:30', '2024-02-02 11:22:33'), (4, '', '', '', NULL), (5, 'C', 'L3', '', ''), (4, "
        "'\xF0\x9F\x98\x80', 'L4', 'Invalid DateTime', '2024-02-02')");
    PimLog log = {7, 0, nullptr};
    EXPECT_EQ(read(log), 0);
    EXPECT_EQ(log.Type, 7);
    EXPECT_THAT(Records(log),
                ElementsAre("it's|L1|2024-01-01 10:20:30|2024-02-02 11:22:33", "<null>|<null>|<invalid>|<invalid>",
                            "\xF0\x9F\x98\x80|L4|<invalid>|2024-02-02 00:00:00"));
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_ReadLog", 0, WithNew({}, 5)));
}

TEST_F(PimLogs, ReadLog_RecordHoldingItems_ReplacesThem)
{
    givenLog(4, 7);
    givenItem(4, "A");
    PimLog log = {7, 0, nullptr};
    AliveMemory memory;
    ASSERT_EQ(read(log), 0);
    EXPECT_EQ(memory.after(trace.take(Addresses::kKept)), 3u);
    givenItem(4, "B");
    EXPECT_EQ(read(log), 0);
    EXPECT_EQ(log.Count, 2);
    const std::vector<std::string> lines = trace.take();
    EXPECT_EQ(lines,
              Framed("DB_PIMLOG_ReadLog", 0, WithNew({"Memory DELETE.", "Memory DELETE.", "Memory DELETE."}, 5)));
}

TEST_F(PimLogs, ReadLog_LogWithoutItemsOrNoLog_LeavesTheRecord)
{
    givenLog(4, 7);
    givenItem(4, "A");
    PimLog log = {7, 0, nullptr};
    ASSERT_EQ(read(log), 0);
    trace.take();
    PimLogItem* const held = log.Items;
    sql.exec("DELETE FROM tPimLogItem");
    EXPECT_EQ(read(log), 0);
    log.Type = 99;
    EXPECT_EQ(read(log), 0);
    EXPECT_EQ(lib.DB_PIMLOG_ReadLog(W("999"), &log), 1);
    EXPECT_EQ(log.Count, 1);
    EXPECT_EQ(log.Items, held);
    EXPECT_EQ(Utf8(log.Items[0].Guid), "A");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_PIMLOG_ReadLog().", "Exit DB_PIMLOG_ReadLog() with 0.",
                                          "Enter DB_PIMLOG_ReadLog().", "Exit DB_PIMLOG_ReadLog() with 0.",
                                          "Enter DB_PIMLOG_ReadLog().", "Exit DB_PIMLOG_ReadLog() with 1."));
}

TEST_F(PimLogs, ReadLog_Failures_AreNumberedByTheirStatement)
{
    givenLog(4, 7);
    givenItem(4, "A");
    givenSchema("ALTER TABLE tPimLogItem RENAME COLUMN [Luid] TO [Elsewhere]");
    PimLog log = {7, 0, nullptr};
    EXPECT_EQ(read(log), 1);
    EXPECT_EQ(log.Count, 0);
    EXPECT_NE(log.Items, nullptr);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_ReadLog", 1, {"Memory NEW.", Error("ReadLog", 2)}));
    givenSchema("DROP TABLE tPimLogItem");
    EXPECT_EQ(read(log), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_ReadLog", 1, {Error("ReadLog", 1)}));
}

TEST_F(PimLogs, ReadLog_ReadingARowFails_GivesTheStepsCodeAndTheRowsBefore)
{
    givenLog(4, 7);
    givenItem(4, "A");
    givenItem(4, "B");
    givenSchema(
        "ALTER TABLE tPimLogItem RENAME TO kept; CREATE VIEW tPimLogItem AS SELECT [ptID], [plID], [Guid], CASE "
        "WHEN [Guid] = 'B' THEN zeroblob(2000000000) ELSE [Luid] END AS [Luid], [PCTime], [PhoneTime] FROM "
        "kept");
    PimLog log = {7, 0, nullptr};
    EXPECT_EQ(read(log), 18);
    EXPECT_THAT(Records(log), ElementsAre("A|L|2024-01-01 10:20:30|<invalid>"));
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_ReadLog", 18, WithNew({}, 3)));
}

/// Each query over this view yields another number of rows, so that sooner or later more come than were counted.
TEST_F(PimLogs, ReadLog_MoreRowsThanCounted_FillsWhatWasCountedAndGivesTheRowCode)
{
    givenLog(4, 7);
    givenSchema(
        "DROP TABLE tPimLogItem; CREATE VIEW tPimLogItem AS WITH RECURSIVE some(n) AS (SELECT 1 UNION ALL "
        "SELECT n + 1 FROM some WHERE n < 20) SELECT n AS [ptID], 4 AS [plID], 'G' AS [Guid], 'L' AS [Luid], "
        "'' AS [PCTime], '' AS [PhoneTime] FROM some WHERE (random() + n) % 2 = 0");
    PimLog log = {7, 0, nullptr};
    bool moreCame = false;
    for (int i = 0; i < 200 && !moreCame; ++i) {
        const int32_t result = read(log);
        ASSERT_THAT(result, AnyOf(0, 100));
        moreCame = result == 100 && log.Count > 0;
    }
    EXPECT_TRUE(moreCame);
}

TEST_F(PimLogs, SaveLog_NoLog_CreatesItWithItsItems)
{
    const Log log(7, {{"G1", "L1"}, {"G2", "L2", NullDate(), InvalidDate()}});
    EXPECT_EQ(lib.DB_PIMLOG_SaveLog(W(kImei), &log), 0);
    EXPECT_EQ(logs(), "1|1|7|<null>");
    EXPECT_EQ(items(), "1|G1|L1|2024-02-29 12:34:56|2025-01-02 03:04:05\n1|G2|L2||Invalid DateTime");
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_SaveLog", 0));
}

TEST_F(PimLogs, SaveLog_KnownLog_AppendsAlsoWhatIsThere)
{
    givenLog(4, 7, "'profile'");
    const Log log(7, {{"G1", "L1"}});
    EXPECT_EQ(lib.DB_PIMLOG_SaveLog(W(kImei), &log), 0);
    EXPECT_EQ(lib.DB_PIMLOG_SaveLog(W(kImei), &log), 0);
    EXPECT_EQ(sql.text("SELECT [plID], [Guid] FROM tPimLogItem"), "4|G1\n4|G1");
    EXPECT_EQ(logs(), "4|1|7|profile");
}

TEST_F(PimLogs, SaveLog_EmptyLog_IsCreatedAllTheSame)
{
    const PimLog log = {7, 0, nullptr};
    EXPECT_EQ(lib.DB_PIMLOG_SaveLog(W(kImei), &log), 0);
    EXPECT_EQ(logs(), "1|1|7|<null>");
}

TEST_F(PimLogs, SaveLog_UnknownPhone_IsKeptUnderMinusOne)
{
    const Log log(7, {{"G1", "L1"}});
    EXPECT_EQ(lib.DB_PIMLOG_SaveLog(W("999"), &log), 0);
    EXPECT_EQ(logs(), "1|-1|7|<null>");
    EXPECT_EQ(sql.text("SELECT [plID], [Guid] FROM tPimLogItem"), "1|G1");
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_SaveLog", 0));
}

TEST_F(PimLogs, SaveLog_Apostrophes_LoseTheItemOnly)
{
    const std::string guid = AnsiCharacter();
    const Log log(7, {{"G1", "L1"}, {"G'2", "L2"}, {"G3", "L'3"}, {guid, "L4"}});
    EXPECT_EQ(lib.DB_PIMLOG_SaveLog(W(kImei), &log), 0);
    EXPECT_EQ(sql.text("SELECT [Guid] FROM tPimLogItem"), "G1\n" + Ansi(W(guid)));
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_SaveLog", 0, {Error("SaveLog", 3), Error("SaveLog", 3)}));
}

TEST_F(PimLogs, SaveLog_NullTexts_AreTheWordNull)
{
    PimLogItem item = {nullptr, nullptr, Date(2024, 1, 1), Date(2024, 1, 2)};
    const PimLog log = {7, 1, &item};
    EXPECT_EQ(lib.DB_PIMLOG_SaveLog(W(kImei), &log), 0);
    EXPECT_EQ(items(), "1|(null)|(null)|2024-01-01 00:00:00|2024-01-02 00:00:00");
}

TEST_F(PimLogs, SaveLog_Failures_AreNumberedByTheirStatement)
{
    const Log log(7, {{"G1", "L1"}, {"G2", "L2"}});
    sql.exec(
        "CREATE TRIGGER refuse BEFORE INSERT ON tPimLog BEGIN SELECT RAISE(ABORT, 'no'); END;"
        "CREATE TRIGGER refuseToo BEFORE INSERT ON tPimLogItem WHEN NEW.[Guid] = 'G1' BEGIN SELECT RAISE(ABORT, "
        "'no'); END");
    EXPECT_EQ(lib.DB_PIMLOG_SaveLog(W(kImei), &log), 1);
    EXPECT_EQ(items(), "");
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_SaveLog", 1, {Error("SaveLog", 2)}));
    sql.exec("DROP TRIGGER refuse");
    EXPECT_EQ(lib.DB_PIMLOG_SaveLog(W(kImei), &log), 0);
    EXPECT_EQ(sql.text("SELECT [Guid] FROM tPimLogItem"), "G2");
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_SaveLog", 0, {Error("SaveLog", 3)}));
    givenSchema("DROP TABLE tPimLog");
    EXPECT_EQ(lib.DB_PIMLOG_SaveLog(W(kImei), &log), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_SaveLog", 1, {Error("SaveLog", 1)}));
}

TEST_F(PimLogs, NullLogs_TakeTheExceptionWay)
{
    EXPECT_EQ(lib.DB_PIMLOG_ReadLog(W(kImei), nullptr), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_ReadLog", 1, {Exception("ReadLog")}));
    EXPECT_EQ(lib.DB_PIMLOG_SaveLog(W(kImei), nullptr), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_SaveLog", 1, {Exception("SaveLog")}));
    const PimLog log = {7, 2, nullptr};
    EXPECT_EQ(lib.DB_PIMLOG_SaveLog(W(kImei), &log), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_SaveLog", 1, {Exception("SaveLog")}));
}

TEST_F(ClosedDatabase, PimLogs_EveryExport_AnswersOne)
{
    Text buffer = W("untouched");
    const Log saved(7, {{"G1", "L1"}});
    PimLog log = {7, 0, nullptr};
    EXPECT_EQ(lib.DB_PIMLOG_GetPimProfile(W(kImei), buffer.get(), 7), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_GetPimProfile", 1));
    EXPECT_EQ(lib.DB_PIMLOG_SetPimProfile(W(kImei), W("new"), 7), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_SetPimProfile", 1));
    EXPECT_EQ(lib.DB_PIMLOG_ClearAll(W(kImei), 7), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_ClearAll", 1));
    EXPECT_EQ(lib.DB_PIMLOG_ReadLog(W(kImei), &log), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_ReadLog", 1));
    EXPECT_EQ(lib.DB_PIMLOG_SaveLog(W(kImei), &saved), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_SaveLog", 1));
}

}  // namespace
}  // namespace kesta::test
