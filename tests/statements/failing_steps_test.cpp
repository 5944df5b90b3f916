// Statements that SQLite refuses, and steps that end otherwise than a valid file lets them: what no change of the
// tables brings about at just that place.
#include <sqlite3.h>

#include "statements/call_case.h"
#include "statements/call_recorder.h"
#include "unit/module_under_test.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

class FailingSteps : public ModuleUnderTest {
protected:
    FailingSteps()
    {
        statementsStayCompiled = false;
        EXPECT_EQ(DB_LIB_PhoneDetected(W("351111"), W("Phone")), 1);
        sql.exec(
            "INSERT INTO tPimFolder ([pfID], [parentID], [PimID], [Path], [Type]) VALUES (5, -2, 'root', 'Root', 3), "
            "(6, 5, 'below', 'Below', 3);"
            "INSERT INTO tPimItem ([piID], [pfID], [PimID], [Data], [Type]) VALUES (7, 5, 'item', x'01', 3);"
            "CREATE TABLE tBackups([bcID], [phoneID], [Path]); INSERT INTO tBackups VALUES (1, 1, 'C:\\1')");
        ReplacedServices::take();
    }
    ~FailingSteps() override
    {
        CallRecorder::refuseStatementAfter(-1);
        CallRecorder::endStepAfter(-1, SQLITE_OK);
        statementsStayCompiled = true;
    }

    /// The call's lines between entry and exit.
    static std::vector<std::string> between()
    {
        std::vector<std::string> lines = ReplacedServices::take();
        return {lines.begin() + 1, lines.end() - 1};
    }
};

TEST_F(FailingSteps, PimGetFolder_ParentRefused_IsPositionTwo)
{
    CallRecorder::refuseStatementAfter(2);
    PimFolderRecord folder = {};
    EXPECT_EQ(DB_PIM_GetFolder(&folder, W("below")), 1);
    EXPECT_EQ(ToString(folder), "below|<null>|Below|3");
    EXPECT_EQ(ReplacedServices::take().at(3), "DB TRACE >> Error in DB_INTERNAL_PIM_GetFolder(), position 2.\n");
    EXPECT_EQ(DB_PIM_GetFolder(&folder, W("")), 1);  // gives the texts back
}

TEST_F(FailingSteps, PimGetFolder_RowGoneSinceItsLookUp_IsTheStepsCode)
{
    CallRecorder::endStepAfter(1, SQLITE_DONE);
    PimFolderRecord folder = {};
    EXPECT_EQ(DB_PIM_GetFolder(&folder, W("below")), 101);
    EXPECT_THAT(between(), ElementsAre());
}

TEST_F(FailingSteps, PimGetItems_RowGoneSinceItsLookUp_IsAnEmptyElement)
{
    CallRecorder::endStepAfter(3, SQLITE_DONE);  // the look-up, one item and the end of the items
    PimItemList list = {};
    EXPECT_EQ(DB_PIM_GetItems(&list, W("root"), 3, 0), 0);
    ASSERT_EQ(list.Count, 1);
    EXPECT_EQ(ToString(list.Items[0]), "<null>|0|0|<null>");
    EXPECT_EQ(DB_PIM_GetItems(&list, W("unknown"), 3, 0), 1);
}

TEST_F(FailingSteps, PimAddAndUpdateItem_StepsCode_IsSuccessForOkRowAndDone)
{
    const PimItem item("item");
    const PimItem other("other");
    for (const auto& [code, result] : {std::pair(SQLITE_OK, 0), std::pair(SQLITE_ROW, 0), std::pair(SQLITE_DONE, 0),
                                       std::pair(SQLITE_BUSY, 1), std::pair(SQLITE_CONSTRAINT, 1)}) {
        CallRecorder::endStepAfter(1, code);  // after the look-up's
        EXPECT_EQ(DB_PIM_UpdateItem(&item), result) << code;
        CallRecorder::endStepAfter(1, code);
        EXPECT_EQ(DB_PIM_AddItem(&other, W("Root")), result) << code;
    }
    EXPECT_EQ(sql.text("SELECT [PimID], hex([Data]) FROM tPimItem"), "item|01");
}

TEST_F(FailingSteps, CountThatYieldsNoRow_IsSuccessWithoutElements)
{
    CallRecorder::endStepAfter(1, SQLITE_BUSY);
    PlaylistList playlists = {};
    EXPECT_EQ(DB_PLAYERMUSIC_GetPlaylists(W("351111"), &playlists), 0);
    EXPECT_EQ(playlists.Count, 0);
    EXPECT_EQ(DB_PLAYERMUSIC_GetPlaylists(W("unknown"), &playlists), 1);

    CallRecorder::endStepAfter(1, SQLITE_BUSY);
    PimLog log = {3, 0, nullptr};
    EXPECT_EQ(DB_PIMLOG_ReadLog(W("351111"), &log), 0);
    EXPECT_EQ(log.Items, nullptr);

    CallRecorder::endStepAfter(0, SQLITE_BUSY);
    EXPECT_EQ(DB_BACKUP_FileExist(W("C:\\1")), 0);
    EXPECT_EQ(DB_BACKUP_FileExist(W("C:\\1")), 1);
}

}  // namespace
}  // namespace kesta::test
