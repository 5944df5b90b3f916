// The walks through the tree of PIM folders: which folders and items come, in which order, and where a walk stops.
#include "api/records.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PimWalks : public FamilyExports {
protected:
    /// A folder "F<n>" of the number n, and an item "I<n>" in it.
    void givenFolder(int number, const std::string& parent, int type = 1) const
    {
        const std::string n = std::to_string(number);
        sql.exec("INSERT INTO tPimFolder VALUES (" + n + ", " + parent + ", 'F" + n + "', 'P" + n + "', " +
                 std::to_string(type) + "); INSERT INTO tPimItem VALUES (" + n + ", " + n + ", 'I" + n +
                 "', NULL, 99)");
    }
    /// 1 and 2 are roots; 3, 4 below 1; 5 below 2; 6 below 4; 7 is of another type, below 1, with 8 below it.
    void givenTree() const
    {
        givenFolder(1, "-2");
        givenFolder(2, "NULL");
        givenFolder(3, "1");
        givenFolder(4, "1");
        givenFolder(5, "2");
        givenFolder(6, "4");
        givenFolder(7, "1", 2);
        givenFolder(8, "7");
    }
    /// A row of `count` folders from number 1 on; `parent` is SQL over the number n.
    void givenMany(int count, const std::string& parent) const
    {
        sql.exec(
            "INSERT INTO tPimFolder WITH RECURSIVE some(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM some WHERE n "
            "< " +
            std::to_string(count) + ") SELECT n, " + parent + ", 'F' || n, NULL, 1 FROM some");
    }

    std::vector<std::string> folders(const char* parent, int type, int recursive)
    {
        PimFolderList list = {};
        EXPECT_EQ(lib.DB_PIM_GetFolders(&list, W(parent), type, recursive), 0);
        std::vector<std::string> ids;
        for (int32_t i = 0; i < list.Count; ++i) {
            ids.push_back(Utf8(list.Items[i].PimID));
        }
        return ids;
    }
    std::vector<std::string> items(const char* folder, int type, int recursive)
    {
        PimItemList list = {};
        EXPECT_EQ(lib.DB_PIM_GetItems(&list, W(folder), type, recursive), 0);
        std::vector<std::string> ids;
        for (int32_t i = 0; i < list.Count; ++i) {
            ids.push_back(Utf8(list.Items[i].PimID));
        }
        return ids;
    }
};

TEST_F(PimWalks, GetFolders_OneLevel_ListsTheChildrenOfTheType)
{
    givenTree();
    EXPECT_THAT(folders("", 1, 0), ElementsAre("F1", "F2"));
    EXPECT_THAT(folders("", 2, 0), IsEmpty());
    EXPECT_THAT(folders("F1", 1, 0), ElementsAre("F3", "F4"));
    EXPECT_THAT(folders("F1", 2, 0), ElementsAre("F7"));
    EXPECT_THAT(folders("F7", 1, 0), ElementsAre("F8"));
    EXPECT_THAT(folders("F6", 1, 0), IsEmpty());
}

TEST_F(PimWalks, GetFolders_Recursive_ComesLevelByLevelAndStopsAtAnotherType)
{
    givenTree();
    EXPECT_THAT(folders("", 1, 1), ElementsAre("F1", "F2", "F3", "F4", "F5", "F6"));
    EXPECT_THAT(folders("F1", 1, -1), ElementsAre("F3", "F4", "F6"));
    EXPECT_THAT(folders("F1", 2, 1), ElementsAre("F7"));
    EXPECT_THAT(folders("F7", 1, 1), ElementsAre("F8"));
}

TEST_F(PimWalks, GetFolders_Elements_AreFilledLikeSingleFolders)
{
    givenFolder(1, "-2");
    givenFolder(2, "1");
    PimFolderList list = {};
    EXPECT_EQ(lib.DB_PIM_GetFolders(&list, nullptr, 1, 1), 0);
    EXPECT_THAT(Records(list), ElementsAre("F1|<null>|P1|1", "F2|F1|P2|1"));
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_PIM_GetFolders().", "Memory NEW.", "Memory NEW.", "Memory NEW.", "Memory NEW.",
                            "Memory NEW.", "Memory NEW.", "Exit DB_PIM_GetFolders() with 0."));
}

