// What becomes of the flag of a playlist: clearing, taking over by the phone, updating, deleting on either side.
#include "api/records.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

class PlaylistState : public FamilyExports {
protected:
    void givenRow(const std::string& name, int flag, const std::string& idInPhone = "NULL", int phoneId = 1,
                  int selected = 1) const
    {
        sql.exec("INSERT INTO tPFolder ([PhoneID], [Path], [IdInPhone], [Flag], [Selected], [AddTime]) VALUES (" +
                 std::to_string(phoneId) + ", " + Quoted(name) + ", " + idInPhone + ", " + std::to_string(flag) + ", " +
                 std::to_string(selected) + ", '2020-01-01 00:00:00')");
    }
    void givenFile(const std::string& path, const std::string& list, int phoneId = 1) const
    {
        sql.exec("INSERT INTO tPFile VALUES (" + std::to_string(phoneId) + ", " + Quoted(path) + ", " + Quoted(list) +
                 ", 'P:/', '')");
    }
    [[nodiscard]] std::string flags() const
    {
        return sql.text("SELECT [PhoneID], [Path], [Flag] FROM tPFolder ORDER BY 1, 2");
    }
    [[nodiscard]] std::string files() const { return sql.text("SELECT [Path] FROM tPFile ORDER BY 1"); }

    static std::string enterName(const std::string& operation, const std::string& name = "Rock")
    {
        return "Enter DB_PLAYERMUSIC_" + operation + "(IMEI: 351111, Name: " + name + ").";
    }

    const Playlist rock{"Rock"};
};

TEST_F(PlaylistState, ClearAll_SeveralPlaylists_AllBecomeUnconfirmedButThoseDeletedOnThePhone)
{
    for (const int flag : {0, 1, 2, 3, 4, 5}) {
        givenRow("list " + std::to_string(flag), flag);
    }
    givenRow("other", 0, "NULL", 2);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_ClearAll(W(kImei)), 0);
    EXPECT_EQ(flags(), "1|list 0|3\n1|list 1|3\n1|list 2|3\n1|list 3|3\n1|list 4|4\n1|list 5|3\n2|other|0");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_PLAYERMUSIC_ClearAll(IMEI: 351111).")) << "no exit line";
}

TEST_F(PlaylistState, ClearAll_FlagNull_StaysNull)
{
    givenRow("Rock", 0);
    sql.exec("UPDATE tPFolder SET [Flag] = NULL");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_ClearAll(W(kImei)), 0);
    EXPECT_EQ(flags(), "1|Rock|<null>");
}

TEST_F(PlaylistState, ClearAll_UnknownPhone_Fails)
{
    givenRow("Rock", 0);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_ClearAll(W("999")), 1);
    EXPECT_EQ(flags(), "1|Rock|0");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_PLAYERMUSIC_ClearAll(IMEI: 999)."));
}

TEST_F(PlaylistState, ClearAll_UpdateFails_TracesPositionTwo)
{
    givenSchema("DROP TABLE tPFolder");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_ClearAll(W(kImei)), 1);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_PLAYERMUSIC_ClearAll(IMEI: 351111).",
                                          "Error in DB_PLAYERMUSIC_ClearAll(), position 2."));
}

TEST_F(PlaylistState, IsListSelected_KnownList_IsAsStored)
{
    givenRow("Rock", 0, "NULL", 1, 0);
    givenRow("Pop", 0, "NULL", 1, 5);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_IsListSelected(W(kImei), W("Rock")), 0);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_IsListSelected(W(kImei), W("Pop")), 5);
    EXPECT_THAT(trace.take(), ElementsAre(enterName("IsListSelected"), enterName("IsListSelected", "Pop")));
}

TEST_F(PlaylistState, IsListSelected_UnknownListOrPhone_IsSelected)
{
    givenRow("Rock", 0, "NULL", 1, 0);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_IsListSelected(W(kImei), W("rock")), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_IsListSelected(W("999"), W("Rock")), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_IsListSelected(W(kImei), nullptr), 1);
}

