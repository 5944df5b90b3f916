// All bookmarks of a phone: listing and forgetting them.
#include "api/records.h"

namespace kesta::test {
namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;

constexpr char kEnter[] = "Enter DB_BOOKMARK_GetSyncedMarks(IMEI: 351111).";
constexpr char kExit[] = "Exit DB_BOOKMARK_GetSyncedMarks() with 0.";

class BookmarkLists : public FamilyExports {
protected:
    void givenBookmarks() const
    {
        sql.exec(
            "INSERT INTO tBFile VALUES (1, 'A', 'http://a/', 'm1', 3, 4, 1), (1, NULL, 'http://b/', '', 5, NULL, "
            "1), (1, 'C', 'http://c/', 'm3', 7, 8, 2), (2, 'D', 'http://d/', 'm4', 9, 10, 1)");
    }
    void givenView(const std::string& select) { givenSchema("DROP VIEW vBFile; CREATE VIEW vBFile AS " + select); }
    int32_t get(BookmarkList& list) { return lib.DB_BOOKMARK_GetSyncedMarks(W(kImei), &list); }
};

TEST_F(BookmarkLists, GetSyncedMarks_PresentType_IsListedWithoutIdAndType)
{
    givenBookmarks();
    BookmarkList list = {};
    EXPECT_EQ(get(list), 0);
    EXPECT_THAT(Records(list), ElementsAre("A|http://a/|m1|0|4|0", "<null>|http://b/|<null>|0|0|0"));
    EXPECT_THAT(trace.take(),
                ElementsAre(kEnter, "Memory NEW.", "Memory NEW.", "Memory NEW.", "Memory NEW.", "Memory NEW.", kExit));
    sql.exec("UPDATE tPhone SET [BookMarkType] = 2");
    EXPECT_EQ(get(list), 0);
    EXPECT_THAT(Records(list), ElementsAre("C|http://c/|m3|0|8|0"));
}

TEST_F(BookmarkLists, GetSyncedMarks_NoBookmarks_IsEmpty)
{
    BookmarkList list = {};
    EXPECT_EQ(get(list), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, kExit));
}

TEST_F(BookmarkLists, GetSyncedMarks_UnknownPhone_EmptiesTheListAndSucceeds)
{
    givenBookmarks();
    BookmarkList list = {};
    AliveMemory memory;
    ASSERT_EQ(get(list), 0);
    EXPECT_EQ(memory.after(trace.take(Addresses::kKept)), 5u);
    EXPECT_EQ(lib.DB_BOOKMARK_GetSyncedMarks(W("999"), &list), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    const std::vector<std::string> lines = trace.take(Addresses::kKept);
    EXPECT_EQ(memory.after(lines), 0u);
    EXPECT_EQ(lines.front(), "Enter DB_BOOKMARK_GetSyncedMarks(IMEI: 999).");
}

TEST_F(BookmarkLists, GetSyncedMarks_CountFails_TracesPositionOne)
{
    givenSchema("DROP VIEW vBFile");
    BookmarkList list = {};
    EXPECT_EQ(get(list), 1);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, "Error in DB_BOOKMARK_GetSyncedMarks(), position 1.",
                                          "Exit DB_BOOKMARK_GetSyncedMarks() with 1."));
}

TEST_F(BookmarkLists, GetSyncedMarks_CountYieldsNoRow_IsEmptyAndSucceeds)
{
    givenBookmarks();
    givenView("SELECT IMEI, [Type] FROM tPhone, tBFile WHERE abs(-9223372036854775807 - [tPhone].[ID]) > 0");
    BookmarkList list = {};
    EXPECT_EQ(get(list), 0);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, kExit));
}

TEST_F(BookmarkLists, GetSyncedMarks_RowQueryFails_TracesPositionThreeAndKeepsTheArray)
{
    givenBookmarks();
    givenView("SELECT IMEI, [Type], [Path] FROM tPhone, tBFile WHERE tPhone.[ID] = [PhoneID]");
    BookmarkList list = {};
    EXPECT_EQ(get(list), 1);
    EXPECT_EQ(list.Count, 0);
    EXPECT_NE(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, "Memory NEW.", "Error in DB_BOOKMARK_GetSyncedMarks(), position 3.",
                                          "Exit DB_BOOKMARK_GetSyncedMarks() with 1."));
}

