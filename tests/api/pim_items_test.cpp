// Items of the PIM store with their binary contents, its profile, and clearing it.
#include "api/records.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

constexpr char kLookupError[] = "Error in DB_INTERNAL_PIM_GetItemID(), position 1.";

/// Contents with every byte in them, zeros included.
std::string Contents(size_t length)
{
    std::string contents(length, '\0');
    for (size_t i = 0; i < length; ++i) {
        contents[i] = static_cast<char>(i * 7 % 256);
    }
    return contents;
}

class PimItems : public FamilyExports {
protected:
    PimItems() { sql.exec("INSERT INTO tPimFolder VALUES (3, -2, 'F3', 'it''s', 1), (4, -2, 'F4', 'B', 2)"); }

    void givenItem(const std::string& pimId, int type = 1, int folder = 3) const
    {
        sql.exec("INSERT INTO tPimItem ([pfID], [PimID], [Data], [Type]) VALUES (" + std::to_string(folder) + ", " +
                 Quoted(pimId) + ", x'4F4C44', " + std::to_string(type) + ")");
    }
    void refuse(const std::string& what, const std::string& table = "tPimItem")
    {
        sql.exec("CREATE TRIGGER refuse BEFORE " + what + " ON " + table + " BEGIN SELECT RAISE(ABORT, 'no'); END");
    }
    [[nodiscard]] std::string rows() const
    {
        return sql.text("SELECT [pfID], [PimID], hex([Data]), typeof([Data]), [Type] FROM tPimItem ORDER BY [piID]");
    }
    int32_t items(PimItemList& list, const char* folder) { return lib.DB_PIM_GetItems(&list, W(folder), 1, 0); }
};

TEST_F(PimItems, AddItem_KnownPath_IsStoredInThatFolder)
{
    const std::string pimId = "1 " + AnsiCharacter();
    const PimItem item(pimId, std::string_view("a\0'b", 4), 7);
    EXPECT_EQ(lib.DB_PIM_AddItem(&item, W("it's")), 0);
    EXPECT_EQ(rows(), "3|" + Ansi(W(pimId)) + "|61002762|blob|7");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_AddItem", 0));
}

TEST_F(PimItems, AddItem_EmptyPath_IsStoredAtTheRoot)
{
    const PimItem item("I1", "x");
    const PimItem other("I2", "y");
    EXPECT_EQ(lib.DB_PIM_AddItem(&item, W("")), 0);
    EXPECT_EQ(lib.DB_PIM_AddItem(&other, nullptr), 0);
    EXPECT_EQ(rows(), "-2|I1|78|blob|1\n-2|I2|79|blob|1");
    PimItemList list = {};
    EXPECT_EQ(items(list, ""), 0);
    EXPECT_THAT(Records(list), ElementsAre("I1|1|1|x", "I2|1|1|y"));
}