TEST_F(PimWalks, GetFolders_NoFolders_HasAnArrayOfNoElements)
{
    PimFolderList list = {};
    EXPECT_EQ(lib.DB_PIM_GetFolders(&list, nullptr, 1, 1), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_NE(list.Items, nullptr);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_PIM_GetFolders().", "Memory NEW.", "Exit DB_PIM_GetFolders() with 0."));
}

TEST_F(PimWalks, GetFolders_UnknownParent_FailsAndEmptiesTheList)
{
    givenFolder(1, "-2");
    PimFolderList list = {};
    AliveMemory memory;
    ASSERT_EQ(lib.DB_PIM_GetFolders(&list, nullptr, 1, 0), 0);
    EXPECT_EQ(memory.after(trace.take(Addresses::kKept)), 3u);
    EXPECT_EQ(lib.DB_PIM_GetFolders(&list, W("none"), 1, 0), 1);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    const std::vector<std::string> lines = trace.take(Addresses::kKept);
    EXPECT_EQ(memory.after(lines), 0u);
    EXPECT_EQ(lines.front(), "Enter DB_PIM_GetFolders().");
    EXPECT_EQ(lines.back(), "Exit DB_PIM_GetFolders() with 1.");
}

TEST_F(PimWalks, GetFolders_ParentIdWithApostrophe_TracesTheLookup)
{
    PimFolderList list = {};
    EXPECT_EQ(lib.DB_PIM_GetFolders(&list, W("F'1"), 1, 0), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_PIM_GetFolders().", "Error in DB_INTERNAL_PIM_GetFolderID(), position 1.",
                            "Exit DB_PIM_GetFolders() with 1."));
}

TEST_F(PimWalks, GetFolders_ChildrenCannotBeAskedFor_TracesItAndListsNothing)
{
    givenTree();
    givenSchema("ALTER TABLE tPimFolder RENAME COLUMN [Type] TO [Elsewhere]");
    PimFolderList list = {};
    EXPECT_EQ(lib.DB_PIM_GetFolders(&list, nullptr, 1, 1), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_PIM_GetFolders().", "Error in DB_INTERNAL_PIM_GetFolderIDs(), position 1.",
                            "Memory NEW.", "Exit DB_PIM_GetFolders() with 0."));
}

TEST_F(PimWalks, GetFolders_ParentRowIsGone_IsNotReachedFromTheRoot)
{
    givenFolder(1, "-2");
    givenFolder(3, "2");
    EXPECT_THAT(folders("", 1, 1), ElementsAre("F1"));
    EXPECT_THAT(folders("F3", 1, 1), IsEmpty());
}

TEST_F(PimWalks, GetFolders_ThousandAndTwentyThree_AllCome)
{
    givenMany(1023, "-2");
    const std::vector<std::string> all = folders("", 1, 0);
    ASSERT_EQ(all.size(), 1023u);
    EXPECT_EQ(all.back(), "F1023");
}

TEST_F(PimWalks, GetFolders_MoreThanFit_StopsAtTheLimit)
{
    givenMany(1100, "-2");
    for (const int recursive : {0, 1}) {
        const std::vector<std::string> all = folders("", 1, recursive);
        ASSERT_EQ(all.size(), 1023u);
        EXPECT_EQ(all.back(), "F1023");
    }
}

TEST_F(PimWalks, GetFolders_MoreThanFitBelowOneAnother_StopsAtTheLimit)
{
    givenMany(1100, "CASE n WHEN 1 THEN -2 ELSE n - 1 END");
    const std::vector<std::string> all = folders("", 1, 1);
    ASSERT_EQ(all.size(), 1023u);
    EXPECT_EQ(all.front(), "F1");
    EXPECT_EQ(all.back(), "F1023");
}

TEST_F(PimWalks, GetFolders_LimitReachedInTheMiddleOfALevel_StopsThere)
{
    givenMany(2100, "CASE WHEN n <= 1000 THEN -2 ELSE (n - 1001) / 10 + 1 END");  // ten below each of the first hundred
    const std::vector<std::string> all = folders("", 1, 1);
    ASSERT_EQ(all.size(), 1023u);
    EXPECT_EQ(all.back(), "F1023");
}

TEST_F(PimWalks, GetFolders_ParentsInACircle_StopsAtTheLimit)
{
    givenFolder(1, "2");
    givenFolder(2, "1");
    const std::vector<std::string> all = folders("F1", 1, 1);
    ASSERT_EQ(all.size(), 1023u);
    EXPECT_EQ(all[0], "F2");
    EXPECT_EQ(all[1], "F1");
    EXPECT_EQ(all[1022], "F2");
    EXPECT_THAT(folders("F1", 1, 0), ElementsAre("F2"));
}

TEST_F(PimWalks, GetFolders_FolderBelowItself_StopsAtTheLimit)
{
    givenFolder(1, "1");
    EXPECT_EQ(folders("F1", 1, 1).size(), 1023u);
    EXPECT_THAT(folders("", 1, 1), IsEmpty());
}

TEST_F(PimWalks, GetItems_OneFolder_ListsItsItemsOfAnyType)
{
    givenTree();
    sql.exec("INSERT INTO tPimItem VALUES (20, 1, 'I20', NULL, 5)");
    EXPECT_THAT(items("F1", 7, 0), ElementsAre("I1", "I20"));
    EXPECT_THAT(items("F8", 7, 0), ElementsAre("I8"));
}

