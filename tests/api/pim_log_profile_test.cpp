// The profile in the log of a phone's contact and calendar syncs, and clearing the log.
#include "api/records.h"

namespace kesta::test {
namespace {

std::string Error(const std::string& operation, int position)
{
    return "Error in DB_PIMLOG_" + operation + "(), position " + std::to_string(position) + ".";
}
std::string Exception(const std::string& operation)
{
    return "An exception occured in DB_PIMLOG_" + operation + "().";
}

class PimLogProfile : public FamilyExports {
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
};

TEST_F(PimLogProfile, GetPimProfile_StoredProfile_IsCopiedWhole)
{
    const std::string profile = "it's \xF0\x9F\x98\x80 " + std::string(5000, 'x');
    givenLog(1, 7, Quoted(profile));
    givenLog(2, 8, "'other'");
    std::vector<DbChar> buffer(6000, static_cast<DbChar>('#'));
    EXPECT_EQ(lib.DB_PIMLOG_GetPimProfile(W(kImei), buffer.data(), 7), 0);
    EXPECT_EQ(Utf8(buffer.data()), profile);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_GetPimProfile", 0));
}

TEST_F(PimLogProfile, GetPimProfile_NoLog_LeavesTheBufferAndSucceeds)
{
    givenLog(1, 7, "'profile'");
    Text buffer = W("untouched");
    EXPECT_EQ(lib.DB_PIMLOG_GetPimProfile(W(kImei), buffer.get(), 8), 0);
    EXPECT_EQ(Utf8(buffer.get()), "untouched");
}

TEST_F(PimLogProfile, GetPimProfile_UnknownPhone_Fails)
{
    givenLog(1, 7, "'profile'", -1);
    Text buffer = W("untouched");
    EXPECT_EQ(lib.DB_PIMLOG_GetPimProfile(W("999"), buffer.get(), 7), 1);
    EXPECT_EQ(Utf8(buffer.get()), "untouched");
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_GetPimProfile", 1));
}

TEST_F(PimLogProfile, GetPimProfile_QueryFails_TracesPositionOne)
{
    givenSchema("DROP TABLE tPimLog");
    Text buffer = W("untouched");
    EXPECT_EQ(lib.DB_PIMLOG_GetPimProfile(W(kImei), buffer.get(), 7), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_GetPimProfile", 1, {Error("GetPimProfile", 1)}));
}

TEST_F(PimLogProfile, GetPimProfile_StepFails_GivesItsCode)
{
    givenSchema(
        "DROP TABLE tPimLog; CREATE VIEW tPimLog AS SELECT 1 AS [plID], 1 AS [phoneID], 7 AS [Type], "
        "zeroblob(2000000000) AS [PimProfile]");
    Text buffer = W("untouched");
    EXPECT_EQ(lib.DB_PIMLOG_GetPimProfile(W(kImei), buffer.get(), 7), 18);
    EXPECT_EQ(Utf8(buffer.get()), "untouched");
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_GetPimProfile", 18));
}

TEST_F(PimLogProfile, GetPimProfile_NullProfile_IsTheEmptyText)
{
    givenLog(1, 7);
    Text buffer = W("overwritten");
    EXPECT_EQ(lib.DB_PIMLOG_GetPimProfile(W(kImei), buffer.get(), 7), 0);
    EXPECT_EQ(Utf8(buffer.get()), "");
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_GetPimProfile", 0));
}

TEST_F(PimLogProfile, GetPimProfile_NullBuffer_TakesTheExceptionWay)
{
    givenLog(1, 7, "'profile'");
    EXPECT_EQ(lib.DB_PIMLOG_GetPimProfile(W(kImei), nullptr, 7), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_GetPimProfile", 1, {Exception("GetPimProfile")}));
}

TEST_F(PimLogProfile, SetPimProfile_NoLog_CreatesIt)
{
    givenLog(4, 8, "'other'");
    EXPECT_EQ(lib.DB_PIMLOG_SetPimProfile(W(kImei), W("it's \xF0\x9F\x98\x80"), 7), 0);
    EXPECT_EQ(logs(), "4|1|8|other\n5|1|7|it's \xF0\x9F\x98\x80");
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_SetPimProfile", 0));
}

TEST_F(PimLogProfile, SetPimProfile_KnownLog_IsReplaced)
{
    givenLog(4, 7, "'old'");
    givenLog(5, 7, "'other phone'", 2);
    EXPECT_EQ(lib.DB_PIMLOG_SetPimProfile(W(kImei), W("new"), 7), 0);
    EXPECT_EQ(logs(), "4|1|7|new\n5|2|7|other phone");
    EXPECT_EQ(lib.DB_PIMLOG_SetPimProfile(W(kImei), nullptr, 7), 0);
    EXPECT_EQ(sql.text("SELECT '<' || [PimProfile] || '>' FROM tPimLog WHERE [plID] = 4"), "<>");
}

TEST_F(PimLogProfile, SetPimProfile_UnknownPhone_Fails)
{
    EXPECT_EQ(lib.DB_PIMLOG_SetPimProfile(W("999"), W("new"), 7), 1);
    EXPECT_EQ(logs(), "");
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_SetPimProfile", 1));
}

TEST_F(PimLogProfile, SetPimProfile_Failures_AreNumberedByTheirStatement)
{
    sql.exec(
        "CREATE TRIGGER refuse BEFORE INSERT ON tPimLog BEGIN SELECT RAISE(ABORT, 'no'); END;"
        "CREATE TRIGGER refuseToo BEFORE UPDATE ON tPimLog BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(lib.DB_PIMLOG_SetPimProfile(W(kImei), W("new"), 7), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_SetPimProfile", 1, {Error("SetPimProfile", 2)}));
    sql.exec("DROP TRIGGER refuse");
    givenLog(4, 7, "'old'");
    EXPECT_EQ(lib.DB_PIMLOG_SetPimProfile(W(kImei), W("new"), 7), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_SetPimProfile", 1, {Error("SetPimProfile", 3)}));
    givenSchema("DROP TABLE tPimLog");
    EXPECT_EQ(lib.DB_PIMLOG_SetPimProfile(W(kImei), W("new"), 7), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_SetPimProfile", 1, {Error("SetPimProfile", 1)}));
}

TEST_F(PimLogProfile, ClearAll_KnownLog_GoesWithItsItemsAndItsProfile)
{
    givenLog(4, 7, "'old'");
    givenLog(5, 8, "'other'");
    givenItem(4, "A");
    givenItem(4, "B");
    givenItem(5, "C");
    EXPECT_EQ(lib.DB_PIMLOG_ClearAll(W(kImei), 7), 0);
    EXPECT_EQ(logs(), "5|1|8|other");
    EXPECT_EQ(sql.text("SELECT [Guid] FROM tPimLogItem"), "C");
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_ClearAll", 0));
}

TEST_F(PimLogProfile, ClearAll_NoLog_SucceedsAndUnknownPhoneFails)
{
    EXPECT_EQ(lib.DB_PIMLOG_ClearAll(W(kImei), 7), 0);
    EXPECT_EQ(lib.DB_PIMLOG_ClearAll(W("999"), 7), 1);
}

TEST_F(PimLogProfile, ClearAll_Failures_AreNumberedByTheirStatement)
{
    givenLog(4, 7, "'old'");
    givenItem(4, "A");
    sql.exec("CREATE TRIGGER refuse BEFORE DELETE ON tPimLog BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(lib.DB_PIMLOG_ClearAll(W(kImei), 7), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_ClearAll", 1, {Error("ClearAll", 2)}));
    EXPECT_EQ(sql.text("SELECT [Guid] FROM tPimLogItem"), "") << "the first of the two statements has been run";
    EXPECT_EQ(logs(), "4|1|7|old");
    givenSchema("DROP TABLE tPimLog");
    EXPECT_EQ(lib.DB_PIMLOG_ClearAll(W(kImei), 7), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_ClearAll", 1, {Error("ClearAll", 1)}));
}

TEST_F(PimLogProfile, ClearAll_StepFails_GivesItsCode)
{
    givenSchema(
        "DROP TABLE tPimLog; CREATE VIEW tPimLog AS SELECT zeroblob(2000000000) AS [plID], 1 AS [phoneID], 7 "
        "AS [Type]");
    EXPECT_EQ(lib.DB_PIMLOG_ClearAll(W(kImei), 7), 18);
    EXPECT_EQ(trace.take(), Framed("DB_PIMLOG_ClearAll", 18));
}

}  // namespace
}  // namespace kesta::test