TEST_F(BookmarkLists, GetSyncedMarks_ReadingARowFails_GivesTheStepsCodeAndTheRowsBefore)
{
    givenBookmarks();
    givenView(
        "SELECT IMEI, [Path], [Title], [Flag], [Type], CASE WHEN [Path] = 'http://b/' THEN zeroblob(2000000000) "
        "ELSE [PhoneMID] END AS [PhoneMID] FROM tPhone, tBFile WHERE tPhone.[ID] = [PhoneID]");
    BookmarkList list = {};
    EXPECT_EQ(get(list), 18);
    EXPECT_THAT(Records(list), ElementsAre("A|http://a/|m1|0|4|0"));
    EXPECT_EQ(trace.take().back(), "Exit DB_BOOKMARK_GetSyncedMarks() with 18.");
}

/// Each query over this view yields another number of rows, so that sooner or later more come than were counted.
TEST_F(BookmarkLists, GetSyncedMarks_MoreRowsThanCounted_FillsWhatWasCountedAndGivesTheRowCode)
{
    givenView(
        "WITH RECURSIVE some(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM some WHERE n < 20) SELECT '351111' AS "
        "IMEI, 'title' AS [Title], 'http://' || n AS [Path], 'm' AS [PhoneMID], 5 AS [Flag], 1 AS [Type] FROM "
        "some WHERE random() % 2 = 0");
    BookmarkList list = {};
    bool moreCame = false;
    for (int i = 0; i < 200 && !moreCame; ++i) {
        const int32_t result = get(list);
        ASSERT_THAT(result, AnyOf(0, 100));
        moreCame = result == 100 && list.Count > 0;
    }
    EXPECT_TRUE(moreCame);
    for (int32_t i = 0; i < list.Count; ++i) {
        EXPECT_EQ(Utf8(list.Items[i].Title), "title");
    }
}

TEST_F(BookmarkLists, GetSyncedMarks_NullList_TakesTheExceptionWay)
{
    EXPECT_EQ(lib.DB_BOOKMARK_GetSyncedMarks(W(kImei), nullptr), 1);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, "An exception occured in DB_BOOKMARK_GetSyncedMarks().",
                                          "Exit DB_BOOKMARK_GetSyncedMarks() with 1."));
}

TEST_F(BookmarkLists, ClearAll_SeveralTypes_AllOfThePhoneGo)
{
    givenBookmarks();
    EXPECT_EQ(lib.DB_BOOKMARK_ClearAll(W(kImei)), 0);
    EXPECT_EQ(sql.text("SELECT [PhoneID], [Path] FROM tBFile"), "2|http://d/");
    EXPECT_EQ(lib.DB_BOOKMARK_ClearAll(W(kImei)), 0);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_BOOKMARK_ClearAll(IMEI: 351111).", "Exit DB_BOOKMARK_ClearAll() with 0.",
                            "Enter DB_BOOKMARK_ClearAll(IMEI: 351111).", "Exit DB_BOOKMARK_ClearAll() with 0."));
}

TEST_F(BookmarkLists, ClearAll_UnknownPhone_Fails)
{
    givenBookmarks();
    EXPECT_EQ(lib.DB_BOOKMARK_ClearAll(W("999")), 1);
    EXPECT_EQ(sql.text("SELECT count(*) FROM tBFile"), "4");
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_BOOKMARK_ClearAll(IMEI: 999).", "Exit DB_BOOKMARK_ClearAll() with 1."));
}

TEST_F(BookmarkLists, ClearAll_DeleteFails_TracesPositionOne)
{
    givenSchema("DROP TABLE tBFile");
    EXPECT_EQ(lib.DB_BOOKMARK_ClearAll(W(kImei)), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_BOOKMARK_ClearAll(IMEI: 351111).", "Error in DB_BOOKMARK_ClearAll(), position 1.",
                            "Exit DB_BOOKMARK_ClearAll() with 1."));
}

TEST_F(ClosedDatabase, BookmarkLists_FailWithEntryAndExitLine)
{
    BookmarkList list = {};
    EXPECT_EQ(lib.DB_BOOKMARK_GetSyncedMarks(W(kImei), &list), 1);
    EXPECT_EQ(lib.DB_BOOKMARK_ClearAll(W(kImei)), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(kEnter, "Exit DB_BOOKMARK_GetSyncedMarks() with 1.",
                            "Enter DB_BOOKMARK_ClearAll(IMEI: 351111).", "Exit DB_BOOKMARK_ClearAll() with 1."));
}

}  // namespace
}  // namespace kesta::test
