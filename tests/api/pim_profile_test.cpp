// The one profile text of the PIM store.
#include "api/records.h"

namespace kesta::test {
namespace {

class PimProfile : public FamilyExports {
protected:
    int32_t set(Text profile)
    {
        DbChar* text = profile.get();
        return lib.DB_PIM_SetProfile(&text);
    }
    [[nodiscard]] std::string rows() const { return sql.text("SELECT [Profile], typeof([Profile]) FROM tPimInfo"); }

    DbChar* slot = nullptr;
};

TEST_F(PimProfile, SetProfile_Twice_LeavesOneRowWithTheLastText)
{
    EXPECT_EQ(set(W("first")), 0);
    EXPECT_EQ(set(W("it's \xF0\x9F\x98\x80 '; DROP TABLE tPimInfo; --")), 0);
    EXPECT_EQ(rows(), "it's \xF0\x9F\x98\x80 '; DROP TABLE tPimInfo; --|text");
    trace.take();
    EXPECT_EQ(lib.DB_PIM_GetProfile(&slot), 0);
    EXPECT_EQ(Utf8(slot), "it's \xF0\x9F\x98\x80 '; DROP TABLE tPimInfo; --");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_GetProfile", 0, {"Memory NEW."}));
}

TEST_F(PimProfile, SetProfile_SeveralRowsBefore_AreReplacedByOne)
{
    sql.exec("INSERT INTO tPimInfo VALUES ('a'), ('b'), (NULL)");
    EXPECT_EQ(set(W("new")), 0);
    EXPECT_EQ(rows(), "new|text");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_SetProfile", 0));
}

TEST_F(PimProfile, SetProfile_NullAndEmptyText_AreDifferentRowsAndBothReadAsNull)
{
    EXPECT_EQ(lib.DB_PIM_SetProfile(&slot), 0);
    EXPECT_EQ(rows(), "<null>|null");
    EXPECT_EQ(lib.DB_PIM_GetProfile(&slot), 0);
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(set(W("")), 0);
    EXPECT_EQ(rows(), "|text");
    EXPECT_EQ(lib.DB_PIM_GetProfile(&slot), 0);
    EXPECT_EQ(slot, nullptr);
}

TEST_F(PimProfile, SetProfile_LoneSurrogates_BecomeTheReplacementCharacter)
{
    EXPECT_EQ(set(Text::ofUnits({'a', 0xD800, 'b', 0xDFFF})), 0);
    EXPECT_EQ(rows(),
              "a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD|text");
    EXPECT_EQ(set(Text::ofUnits({0xD83D, 0xD83D, 0xDE00})), 0);
    EXPECT_EQ(rows(), "\xEF\xBF\xBD\xF0\x9F\x98\x80|text");
    EXPECT_EQ(set(Text::ofUnits({0xDE00, 0xD83D})), 0);
    EXPECT_EQ(rows(), "\xEF\xBF\xBD\xEF\xBF\xBD|text");
}

TEST_F(PimProfile, SetProfile_LongText_HasNoLimitOfStatements)
{
    const std::string profile(100000, 'x');
    EXPECT_EQ(set(W(profile)), 0);
    EXPECT_EQ(lib.DB_PIM_GetProfile(&slot), 0);
    EXPECT_EQ(Utf8(slot), profile);
}

TEST_F(PimProfile, SetProfile_DeleteFails_InsertsAllTheSame)
{
    sql.exec(
        "INSERT INTO tPimInfo VALUES ('old'); CREATE TRIGGER refuse BEFORE DELETE ON tPimInfo BEGIN SELECT "
        "RAISE(ABORT, 'no'); END");
    EXPECT_EQ(set(W("new")), 0);
    EXPECT_EQ(rows(), "old|text\nnew|text");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_SetProfile", 0, {"Error in DB_PIM_SetProfile(), position 1."}));
}

TEST_F(PimProfile, SetProfile_InsertRefused_FailsWithoutErrorLine)
{
    sql.exec(
        "INSERT INTO tPimInfo VALUES ('old'); CREATE TRIGGER refuse BEFORE INSERT ON tPimInfo BEGIN SELECT "
        "RAISE(ABORT, 'no'); END");
    EXPECT_EQ(set(W("new")), 1);
    EXPECT_EQ(rows(), "") << "the old one has gone before";
    EXPECT_EQ(trace.take(), Framed("DB_PIM_SetProfile", 1));
}

TEST_F(PimProfile, SetProfile_NoTable_TracesBothPositions)
{
    givenSchema("DROP TABLE tPimInfo");
    EXPECT_EQ(set(W("new")), 1);
    EXPECT_EQ(trace.take(),
              Framed("DB_PIM_SetProfile", 1,
                     {"Error in DB_PIM_SetProfile(), position 1.", "Error in DB_PIM_SetProfile(), position 2."}));
}

TEST_F(PimProfile, GetProfile_NothingStored_LeavesTheSlotNull)
{
    EXPECT_EQ(lib.DB_PIM_GetProfile(&slot), 0);
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_GetProfile", 0));
}

TEST_F(PimProfile, GetProfile_SlotHoldingAText_FreesItFirst)
{
    EXPECT_EQ(set(W("profile")), 0);
    ASSERT_EQ(lib.DB_PIM_GetProfile(&slot), 0);
    trace.take();
    EXPECT_EQ(lib.DB_PIM_GetProfile(&slot), 0);
    EXPECT_EQ(Utf8(slot), "profile");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_GetProfile", 0, {"Memory DELETE.", "Memory NEW."}));
    sql.exec("DELETE FROM tPimInfo");
    EXPECT_EQ(lib.DB_PIM_GetProfile(&slot), 0);
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_GetProfile", 0, {"Memory DELETE."}));
}

TEST_F(PimProfile, GetProfile_QueryFails_TracesPositionOneAndEmptiesTheSlot)
{
    EXPECT_EQ(set(W("profile")), 0);
    ASSERT_EQ(lib.DB_PIM_GetProfile(&slot), 0);
    givenSchema("DROP TABLE tPimInfo");
    EXPECT_EQ(lib.DB_PIM_GetProfile(&slot), 1);
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(trace.take(),
              Framed("DB_PIM_GetProfile", 1, {"Memory DELETE.", "Error in DB_PIM_GetProfile(), position 1."}));
}

TEST_F(PimProfile, GetProfile_StepFails_GivesItsCode)
{
    givenSchema("DROP TABLE tPimInfo; CREATE VIEW tPimInfo AS SELECT zeroblob(2000000000) AS [Profile]");
    EXPECT_EQ(lib.DB_PIM_GetProfile(&slot), 18);
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_GetProfile", 18));
}

TEST_F(PimProfile, NullSlots_TakeTheExceptionWay)
{
    EXPECT_EQ(lib.DB_PIM_GetProfile(nullptr), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_GetProfile", 1, {"An exception occured in DB_PIM_GetProfile()."}));
    EXPECT_EQ(lib.DB_PIM_SetProfile(nullptr), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_SetProfile", 1, {"An exception occured in DB_PIM_SetProfile()."}));
}

TEST_F(ClosedDatabase, PimProfile_BothExports_AnswerOne)
{
    Text profile = W("profile");
    DbChar* slot = profile.get();
    EXPECT_EQ(lib.DB_PIM_SetProfile(&slot), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_SetProfile", 1));
    slot = nullptr;
    EXPECT_EQ(lib.DB_PIM_GetProfile(&slot), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_GetProfile", 1));
}

}  // namespace
}  // namespace kesta::test
