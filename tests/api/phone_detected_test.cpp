// DB_LIB_PhoneDetected: phones are announced.
#include "api/given.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

class PhoneDetected : public OpenDatabase {
protected:
    [[nodiscard]] std::string phones() const
    {
        return sql.text("SELECT [ID], [IMEI], [IMEI2], [Name] FROM tPhone ORDER BY [ID]");
    }
    [[nodiscard]] std::string contents() const { return sql.text("SELECT * FROM tSyncContents ORDER BY rowid"); }
};

TEST_F(PhoneDetected, PhoneDetected_NewPhone_InsertsItWithSevenUnselectedFolders)
{
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W(kName)), 1);
    EXPECT_EQ(phones(), "1|351111|351111|Ann's phone");
    EXPECT_EQ(contents(), "1|1000|0|0\n1|1100|0|0\n1|1400|0|0\n1|1500|0|0\n1|1600|0|0\n1|1900|0|0\n1|2200|0|0");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_PhoneDetected(IMEI: 351111, Name: Ann's phone).", "Memory NEW.",
                                          "Memory DELETE.", "Exit DB_LIB_PhoneDetected() with PhoneID = 1."));
}

TEST_F(PhoneDetected, PhoneDetected_NewPhone_HasTheDefaultsOfItsTable)
{
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W("")), 1);
    EXPECT_EQ(sql.text("SELECT * FROM tPhone"),
              "1|351111|351111||<null>|<null>|<null>|<null>|0|0|1|2|2|<null>|<null>|<null>|<null>|<null>|<null>|1|0|1|"
              "0|1|0|0|1|0|1|0|0|<null>|<null>|<null>|<null>|<null>|<null>");
}

TEST_F(PhoneDetected, PhoneDetected_KnownPhone_ReturnsItsNumberAndChangesNothing)
{
    ASSERT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W(kName)), 1);
    ASSERT_EQ(lib.DB_LIB_PhoneDetected(W("352222"), W("other")), 2);
    sql.exec("DELETE FROM tSyncContents WHERE [lfID] <> 1000");
    trace.take();
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W("renamed")), 1);
    EXPECT_EQ(phones(), "1|351111|351111|Ann's phone\n2|352222|352222|other");
    EXPECT_EQ(contents(), "1|1000|0|0\n2|1000|0|0");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_PhoneDetected(IMEI: 351111, Name: renamed).",
                                          "Exit DB_LIB_PhoneDetected() with PhoneID = 1."));
}

TEST_F(PhoneDetected, PhoneDetected_NumberOfARemovedPhone_IsNotUsedAgain)
{
    ASSERT_EQ(lib.DB_LIB_PhoneDetected(W("1"), W("")), 1);
    sql.exec("DELETE FROM tPhone");
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("1"), W("")), 2);
}

TEST_F(PhoneDetected, PhoneDetected_TwoIdentities_KeepsTheFirstAsSecondImei)
{
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("35:11:22"), W("a:b")), 1);
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(":9"), W("")), 2);
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("9:"), W("")), 3);
    EXPECT_EQ(phones(), "1|35:11:22|35|a:b\n2|:9||\n3|9:|9|");
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("35:11:22"), W("")), 1);
}

TEST_F(PhoneDetected, PhoneDetected_ImeiWithApostrophe_IsInsertedAtEveryAnnouncement)
{
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("35'1:2"), W("x")), 1);
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("35'1:2"), W("x")), 2);
    EXPECT_EQ(phones(), "1|35'1:2|35'1|x\n2|35'1:2|35'1|x");
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tSyncContents"), "14");
}

TEST_F(PhoneDetected, PhoneDetected_NullName_IsStoredEmpty)
{
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), nullptr), 1);
    EXPECT_EQ(phones(), "1|351111|351111|");
    EXPECT_EQ(trace.take().front(), "Enter DB_LIB_PhoneDetected(IMEI: 351111, Name: (null)).");
}

TEST_F(PhoneDetected, PhoneDetected_NullImei_IsLookedUpAsNullAndStoredEmpty)
{
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(nullptr, W("x")), 1);
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(nullptr, W("x")), 2);
    EXPECT_EQ(phones(), "1|||x\n2|||x");
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("(null)"), W("y")), 3);
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(nullptr, W("x")), 3);
    EXPECT_EQ(trace.take().front(), "Enter DB_LIB_PhoneDetected(IMEI: (null), Name: x).");
}