TEST_F(PimWalks, GetItems_Recursive_ComesFolderByFolder)
{
    givenTree();
    sql.exec("INSERT INTO tPimItem VALUES (20, 1, 'I20', NULL, 5), (21, -2, 'I21', NULL, 5)");
    EXPECT_THAT(items("F1", 1, 1), ElementsAre("I1", "I20", "I3", "I4", "I6"));
    EXPECT_THAT(items("F1", 2, 1), ElementsAre("I1", "I20", "I7"));
    EXPECT_THAT(items("F7", 2, 1), ElementsAre("I7")) << "the first folder's own type does not matter";
    EXPECT_THAT(items("", 1, 1), ElementsAre("I21", "I1", "I20", "I2", "I3", "I4", "I5", "I6"));
    EXPECT_THAT(items("", 1, 0), ElementsAre("I21"));
}

TEST_F(PimWalks, GetItems_ParentsInACircle_StopsAtTheLimitOfFolders)
{
    givenFolder(1, "2");
    givenFolder(2, "1");
    const std::vector<std::string> all = items("F1", 1, 1);
    ASSERT_EQ(all.size(), 1023u);
    EXPECT_EQ(all[0], "I1");
    EXPECT_EQ(all[1], "I2");
    EXPECT_EQ(all[1022], "I1");
}

TEST_F(PimWalks, GetItems_MoreFoldersThanFit_CountsTheFirstFolderToo)
{
    givenMany(1100, "-2");
    sql.exec(
        "INSERT INTO tPimItem SELECT [pfID], [pfID], 'I' || [pfID], NULL, 1 FROM tPimFolder; INSERT INTO tPimItem "
        "VALUES (5000, -2, 'root', NULL, 1)");
    const std::vector<std::string> all = items("", 1, 1);
    ASSERT_EQ(all.size(), 1023u);
    EXPECT_EQ(all.front(), "root");
    EXPECT_EQ(all.back(), "I1022");
}

TEST_F(PimWalks, GetItems_ItemsCannotBeAskedFor_TracesItForEveryFolder)
{
    givenFolder(1, "-2");
    givenFolder(2, "1");
    givenSchema("DROP TABLE tPimItem");
    PimItemList list = {};
    EXPECT_EQ(lib.DB_PIM_GetItems(&list, W("F1"), 1, 1), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_PIM_GetItems().", "Memory NEW.",
                                          "Error in DB_INTERNAL_PIM_GetItemIDs(), position 1.",
                                          "Error in DB_INTERNAL_PIM_GetItemIDs(), position 1.", "Memory NEW.",
                                          "Memory DELETE.", "Exit DB_PIM_GetItems() with 0."));
}

TEST_F(PimWalks, GetItems_ItemCannotBeRead_LeavesItsElementAndGoesOn)
{
    givenFolder(1, "-2");
    givenSchema("ALTER TABLE tPimItem RENAME COLUMN [Data] TO [Elsewhere]");
    PimItemList list = {};
    EXPECT_EQ(lib.DB_PIM_GetItems(&list, W("F1"), 1, 0), 0);
    ASSERT_EQ(list.Count, 1);
    EXPECT_EQ(list.Items[0].PimID, nullptr);
    EXPECT_EQ(list.Items[0].Data, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_PIM_GetItems().", "Memory NEW.", "Memory NEW.",
                                          "Error in DB_INTERNAL_PIM_GetItem(), position 1.", "Memory DELETE.",
                                          "Exit DB_PIM_GetItems() with 0."));
}

TEST_F(PimWalks, NullLists_TakeTheExceptionWay)
{
    EXPECT_EQ(lib.DB_PIM_GetFolders(nullptr, nullptr, 1, 1), 1);
    EXPECT_EQ(lib.DB_PIM_GetItems(nullptr, nullptr, 1, 1), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_PIM_GetFolders().", "An exception occured in DB_PIM_GetFolders().",
                            "Exit DB_PIM_GetFolders() with 1.", "Enter DB_PIM_GetItems().",
                            "An exception occured in DB_PIM_GetItems().", "Exit DB_PIM_GetItems() with 1."));
}

TEST_F(ClosedDatabase, PimWalks_FailWithEmptyLists)
{
    PimFolderList folders = {};
    PimItemList items = {};
    EXPECT_EQ(lib.DB_PIM_GetFolders(&folders, nullptr, 1, 1), 1);
    EXPECT_EQ(lib.DB_PIM_GetItems(&items, nullptr, 1, 1), 1);
    EXPECT_EQ(folders.Items, nullptr);
    EXPECT_EQ(items.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_PIM_GetFolders().", "Exit DB_PIM_GetFolders() with 1.",
                                          "Enter DB_PIM_GetItems().", "Exit DB_PIM_GetItems() with 1."));
}

}  // namespace
}  // namespace kesta::test