TEST_F(PimItems, AddItem_UnknownPath_FailsAlsoForAPimId)
{
    const PimItem item("I1");
    EXPECT_EQ(lib.DB_PIM_AddItem(&item, W("none")), 1);
    EXPECT_EQ(lib.DB_PIM_AddItem(&item, W("F3")), 1);
    EXPECT_EQ(rows(), "");
    trace.take();
    EXPECT_EQ(lib.DB_PIM_AddItem(&item, W("none")), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_AddItem", 1));
}

TEST_F(PimItems, AddItem_KnownPimId_FailsWithoutErrorLine)
{
    givenItem("I1");
    const PimItem item("I1", "new");
    EXPECT_EQ(lib.DB_PIM_AddItem(&item, W("B")), 1);
    EXPECT_EQ(rows(), "3|I1|4F4C44|blob|1");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_AddItem", 1));
}

TEST_F(PimItems, AddItem_PimIdWithApostrophe_TracesPositionOne)
{
    const PimItem item("I'1");
    EXPECT_EQ(lib.DB_PIM_AddItem(&item, W("B")), 1);
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_AddItem", 1, {"Error in DB_PIM_AddItem(), position 1."}));
}

TEST_F(PimItems, AddItem_PathLookupFails_TracesTheRoutine)
{
    givenSchema("DROP TABLE tPimFolder");
    const PimItem item("I1");
    EXPECT_EQ(lib.DB_PIM_AddItem(&item, W("B")), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_AddItem", 1, {"Error in DB_INTERNAL_PIM_GetFolderIDByPath(), position 1."}));
}

TEST_F(PimItems, AddItem_ContentsOfEveryLength_ReadBackByteForByte)
{
    for (const size_t length : {size_t{1}, size_t{1024}, size_t{1048576}}) {
        sql.exec("DELETE FROM tPimItem");
        const std::string contents = Contents(length);
        const PimItem item("I1", contents);
        EXPECT_EQ(lib.DB_PIM_AddItem(&item, W("B")), 0);
        trace.take();
        PimItemList list = {};
        EXPECT_EQ(items(list, "F4"), 0);
        ASSERT_EQ(list.Count, 1);
        ASSERT_EQ(static_cast<size_t>(list.Items[0].DataLength), length);
        EXPECT_TRUE(std::equal(contents.begin(), contents.end(), reinterpret_cast<const char*>(list.Items[0].Data)));
        EXPECT_EQ(trace.take(), Framed("DB_PIM_GetItems", 0,
                                       {"Memory NEW.", "Memory NEW.", "Memory NEW.", "Memory NEW.", "Memory DELETE."}))
            << "the work area, the array, text and contents, the work area again";
    }
}

TEST_F(PimItems, AddItem_NoContents_ReadBackAsLengthZero)
{
    uint8_t unused = 'x';
    PimItem item("I1");
    item.Data = &unused;
    item.DataLength = 0;
    EXPECT_EQ(lib.DB_PIM_AddItem(&item, W("B")), 0);
    EXPECT_EQ(rows(), "4|I1||blob|1");
    PimItemList list = {};
    EXPECT_EQ(items(list, "F4"), 0);
    EXPECT_THAT(Records(list), ElementsAre("I1|1|0|<null>"));
}

TEST_F(PimItems, NullContentsOfNoLength_AreAnEmptyBlob)
{
    PimItem item("I1");
    item.Data = nullptr;
    item.DataLength = 0;
    EXPECT_EQ(lib.DB_PIM_AddItem(&item, W("B")), 0);
    EXPECT_EQ(rows(), "4|I1||blob|1");
    PimItemList list = {};
    EXPECT_EQ(items(list, "F4"), 0);
    EXPECT_THAT(Records(list), ElementsAre("I1|1|0|<null>"));
    sql.exec("UPDATE tPimItem SET [Data] = 'old'");
    EXPECT_EQ(lib.DB_PIM_UpdateItem(&item), 0);
    EXPECT_EQ(rows(), "4|I1||blob|1");
}

TEST_F(PimItems, NullContentsOfSomeLength_AreStoredAsNull)
{
    PimItem item("I1");
    item.Data = nullptr;
    item.DataLength = 3;
    EXPECT_EQ(lib.DB_PIM_AddItem(&item, W("B")), 0);
    EXPECT_EQ(rows(), "4|I1||null|1");
    sql.exec("UPDATE tPimItem SET [Data] = 'old'");
    EXPECT_EQ(lib.DB_PIM_UpdateItem(&item), 0);
    EXPECT_EQ(rows(), "4|I1||null|1");
}

TEST_F(PimItems, NegativeLength_TakesTheExceptionWay)
{
    PimItem item("I1", "x");
    item.DataLength = -1;
    EXPECT_EQ(lib.DB_PIM_AddItem(&item, W("B")), 1);
    givenItem("I1");
    EXPECT_EQ(lib.DB_PIM_UpdateItem(&item), 1);
    EXPECT_EQ(rows(), "3|I1|4F4C44|blob|1");
    const std::vector<std::string> lines = trace.take();
    EXPECT_THAT(lines, ElementsAre("Enter DB_PIM_AddItem().", "An exception occured in DB_PIM_AddItem().",
                                   "Exit DB_PIM_AddItem() with 1.", "Enter DB_PIM_UpdateItem().",
                                   "An exception occured in DB_PIM_UpdateItem().", "Exit DB_PIM_UpdateItem() with 1."));
}

TEST_F(PimItems, AddItem_NullPimId_IsTheWordNull)
{
    PimItem item("I1", "x");
    item.PimID = nullptr;
    EXPECT_EQ(lib.DB_PIM_AddItem(&item, W("B")), 0);
    EXPECT_EQ(rows(), "4|(null)|78|blob|1");
}

TEST_F(PimItems, UpdateItem_KnownItem_GetsContentsOnly)
{
    givenItem("I1", 1, 3);
    givenItem("I2", 1, 3);
    const PimItem item("I1", std::string_view("\0n", 2), 9);
    EXPECT_EQ(lib.DB_PIM_UpdateItem(&item), 0);
    EXPECT_EQ(rows(), "3|I1|006E|blob|1\n3|I2|4F4C44|blob|1");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_UpdateItem", 0));
}

TEST_F(PimItems, UpdateItem_UnknownItem_Fails)
{
    givenItem("I1");
    for (const char* pimId : {"none", ""}) {
        const PimItem item(pimId, "new");
        EXPECT_EQ(lib.DB_PIM_UpdateItem(&item), 1);
        EXPECT_EQ(trace.take(), Framed("DB_PIM_UpdateItem", 1));
    }
    const PimItem broken("I'1", "new");
    EXPECT_EQ(lib.DB_PIM_UpdateItem(&broken), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_UpdateItem", 1, {kLookupError}));
    EXPECT_EQ(rows(), "3|I1|4F4C44|blob|1");
}

TEST_F(PimItems, UpdateItem_Failures_ShowAPositionForThePreparationOnly)
{
    givenItem("I1");
    const PimItem item("I1", "new");
    refuse("UPDATE");
    EXPECT_EQ(lib.DB_PIM_UpdateItem(&item), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_UpdateItem", 1));
    sql.exec("DROP TRIGGER refuse");
    givenSchema("ALTER TABLE tPimItem RENAME COLUMN [Data] TO [Elsewhere]");
    EXPECT_EQ(lib.DB_PIM_UpdateItem(&item), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_UpdateItem", 1, {"Error in DB_PIM_UpdateItem(), position 1."}));
}

TEST_F(PimItems, DeleteItem_KnownItem_Goes)
{
    givenItem("I1");
    givenItem("I2");
    EXPECT_EQ(lib.DB_PIM_DeleteItem(W("I1")), 0);
    EXPECT_EQ(rows(), "3|I2|4F4C44|blob|1");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_DeleteItem", 0));
}

TEST_F(PimItems, DeleteItem_UnknownItem_Fails)
{
    givenItem("(null)");
    EXPECT_EQ(lib.DB_PIM_DeleteItem(W("none")), 1);
    EXPECT_EQ(lib.DB_PIM_DeleteItem(W("")), 1);
    EXPECT_EQ(lib.DB_PIM_DeleteItem(nullptr), 0) << "a null text stands for the word";
    trace.take();
    EXPECT_EQ(lib.DB_PIM_DeleteItem(W("I'1")), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_DeleteItem", 1, {kLookupError}));
}

TEST_F(PimItems, DeleteItem_DeleteFails_TracesPositionOne)
{
    givenItem("I1");
    refuse("DELETE");
    EXPECT_EQ(lib.DB_PIM_DeleteItem(W("I1")), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_DeleteItem", 1, {"Error in DB_PIM_DeleteItem(), position 1."}));
}

TEST_F(PimItems, GetItems_UnknownFolder_FailsAndFreesEverything)
{
    givenItem("I1");
    PimItemList list = {};
    AliveMemory memory;
    ASSERT_EQ(items(list, "F3"), 0);
    EXPECT_THAT(Records(list), ElementsAre("I1|1|3|OLD"));
    EXPECT_EQ(memory.after(trace.take(Addresses::kKept)), 3u);
    EXPECT_EQ(items(list, "none"), 1);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_EQ(memory.after(trace.take(Addresses::kKept)), 0u);
    EXPECT_EQ(items(list, "F'3"), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_GetItems", 1, {"Error in DB_INTERNAL_PIM_GetFolderID(), position 1."}));
}

TEST_F(PimItems, GetItems_FolderWithoutItems_HasAnArrayOfNoElements)
{
    PimItemList list = {};
    EXPECT_EQ(items(list, "F3"), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_NE(list.Items, nullptr);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_GetItems", 0, {"Memory NEW.", "Memory NEW.", "Memory DELETE."}));
}

TEST_F(PimItems, ClearAll_KeepingFolders_RemovesTheItemsOfTheType)
{
    givenItem("I1", 1, 3);
    givenItem("I2", 2, 3);
    sql.exec("INSERT INTO tPimInfo VALUES ('profile')");
    EXPECT_EQ(lib.DB_PIM_ClearAll(1, 1), 0);
    EXPECT_EQ(rows(), "3|I2|4F4C44|blob|2");
    EXPECT_EQ(sql.text("SELECT [PimID] FROM tPimFolder ORDER BY 1"), "F3\nF4");
    EXPECT_EQ(sql.text("SELECT [Profile] FROM tPimInfo"), "profile");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_ClearAll", 0));
}

TEST_F(PimItems, ClearAll_WithFolders_RemovesThoseOfTheTypeToo)
{
    givenItem("I1", 1, 4);
    givenItem("I2", 2, 3);
    EXPECT_EQ(lib.DB_PIM_ClearAll(1, 0), 0);
    EXPECT_EQ(rows(), "3|I2|4F4C44|blob|2");
    EXPECT_EQ(sql.text("SELECT [PimID] FROM tPimFolder"), "F4");
}

TEST_F(PimItems, ClearAll_Failures_AreNumberedByTheirStatement)
{
    givenItem("I1", 1, 3);
    refuse("DELETE", "tPimFolder");
    EXPECT_EQ(lib.DB_PIM_ClearAll(1, 0), 1);
    EXPECT_EQ(rows(), "") << "the items have gone before";
    EXPECT_EQ(trace.take(), Framed("DB_PIM_ClearAll", 1, {"Error in DB_PIM_ClearAll(), position 2."}));
    EXPECT_EQ(lib.DB_PIM_ClearAll(1, 1), 0) << "the folders are not asked for";
    trace.take();
    givenItem("I1", 1, 3);
    sql.exec("DROP TRIGGER refuse");
    refuse("DELETE");
    EXPECT_EQ(lib.DB_PIM_ClearAll(1, 0), 1);
    EXPECT_EQ(sql.text("SELECT count(*) FROM tPimFolder"), "2") << "the folders stay when the items could not go";
    EXPECT_EQ(trace.take(), Framed("DB_PIM_ClearAll", 1, {"Error in DB_PIM_ClearAll(), position 1."}));
}

TEST_F(PimItems, NullRecords_TakeTheExceptionWay)
{
    EXPECT_EQ(lib.DB_PIM_AddItem(nullptr, W("B")), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_AddItem", 1, {"An exception occured in DB_PIM_AddItem()."}));
    EXPECT_EQ(lib.DB_PIM_UpdateItem(nullptr), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_UpdateItem", 1, {"An exception occured in DB_PIM_UpdateItem()."}));
}

TEST_F(ClosedDatabase, PimItems_EveryExport_AnswersOne)
{
    const PimItem item("I1");
    EXPECT_EQ(lib.DB_PIM_AddItem(&item, W("")), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_AddItem", 1));
    EXPECT_EQ(lib.DB_PIM_UpdateItem(&item), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_UpdateItem", 1));
    EXPECT_EQ(lib.DB_PIM_DeleteItem(W("I1")), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_DeleteItem", 1));
    EXPECT_EQ(lib.DB_PIM_ClearAll(1, 0), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_ClearAll", 1));
}

}  // namespace
}  // namespace kesta::test
