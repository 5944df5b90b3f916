// The folders of the PIM store: adding, reading, changing, removing single ones.
#include "api/records.h"

namespace kesta::test {
namespace {

constexpr char kLookupError[] = "Error in DB_INTERNAL_PIM_GetFolderID(), position 1.";

class PimFolders : public FamilyExports {
protected:
    void givenFolder(int pfId, const std::string& parent, const std::string& pimId, int type = 1,
                     const std::string& path = "'Path'") const
    {
        sql.exec("INSERT INTO tPimFolder VALUES (" + std::to_string(pfId) + ", " + parent + ", " + Quoted(pimId) +
                 ", " + path + ", " + std::to_string(type) + ")");
    }
    void refuse(const std::string& what)
    {
        sql.exec("CREATE TRIGGER refuse BEFORE " + what + " ON tPimFolder BEGIN SELECT RAISE(ABORT, 'no'); END");
    }
    [[nodiscard]] std::string rows() const { return sql.text("SELECT * FROM tPimFolder ORDER BY 1"); }
    int32_t get(PimFolderRecord& folder, const char* pimId) { return lib.DB_PIM_GetFolder(&folder, W(pimId)); }
};

TEST_F(PimFolders, AddFolder_NoParent_IsStoredAsRoot)
{
    const PimFolder folder("F1", "it's \xF0\x9F\x98\x80", 7);
    EXPECT_EQ(lib.DB_PIM_AddFolder(&folder, nullptr), 0);
    const PimFolder other(
        "\xC3\xBC"
        "2",
        "B", 8);
    EXPECT_EQ(lib.DB_PIM_AddFolder(&other, W("")), 0);
    EXPECT_EQ(rows(),
              "1|-2|F1|it's \xF0\x9F\x98\x80|7\n2|-2|\xC3\xBC"
              "2|B|8");
    EXPECT_EQ(trace.take(), [] {
        std::vector<std::string> twice = Framed("DB_PIM_AddFolder", 0);
        twice.insert(twice.end(), {"Enter DB_PIM_AddFolder().", "Exit DB_PIM_AddFolder() with 0."});
        return twice;
    }());
}

TEST_F(PimFolders, AddFolder_KnownParent_IsStoredBelowIt)
{
    givenFolder(5, "-2", "F1");
    PimFolder folder("F2", "B", 7);
    Text unread = W("nonsense");
    folder.ParentPimID = unread.get();
    EXPECT_EQ(lib.DB_PIM_AddFolder(&folder, W("F1")), 0);
    EXPECT_EQ(rows(), "5|-2|F1|Path|1\n6|5|F2|B|7");
}

TEST_F(PimFolders, AddFolder_UnknownParent_FailsAndStoresNothing)
{
    const PimFolder folder("F1");
    EXPECT_EQ(lib.DB_PIM_AddFolder(&folder, W("none")), 1);
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_AddFolder", 1));
}

TEST_F(PimFolders, AddFolder_KnownPimId_Fails)
{
    givenFolder(1, "-2", "F1");
    const PimFolder folder("F1", "new");
    EXPECT_EQ(lib.DB_PIM_AddFolder(&folder, nullptr), 1);
    EXPECT_EQ(rows(), "1|-2|F1|Path|1");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_AddFolder", 1, {"Error in DB_PIM_AddFolder(), position 1."}));
}

TEST_F(PimFolders, AddFolder_Apostrophes_BreakThePimIdsOnly)
{
    const PimFolder folder("F'1");
    EXPECT_EQ(lib.DB_PIM_AddFolder(&folder, nullptr), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_AddFolder", 1, {"Error in DB_PIM_AddFolder(), position 1."}));
    const PimFolder child("F2");
    EXPECT_EQ(lib.DB_PIM_AddFolder(&child, W("F'1")), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_AddFolder", 1, {kLookupError}));
    EXPECT_EQ(rows(), "");
}

TEST_F(PimFolders, AddFolder_NullTexts_AreTheWordNullAndAnEmptyPath)
{
    PimFolder folder("F1");
    folder.PimID = folder.Path = nullptr;
    EXPECT_EQ(lib.DB_PIM_AddFolder(&folder, nullptr), 0);
    EXPECT_EQ(rows(), "1|-2|(null)||1");
}

TEST_F(PimFolders, AddFolder_NullParentOfAnotherKind_IsNoParent)
{
    givenFolder(1, "NULL", "F1");
    const PimFolder folder("F2");
    EXPECT_EQ(lib.DB_PIM_AddFolder(&folder, W("F1")), 0);
    EXPECT_EQ(rows(), "1|<null>|F1|Path|1\n2|1|F2|Family|1");
}

TEST_F(PimFolders, GetFolder_FolderBelowAnother_FillsEveryField)
{
    givenFolder(1, "-2", "F1");
    givenFolder(2, "1", "F2", 7, "'it''s'");
    PimFolderRecord folder = {};
    EXPECT_EQ(get(folder, "F2"), 0);
    EXPECT_EQ(ToString(folder), "F2|F1|it's|7");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_GetFolder", 0, WithNew({}, 3)));
}

TEST_F(PimFolders, GetFolder_Root_HasNoParent)
{
    givenFolder(1, "-2", "F1");
    givenFolder(2, "NULL", "F2");
    givenFolder(3, "-1", "F3", 1, "NULL");
    PimFolderRecord folder = {};
    EXPECT_EQ(get(folder, "F1"), 0);
    EXPECT_EQ(ToString(folder), "F1|<null>|Path|1");
    EXPECT_EQ(get(folder, "F3"), 0);
    EXPECT_EQ(ToString(folder), "F3|<null>|<null>|1");
    EXPECT_EQ(get(folder, "F2"), 0);
    EXPECT_EQ(ToString(folder), "F2|<null>|Path|1");
}

TEST_F(PimFolders, GetFolder_ParentIsGone_FillsTheRestAndTells)
{
    givenFolder(2, "1", "F2", 7);
    PimFolderRecord folder = {};
    EXPECT_EQ(get(folder, "F2"), 101);
    EXPECT_EQ(ToString(folder), "F2|<null>|Path|7");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_GetFolder", 101, WithNew({}, 2)));
}

TEST_F(PimFolders, GetFolder_RecordHoldingTexts_FreesThemFirst)
{
    givenFolder(1, "-2", "F1");
    givenFolder(2, "1", "F2", 7);
    PimFolderRecord folder = {};
    AliveMemory memory;
    ASSERT_EQ(get(folder, "F2"), 0);
    EXPECT_EQ(memory.after(trace.take(Addresses::kKept)), 3u);
    EXPECT_EQ(get(folder, "F1"), 0);
    EXPECT_EQ(memory.after(trace.take(Addresses::kKept)), 2u);
    EXPECT_EQ(get(folder, "none"), 1);
    EXPECT_EQ(ToString(folder).substr(0, 21), "<null>|<null>|<null>|");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_GetFolder", 1, {"Memory DELETE.", "Memory DELETE."}));
    EXPECT_EQ(get(folder, ""), 1);
    EXPECT_EQ(lib.DB_PIM_GetFolder(&folder, nullptr), 1);
}

TEST_F(PimFolders, GetFolder_LookupFails_TracesTheRoutine)
{
    PimFolderRecord folder = {};
    EXPECT_EQ(get(folder, "F'1"), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_GetFolder", 1, {kLookupError}));
}

TEST_F(PimFolders, GetFolder_QueryFails_TracesTheRoutinesPositionOne)
{
    givenFolder(1, "-2", "F1");
    givenSchema("ALTER TABLE tPimFolder RENAME COLUMN [Type] TO [Elsewhere]");
    PimFolderRecord folder = {};
    EXPECT_EQ(get(folder, "F1"), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_GetFolder", 1, {"Error in DB_INTERNAL_PIM_GetFolder(), position 1."}));
}

TEST_F(PimFolders, UpdateFolder_KnownFolder_GetsPathAndType)
{
    givenFolder(1, "-2", "F1");
    givenFolder(2, "1", "F2");
    const PimFolder folder("F2", "it's", 9);
    EXPECT_EQ(lib.DB_PIM_UpdateFolder(&folder), 0);
    EXPECT_EQ(rows(), "1|-2|F1|Path|1\n2|1|F2|it's|9");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_UpdateFolder", 0));
}

TEST_F(PimFolders, UpdateFolder_UnknownFolder_FailsAndEmptyPimIdSucceeds)
{
    givenFolder(1, "-2", "F1");
    const PimFolder unknown("none", "new");
    EXPECT_EQ(lib.DB_PIM_UpdateFolder(&unknown), 1);
    PimFolder empty("", "new");
    EXPECT_EQ(lib.DB_PIM_UpdateFolder(&empty), 0);
    empty.PimID = nullptr;
    EXPECT_EQ(lib.DB_PIM_UpdateFolder(&empty), 0);
    EXPECT_EQ(rows(), "1|-2|F1|Path|1");
}

TEST_F(PimFolders, UpdateFolder_UpdateFails_TracesPositionOne)
{
    givenFolder(1, "-2", "F1");
    refuse("UPDATE");
    const PimFolder folder("F1", "new");
    EXPECT_EQ(lib.DB_PIM_UpdateFolder(&folder), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_UpdateFolder", 1, {"Error in DB_PIM_UpdateFolder(), position 1."}));
}

TEST_F(PimFolders, DeleteFolder_FolderWithContents_GoesAlone)
{
    givenFolder(1, "-2", "F1");
    givenFolder(2, "1", "F2");
    sql.exec("INSERT INTO tPimItem VALUES (1, 1, 'I1', x'00', 1)");
    EXPECT_EQ(lib.DB_PIM_DeleteFolder(W("F1")), 0);
    EXPECT_EQ(rows(), "2|1|F2|Path|1");
    EXPECT_EQ(sql.text("SELECT [PimID] FROM tPimItem"), "I1");
    EXPECT_EQ(trace.take(), Framed("DB_PIM_DeleteFolder", 0));
    PimFolderList list = {};
    EXPECT_EQ(lib.DB_PIM_GetFolders(&list, nullptr, 1, 1), 0);
    EXPECT_EQ(list.Count, 0);
}

TEST_F(PimFolders, DeleteFolder_UnknownFolder_FailsAndEmptyPimIdSucceeds)
{
    givenFolder(1, "-2", "F1");
    EXPECT_EQ(lib.DB_PIM_DeleteFolder(W("none")), 1);
    EXPECT_EQ(lib.DB_PIM_DeleteFolder(W("")), 0);
    EXPECT_EQ(lib.DB_PIM_DeleteFolder(nullptr), 0);
    EXPECT_EQ(rows(), "1|-2|F1|Path|1");
    trace.take();
    EXPECT_EQ(lib.DB_PIM_DeleteFolder(W("F'1")), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_DeleteFolder", 1, {kLookupError}));
}

TEST_F(PimFolders, DeleteFolder_DeleteFails_TracesPositionOne)
{
    givenFolder(1, "-2", "F1");
    refuse("DELETE");
    EXPECT_EQ(lib.DB_PIM_DeleteFolder(W("F1")), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_DeleteFolder", 1, {"Error in DB_PIM_DeleteFolder(), position 1."}));
}

TEST_F(PimFolders, NullRecords_TakeTheExceptionWay)
{
    EXPECT_EQ(lib.DB_PIM_AddFolder(nullptr, nullptr), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_AddFolder", 1, {"An exception occured in DB_PIM_AddFolder()."}));
    EXPECT_EQ(lib.DB_PIM_GetFolder(nullptr, W("F1")), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_GetFolder", 1, {"An exception occured in DB_PIM_GetFolder()."}));
    EXPECT_EQ(lib.DB_PIM_UpdateFolder(nullptr), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_UpdateFolder", 1, {"An exception occured in DB_PIM_UpdateFolder()."}));
}

TEST_F(ClosedDatabase, PimFolders_EveryExport_AnswersOne)
{
    const PimFolder folder("F1");
    PimFolderRecord read = {};
    EXPECT_EQ(lib.DB_PIM_AddFolder(&folder, nullptr), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_AddFolder", 1));
    EXPECT_EQ(lib.DB_PIM_GetFolder(&read, W("F1")), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_GetFolder", 1));
    EXPECT_EQ(lib.DB_PIM_UpdateFolder(&folder), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_UpdateFolder", 1));
    EXPECT_EQ(lib.DB_PIM_DeleteFolder(W("F1")), 1);
    EXPECT_EQ(trace.take(), Framed("DB_PIM_DeleteFolder", 1));
}

}  // namespace
}  // namespace kesta::test
