// The room for row ids, smaller than any that a call has.
#include "pim/id_area.h"

#include "unit/module_under_test.h"

namespace kesta {
namespace {

class IdAreaTest : public ModuleUnderTest {
protected:
    ResultCode append(const char* query)
    {
        Statement rows = db().prepare(query);
        return area.appendFirstColumn(rows);
    }

    int32_t slots[3] = {};
    IdArea area{slots};
};

TEST_F(IdAreaTest, AppendFirstColumn_AsManyRowsAsThereIsRoomFor_AreAllThere)
{
    EXPECT_EQ(append("SELECT 7 UNION ALL SELECT 8"), ResultCode::kSuccess);
    ASSERT_EQ(area.count(), 2u);
    EXPECT_EQ(area[0], 7);
    EXPECT_EQ(area[1], 8);
}

TEST_F(IdAreaTest, AppendFirstColumn_MoreRows_EndAtTheLastSlotWhichIsNoFailure)
{
    EXPECT_EQ(append("SELECT 7 UNION ALL SELECT 8 UNION ALL SELECT 9"), ResultCode::kSuccess);
    EXPECT_EQ(area.count(), 2u);
    EXPECT_FALSE(area.append(10));
    EXPECT_EQ(slots[2], 0);
}

TEST_F(IdAreaTest, AppendFirstColumn_RowThatFails_IsAFailureAfterThoseBefore)
{
    EXPECT_EQ(append("SELECT 7 UNION ALL SELECT zeroblob(2000000000)"), ResultCode::kFailure);
    EXPECT_EQ(area.count(), 1u);
}

}  // namespace
}  // namespace kesta