TEST_F(PlaylistState, IsListSelected_QueryFails_TracesTheEnginesPositionOne)
{
    givenSchema("DROP VIEW vPFolder");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_IsListSelected(W(kImei), W("Rock")), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(enterName("IsListSelected"), "Error in DB_INTERNAL_IsFolderSelected(), position 1."));
}

TEST_F(PlaylistState, SetListSelected_KnownList_StoresWhatIsGiven)
{
    givenRow("O'Brien", 0);
    givenRow("Pop", 0);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetListSelected(W(kImei), W("O'Brien"), 0), 0);
    EXPECT_EQ(sql.text("SELECT [Path], [Selected] FROM tPFolder ORDER BY 1"), "O'Brien|0\nPop|1");
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_PLAYERMUSIC_SetListSelected(IMEI: 351111, Name: O'Brien, Selected: 0)."));
}

TEST_F(PlaylistState, SetListSelected_UnknownList_SucceedsAndUnknownPhoneFails)
{
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetListSelected(W(kImei), W("Rock"), 0), 0);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetListSelected(W("999"), W("Rock"), 0), 1);
}

TEST_F(PlaylistState, SetListSelected_UpdateFails_TracesTheEnginesPositionTwo)
{
    givenSchema("DROP TABLE tPFolder");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetListSelected(W(kImei), W("Rock"), 1), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_PLAYERMUSIC_SetListSelected(IMEI: 351111, Name: Rock, Selected: 1).",
                            "Error in DB_INTERNAL_SetFolderSelected(), position 2."));
}

TEST_F(PlaylistState, SetAddedPlaylist_KnownList_IsCurrentUnderThePhonesName)
{
    givenRow("Rock", 1);
    givenRow("Pop", 1);
    givenRow("Rock", 1, "NULL", 2);
    const std::string id = "P:/O'Brien " + AnsiCharacter();
    const Playlist playlist("Rock", "unread", id);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetAddedPlaylist(W(kImei), &playlist), 0);
    EXPECT_EQ(sql.text("SELECT [PhoneID], [Path], [Flag], [IdInPhone], [Digest], [Count] FROM tPFolder ORDER BY 1, 2"),
              "1|Pop|1|<null>|<null>|0\n1|Rock|0|" + id + "|<null>|0\n2|Rock|1|<null>|<null>|0");
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_PLAYERMUSIC_SetAddedPlaylist(IMEI: 351111, Name: Rock, IdInPhone: " + id + ").",
                            "Exit DB_PLAYERMUSIC_SetAddedPlaylist() with 0."));
}

TEST_F(PlaylistState, SetAddedPlaylist_NullIdentifier_IsStoredEmptyAndCountsAsOnThePhone)
{
    givenRow("Rock", 1);
    Playlist playlist("Rock");
    playlist.IdInPhone = nullptr;
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetAddedPlaylist(W(kImei), &playlist), 0);
    EXPECT_EQ(sql.text("SELECT [Flag], '<' || [IdInPhone] || '>' FROM tPFolder"), "0|<>");
    EXPECT_EQ(trace.take().front(),
              "Enter DB_PLAYERMUSIC_SetAddedPlaylist(IMEI: 351111, Name: Rock, IdInPhone: (null)).");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_ClearAll(W(kImei)), 0);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &rock), 0);
    EXPECT_EQ(flags(), "1|Rock|0");
}

TEST_F(PlaylistState, SetAddedPlaylist_UnknownList_Succeeds)
{
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetAddedPlaylist(W(kImei), &rock), 0);
    EXPECT_EQ(flags(), "");
}

TEST_F(PlaylistState, SetAddedPlaylist_UnknownPhone_FailsWithExitLine)
{
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetAddedPlaylist(W("999"), &rock), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_PLAYERMUSIC_SetAddedPlaylist(IMEI: 999, Name: Rock, IdInPhone: P:/1).",
                            "Exit DB_PLAYERMUSIC_SetAddedPlaylist() with 1."));
}