TEST_F(PhoneDetected, PhoneDetected_InsertRefused_GivesMinusOneWithPositionOne)
{
    sql.exec("CREATE TRIGGER refuse BEFORE INSERT ON tPhone BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W("x")), -1);
    EXPECT_EQ(phones(), "");
    EXPECT_EQ(contents(), "");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_PhoneDetected(IMEI: 351111, Name: x).",
                                          "Error in DB_LIB_PhoneDetected(), position 1.",
                                          "Exit DB_LIB_PhoneDetected() with PhoneID = -1."));
}

TEST_F(PhoneDetected, PhoneDetected_TableMissing_GivesMinusOneWithPositionOne)
{
    givenPhone();
    changeSchema("DROP TABLE tPhone");
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W("x")), -1);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_PhoneDetected(IMEI: 351111, Name: x).",
                                          "Error in DB_LIB_PhoneDetected(), position 1.",
                                          "Exit DB_LIB_PhoneDetected() with PhoneID = -1."));
}

TEST_F(PhoneDetected, PhoneDetected_FolderRowsRefused_TracesPositionTwoForEachAndGoesOn)
{
    sql.exec(
        "CREATE TRIGGER refuse BEFORE INSERT ON tSyncContents WHEN NEW.[lfID] IN (1000, 1600) "
        "BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W("x")), 1);
    EXPECT_EQ(contents(), "1|1100|0|0\n1|1400|0|0\n1|1500|0|0\n1|1900|0|0\n1|2200|0|0");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_PhoneDetected(IMEI: 351111, Name: x).", "Memory NEW.",
                                          "Error in DB_LIB_PhoneDetected(), position 2.",
                                          "Error in DB_LIB_PhoneDetected(), position 2.", "Memory DELETE.",
                                          "Exit DB_LIB_PhoneDetected() with PhoneID = 1."));
}

TEST_F(PhoneDetected, PhoneDetected_MainFoldersCannotBeRead_RegistersThePhoneWithoutRows)
{
    changeSchema("ALTER TABLE tLibMainFolder RENAME COLUMN [Setting] TO [Elsewhere]");
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W("x")), 1);
    EXPECT_EQ(contents(), "");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_PhoneDetected(IMEI: 351111, Name: x).", "Memory NEW.",
                                          "Error in DB_INTERNAL_LIB_GetAllMainFolders(), position 2.", "Memory DELETE.",
                                          "Exit DB_LIB_PhoneDetected() with PhoneID = 1."));
}

TEST_F(PhoneDetected, PhoneDetected_NoMainFolders_RegistersThePhoneWithoutRows)
{
    sql.exec("DELETE FROM tLibMainFolder");
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W("x")), 1);
    EXPECT_EQ(contents(), "");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_PhoneDetected(IMEI: 351111, Name: x).",
                                          "Exit DB_LIB_PhoneDetected() with PhoneID = 1."));
}

TEST_F(PhoneDetected, PhoneDetected_MainFoldersWithSettings_AreReleasedInFull)
{
    sql.exec("DELETE FROM tLibMainFolder WHERE [ID] > 1100; UPDATE tLibMainFolder SET [Setting] = 'x'");
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W("x")), 1);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_LIB_PhoneDetected(IMEI: 351111, Name: x).", "Memory NEW.",
                                          "Memory NEW.", "Memory NEW.", "Memory DELETE.", "Memory DELETE.",
                                          "Memory DELETE.", "Exit DB_LIB_PhoneDetected() with PhoneID = 1."));
}

TEST_F(PhoneDetected, PhoneDetected_OddTexts_AreStoredWhole)
{
    const std::string name = AnsiCharacter() + " O'Neill";  // the trace reaches the test through the code page
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("356"), W(name)), 1);
    EXPECT_EQ(trace.take().front(), "Enter DB_LIB_PhoneDetected(IMEI: 356, Name: " + name + ").");
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("357"), Text::ofUnits({0xDC00, 'x', 0xD83D})), 2);
    EXPECT_EQ(phones(), "1|356|356|" + name + "\n2|357|357|\xEF\xBF\xBDx\xEF\xBF\xBD");
}

TEST_F(PhoneDetected, PhoneDetected_VeryLongImei_IsStoredWhole)
{
    const std::string imei = std::string(9000, '1') + ":" + std::string(9000, '2');
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(imei), W("x")), 1);
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(imei), W("x")), 1);
    EXPECT_EQ(phones(), "1|" + imei + "|" + std::string(9000, '1') + "|x");
}

TEST_F(PhoneDetected, PhoneDetected_StatementInTheImei_RunsNothing)
{
    const Text imei = W("1'; DELETE FROM tPhone; --");
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W("x")), 1);
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(imei, W("y")), 2);
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tPhone"), "2");
}

}  // namespace
}  // namespace kesta::test
