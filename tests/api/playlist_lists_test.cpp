// The list of a phone's playlists.
#include "api/records.h"

namespace kesta::test {
namespace {

using ::testing::AnyOf;
using ::testing::ElementsAre;

constexpr char kEnter[] = "Enter DB_PLAYERMUSIC_GetPlaylists(IMEI: 351111).";
constexpr char kExit[] = "Exit DB_PLAYERMUSIC_GetPlaylists() with 0.";

class PlaylistLists : public FamilyExports {
protected:
    /// Names in rising order, so that neither the order of the rows nor that of the key can surprise.
    void givenThree() const
    {
        sql.exec(
            "INSERT INTO tPFolder VALUES "
            "(1, 'A', 'd1', 'P:/1', 1, 0, 2, 30000000000, 40000000000, 1, '2024-01-01 00:00:00', 0), "
            "(1, 'B', NULL, NULL, -1, 3, 0, 0, 0, 0, '', 1), "
            "(1, 'C', '', '', NULL, NULL, NULL, NULL, NULL, 5, '', 6), "
            "(2, 'D', 'd', 'P:/4', 1, 1, 1, 1, 1, 1, '', 1)");
    }
    int32_t get(PlaylistList& list) { return lib.DB_PLAYERMUSIC_GetPlaylists(W(kImei), &list); }
};

TEST_F(PlaylistLists, GetPlaylists_SeveralLists_GivesEveryField)
{
    givenThree();
    PlaylistList list = {};
    EXPECT_EQ(get(list), 0);
    EXPECT_THAT(Records(list), ElementsAre("A|d1|P:/1|1|0|2|30000000000|40000000000|1|0",
                                           "B|<null>|<null>|-1|3|0|0|0|0|1", "C|<null>|<null>|0|0|0|0|0|5|6"));
    EXPECT_EQ(list.Items[0].RowId, 1);
    EXPECT_EQ(list.Items[1].RowId, 2);
    EXPECT_EQ(list.Items[2].RowId, 3);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, "Memory NEW.", "Memory NEW.", "Memory NEW.", "Memory NEW.",
                                          "Memory NEW.", "Memory NEW.", kExit))
        << "the array, three texts of the first, one of each of the others";
}

TEST_F(PlaylistLists, GetPlaylists_RowNumberBeyond31Bits_IsReadWhole)
{
    sql.exec("INSERT INTO tPFolder (ROWID, [PhoneID], [Path], [AddTime]) VALUES (5000000000, 1, 'A', '')");
    PlaylistList list = {};
    ASSERT_EQ(get(list), 0);
    ASSERT_EQ(list.Count, 1);
    EXPECT_EQ(list.Items[0].RowId, 5'000'000'000);
}

/// Nothing sorts them: they come as the statement yields them.
TEST_F(PlaylistLists, GetPlaylists_AddedInAnyOrder_ComeAsSqliteYieldsThem)
{
    sql.exec(
        "INSERT INTO tPFolder ([PhoneID], [Path], [AddTime]) VALUES (1, 'C', ''), (1, 'A', ''), (1, 'D', ''), (1, "
        "'B', '')");
    PlaylistList list = {};
    EXPECT_EQ(get(list), 0);
    std::string names;
    for (int32_t i = 0; i < list.Count; ++i) {
        names += (i > 0 ? "\n" : "") + Utf8(list.Items[i].Name);
    }
    EXPECT_EQ(names, sql.text("SELECT [Path] FROM (SELECT ROWID, [Path], [Digest] FROM tPFolder WHERE [PhoneID] = 1)"));
    EXPECT_EQ(list.Count, 4);
}

TEST_F(PlaylistLists, GetPlaylists_NoLists_HasAnArrayOfNoElements)
{
    PlaylistList list = {};
    EXPECT_EQ(get(list), 0);
    EXPECT_EQ(list.Count, 0);
    EXPECT_NE(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, "Memory NEW.", kExit));
    EXPECT_EQ(get(list), 0);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, "Memory DELETE.", "Memory NEW.", kExit));
}

TEST_F(PlaylistLists, GetPlaylists_RecordHoldingAList_IsEmptiedBehindTheEntryLine)
{
    givenThree();
    PlaylistList list = {};
    AliveMemory memory;
    ASSERT_EQ(get(list), 0);
    EXPECT_EQ(memory.after(trace.take(Addresses::kKept)), 6u);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetPlaylists(W("999"), &list), 1);
    EXPECT_EQ(list.Count, 0);
    EXPECT_EQ(list.Items, nullptr);
    const std::vector<std::string> lines = trace.take(Addresses::kKept);
    EXPECT_EQ(memory.after(lines), 0u);
    EXPECT_EQ(lines.front(), "Enter DB_PLAYERMUSIC_GetPlaylists(IMEI: 999).");
    EXPECT_EQ(lines.back(), "Exit DB_PLAYERMUSIC_GetPlaylists() with 1.");
}

TEST_F(PlaylistLists, GetPlaylists_CountSetToZeroByTheCaller_AllTextsAreFreedAllTheSame)
{
    givenThree();
    PlaylistList list = {};
    AliveMemory memory;
    ASSERT_EQ(get(list), 0);
    (void)memory.after(trace.take(Addresses::kKept));
    list.Count = 0;
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetPlaylists(W("999"), &list), 1);
    EXPECT_EQ(memory.after(trace.take(Addresses::kKept)), 0u);
}

TEST_F(PlaylistLists, GetPlaylists_CountFails_TracesPositionOneAndNoExit)
{
    givenSchema("DROP TABLE tPFolder");
    PlaylistList list = {};
    EXPECT_EQ(get(list), 1);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, "Error in DB_PLAYERMUSIC_GetPlaylists(), position 1."));
}