TEST_F(PlaylistState, SetAddedPlaylist_UpdateFails_TracesPositionTwo)
{
    givenRow("Rock", 1);
    sql.exec("CREATE TRIGGER refuse BEFORE UPDATE ON tPFolder BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetAddedPlaylist(W(kImei), &rock), 1);
    EXPECT_EQ(flags(), "1|Rock|1");
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_PLAYERMUSIC_SetAddedPlaylist(IMEI: 351111, Name: Rock, IdInPhone: P:/1).",
                            "Error in DB_PLAYERMUSIC_SetAddedPlaylist(), position 2.",
                            "Exit DB_PLAYERMUSIC_SetAddedPlaylist() with 1."));
}

TEST_F(PlaylistState, SetAddedPlaylist_LongestStatement_StillRunsAndOneByteMoreDoesNot)
{
    givenRow("Rock", 1);
    const std::string rest =
        "UPDATE tPFolder SET [Flag] = 0, [IdInPhone] = '' WHERE [PhoneID] = 1 AND [Path] = 'Rock';";
    const std::string longest(40960 - rest.size(), 'x');
    const Playlist fits("Rock", "", longest);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetAddedPlaylist(W(kImei), &fits), 0);
    EXPECT_EQ(sql.text("SELECT length([IdInPhone]) FROM tPFolder"), std::to_string(longest.size()));
    trace.take();
    const Playlist tooLong("Rock", "", longest + "y");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetAddedPlaylist(W(kImei), &tooLong), 1);
    EXPECT_EQ(trace.take().at(1), "Error in DB_PLAYERMUSIC_SetAddedPlaylist(), position 2.");
    EXPECT_EQ(sql.text("SELECT length([IdInPhone]) FROM tPFolder"), std::to_string(longest.size()));
}

TEST_F(PlaylistState, SetUpdatedPlaylist_AnyFlag_BecomesCurrent)
{
    for (const int flag : {1, 3, 4, 9}) {
        sql.exec("DELETE FROM tPFolder");
        givenRow("Rock", flag);
        givenRow("Pop", flag);
        EXPECT_EQ(lib.DB_PLAYERMUSIC_SetUpdatedPlaylist(W(kImei), &rock), 0);
        EXPECT_EQ(flags(), "1|Pop|" + std::to_string(flag) + "\n1|Rock|0");
        EXPECT_THAT(trace.take(), ElementsAre(enterName("SetUpdatedPlaylist")));
    }
}

TEST_F(PlaylistState, SetUpdatedPlaylist_UnknownList_SucceedsAndUnknownPhoneFails)
{
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetUpdatedPlaylist(W(kImei), &rock), 0);
    trace.take();
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetUpdatedPlaylist(W("999"), &rock), 1);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_PLAYERMUSIC_SetUpdatedPlaylist(IMEI: 999, Name: Rock)."));
}

TEST_F(PlaylistState, SetUpdatedPlaylist_UpdateFails_TracesTheRoutinesPositionTwo)
{
    givenSchema("DROP TABLE tPFolder");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetUpdatedPlaylist(W(kImei), &rock), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(enterName("SetUpdatedPlaylist"), "Error in DB_INTNOLOCK_SetFolderState(), position 2."));
}

TEST_F(PlaylistState, SetDeletedPlaylist_Unconfirmed_GoesWithItsFiles)
{
    givenRow("Rock", 3, "'P:/1'");
    givenRow("Pop", 3);
    givenFile("a.mp3", "Rock");
    givenFile("b.mp3", "Pop");
    givenFile("c.mp3", "Rock", 2);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetDeletedPlaylist(W(kImei), &rock), 0);
    EXPECT_EQ(flags(), "1|Pop|3");
    EXPECT_EQ(files(), "b.mp3\nc.mp3");
    EXPECT_THAT(trace.take(), ElementsAre(enterName("SetDeletedPlaylist")));
}

