// The most items one call lists. Natively only: where every line of the trace is delivered, a million of them take
// minutes.
#include "api/records.h"

namespace kesta::test {
namespace {

/// Without a viewer: a million lines would be most of the work.
class PimItemLimit : public ::testing::Test {
protected:
    DataFolder data;
    Library lib{data};
    Sql sql{data.databasePath()};
};

TEST_F(PimItemLimit, GetItems_MoreThanAMillion_StopsAtTheLimit)
{
    sql.exec(
        "PRAGMA synchronous = OFF; INSERT INTO tPimItem WITH RECURSIVE some(n) AS (SELECT 1 UNION ALL SELECT n + 1 "
        "FROM some WHERE n < "
        "1048580) SELECT n, -2, n, NULL, 1 FROM some; INSERT INTO tPimFolder VALUES (1, -2, 'F1', NULL, 1); "
        "INSERT INTO tPimItem VALUES (2000000, 1, 'behind the limit', NULL, 1)");
    PimItemList list = {};
    EXPECT_EQ(lib.DB_PIM_GetItems(&list, nullptr, 1, 1), 0);
    ASSERT_EQ(list.Count, 1'048'575);
    // In the order of the index on the texts.
    EXPECT_EQ(Utf8(list.Items[0].PimID), "1");
    EXPECT_NE(Utf8(list.Items[1'048'574].PimID), "behind the limit");
    EXPECT_NE(list.Items[1'048'574].PimID, nullptr);
    EXPECT_EQ(lib.DB_PIM_GetItems(&list, W("none"), 1, 0), 1);
    EXPECT_EQ(list.Items, nullptr);
}

}  // namespace
}  // namespace kesta::test