TEST_F(PlaylistLists, GetPlaylists_RowQueryFails_TracesPositionOneAndNoExit)
{
    givenThree();
    givenSchema("DROP VIEW vPFolder; ALTER TABLE tPFolder RENAME COLUMN [Digest] TO [Elsewhere]");
    PlaylistList list = {};
    EXPECT_EQ(get(list), 1);
    EXPECT_EQ(list.Count, 0);
    EXPECT_THAT(trace.take(),
                ElementsAre(kEnter, "Memory NEW.", "Error in DB_PLAYERMUSIC_GetPlaylists(), position 1."));
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetPlaylists(W("999"), &list), 1);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_PLAYERMUSIC_GetPlaylists(IMEI: 999).", "Memory DELETE.",
                                          "Exit DB_PLAYERMUSIC_GetPlaylists() with 1."));
}

TEST_F(PlaylistLists, GetPlaylists_ReadingARowFails_GivesTheStepsCodeAndTheRowsBefore)
{
    givenThree();
    givenSchema(
        "DROP VIEW vPFolder; ALTER TABLE tPFolder RENAME TO kept; CREATE VIEW tPFolder AS SELECT rowid AS ROWID, "
        "[PhoneID], [Path], CASE WHEN [Path] = 'B' THEN zeroblob(2000000000) ELSE [Digest] END AS [Digest], "
        "[IdInPhone], [Type], [Flag], [Count], [Size], [TotalSize], [Selected], [AddTime], [Sized] FROM kept");
    PlaylistList list = {};
    EXPECT_EQ(get(list), 18);
    EXPECT_THAT(Records(list), ElementsAre("A|d1|P:/1|1|0|2|30000000000|40000000000|1|0"));
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, "Memory NEW.", "Memory NEW.", "Memory NEW.", "Memory NEW.",
                                          "Exit DB_PLAYERMUSIC_GetPlaylists() with 18."));
}

/// Each query over this view yields another number of rows, so that sooner or later more come than were counted.
TEST_F(PlaylistLists, GetPlaylists_MoreRowsThanCounted_FillsWhatWasCountedAndGivesTheRowCode)
{
    givenSchema(
        "DROP VIEW vPFolder; DROP TABLE tPFolder; CREATE VIEW tPFolder AS WITH RECURSIVE some(n) AS (SELECT 1 UNION "
        "ALL SELECT n + 1 FROM some WHERE n < 20) SELECT n AS ROWID, 1 AS [PhoneID], 'list ' || n AS [Path], 'd' AS "
        "[Digest], 'P:/' AS [IdInPhone], 1 AS [Type], 2 AS [Flag], 3 AS [Count], 4 AS [Size], 5 AS [TotalSize], 6 AS "
        "[Selected], 7 AS [Sized] FROM some WHERE random() % 2 = 0");
    PlaylistList list = {};
    bool moreCame = false;
    for (int i = 0; i < 200 && !moreCame; ++i) {
        const int32_t result = get(list);
        ASSERT_THAT(result, AnyOf(0, 100));
        moreCame = result == 100 && list.Count > 0;
    }
    EXPECT_TRUE(moreCame);
    EXPECT_EQ(trace.take().back(), "Exit DB_PLAYERMUSIC_GetPlaylists() with 100.");
    for (int32_t i = 0; i < list.Count; ++i) {
        EXPECT_EQ(Utf8(list.Items[i].IdInPhone), "P:/");
    }
}

TEST_F(PlaylistLists, GetPlaylists_NullImei_IsAnUnknownPhone)
{
    PlaylistList list = {};
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetPlaylists(nullptr, &list), 1);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_PLAYERMUSIC_GetPlaylists(IMEI: (null)).",
                                          "Exit DB_PLAYERMUSIC_GetPlaylists() with 1."));
}

TEST_F(PlaylistLists, GetPlaylists_NullList_TakesTheExceptionWay)
{
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetPlaylists(W(kImei), nullptr), 1);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, "An exception occured in DB_PLAYERMUSIC_GetPlaylists().",
                                          "Exit DB_PLAYERMUSIC_GetPlaylists() with 1."));
}

/// The whole round of a sync.
TEST_F(PlaylistLists, Round_ClearAddReadConfirmDelete_LeavesWhatThePcHas)
{
    const Playlist kept("Kept", "k1", "P:/k");
    const Playlist fresh("New", "n1", "P:/n");
    const Playlist gone("Gone", "g1", "P:/g");
    for (const Playlist* playlist : {&kept, &gone}) {
        ASSERT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), playlist), 0);
        ASSERT_EQ(lib.DB_PLAYERMUSIC_SetAddedPlaylist(W(kImei), playlist), 0);
    }
    EXPECT_EQ(lib.DB_PLAYERMUSIC_ClearAll(W(kImei)), 0);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &kept), 0);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &fresh), 0);
    EXPECT_EQ(sql.text("SELECT [Path], [Flag] FROM tPFolder ORDER BY 1"), "Gone|3\nKept|0\nNew|1");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetAddedPlaylist(W(kImei), &fresh), 0);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetDeletedPlaylist(W(kImei), &gone), 0);
    EXPECT_EQ(sql.text("SELECT [Path], [Flag], [IdInPhone] FROM tPFolder ORDER BY 1"), "Kept|0|P:/k\nNew|0|P:/n");
}

TEST_F(ClosedDatabase, PlaylistLists_FailWithEntryAndExitLine)
{
    PlaylistList list = {};
    EXPECT_EQ(lib.DB_PLAYERMUSIC_GetPlaylists(W(kImei), &list), 1);
    EXPECT_EQ(list.Items, nullptr);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, "Exit DB_PLAYERMUSIC_GetPlaylists() with 1."));
}

}  // namespace
}  // namespace kesta::test