TEST_F(PlaylistState, SetDeletedPlaylist_Current_IsKeptAsDeletedWithItsFiles)
{
    givenRow("Rock", 0, "'P:/1'");
    givenFile("a.mp3", "Rock");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetDeletedPlaylist(W(kImei), &rock), 0);
    EXPECT_EQ(flags(), "1|Rock|4");
    EXPECT_EQ(files(), "a.mp3");
}

TEST_F(PlaylistState, SetDeletedPlaylist_AnyOtherFlag_FailsAndChangesNothing)
{
    for (const int flag : {1, 2, 4, -1}) {
        sql.exec("DELETE FROM tPFolder");
        givenRow("Rock", flag);
        EXPECT_EQ(lib.DB_PLAYERMUSIC_SetDeletedPlaylist(W(kImei), &rock), 1);
        EXPECT_EQ(flags(), "1|Rock|" + std::to_string(flag));
        EXPECT_THAT(trace.take(), ElementsAre(enterName("SetDeletedPlaylist"))) << "no error line";
    }
}

TEST_F(PlaylistState, SetDeletedPlaylist_UnknownList_SucceedsAndUnknownPhoneFails)
{
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetDeletedPlaylist(W(kImei), &rock), 0);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetDeletedPlaylist(W("999"), &rock), 1);
}

TEST_F(PlaylistState, SetDeletedPlaylist_DeletesFail_TracesPositionOneTwice)
{
    givenRow("Rock", 3);
    givenFile("a.mp3", "Rock");
    sql.exec(
        "CREATE TRIGGER refuse BEFORE DELETE ON tPFolder BEGIN SELECT RAISE(ABORT, 'no'); END;"
        "CREATE TRIGGER refuseToo BEFORE DELETE ON tPFile BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetDeletedPlaylist(W(kImei), &rock), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre(enterName("SetDeletedPlaylist"), "Error in DB_INTERNAL_SetDeletedFolder(), position 1.",
                            "Error in DB_INTERNAL_SetDeletedFolder(), position 1."));
}

TEST_F(PlaylistState, NullRecords_TakeTheExceptionWay)
{
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetAddedPlaylist(W(kImei), nullptr), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetUpdatedPlaylist(W(kImei), nullptr), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetDeletedPlaylist(W(kImei), nullptr), 1);
    EXPECT_THAT(trace.take(), ElementsAre("An exception occured in DB_PLAYERMUSIC_SetAddedPlaylist().",
                                          "Exit DB_PLAYERMUSIC_SetAddedPlaylist() with 1.",
                                          "An exception occured in DB_PLAYERMUSIC_SetUpdatedPlaylist().",
                                          "An exception occured in DB_PLAYERMUSIC_SetDeletedPlaylist()."));
}

TEST_F(ClosedDatabase, PlaylistState_EveryExport_AnswersOne)
{
    const Playlist rock("Rock");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_ClearAll(W(kImei)), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_IsListSelected(W(kImei), W("Rock")), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetListSelected(W(kImei), W("Rock"), 1), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetAddedPlaylist(W(kImei), &rock), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetDeletedPlaylist(W(kImei), &rock), 1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetUpdatedPlaylist(W(kImei), &rock), 1);
    EXPECT_THAT(trace.take(),
                ElementsAre("Enter DB_PLAYERMUSIC_ClearAll(IMEI: 351111).",
                            "Enter DB_PLAYERMUSIC_IsListSelected(IMEI: 351111, Name: Rock).",
                            "Enter DB_PLAYERMUSIC_SetListSelected(IMEI: 351111, Name: Rock, Selected: 1).",
                            "Enter DB_PLAYERMUSIC_SetAddedPlaylist(IMEI: 351111, Name: Rock, IdInPhone: P:/1).",
                            "Exit DB_PLAYERMUSIC_SetAddedPlaylist() with 1.",
                            "Enter DB_PLAYERMUSIC_SetDeletedPlaylist(IMEI: 351111, Name: Rock).",
                            "Enter DB_PLAYERMUSIC_SetUpdatedPlaylist(IMEI: 351111, Name: Rock)."));
}

}  // namespace
}  // namespace kesta::test
