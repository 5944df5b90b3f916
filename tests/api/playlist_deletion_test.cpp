// A playlist deleted on the PC: what becomes of it depends on its flag and on whether the phone has it.
#include "api/records.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

constexpr char kEnter[] = "Enter DB_PLAYERMUSIC_DeleteList(szName: Rock).";
constexpr char kError[] = "Error in DB_PLAYERMUSIC_DeleteList(), position 1.";
constexpr char kDone[] = "Exit DB_PLAYERMUSIC_DeleteList() with 0.";
constexpr char kFailed[] = "Exit DB_PLAYERMUSIC_DeleteList() with 1.";

class PlaylistDeletion : public FamilyExports {
protected:
    /// "Rock" with the flag and two files; "Pop" with the same flag and one file; another phone's "Rock" and its file.
    void given(int flag, const std::string& idInPhone = "NULL") const
    {
        sql.exec("DELETE FROM tPFolder; DELETE FROM tPFile");
        for (const char* list : {"1, 'Rock'", "1, 'Pop'", "2, 'Rock'"}) {
            sql.exec(std::string("INSERT INTO tPFolder ([PhoneID], [Path], [IdInPhone], [Flag], [AddTime]) VALUES (") +
                     list + ", " + idInPhone + ", " + std::to_string(flag) + ", '')");
        }
        sql.exec(
            "INSERT INTO tPFile VALUES (1, 'a.mp3', 'Rock', 'P:/', ''), (1, 'b.mp3', 'Rock', 'P:/', ''), (1, "
            "'c.mp3', 'Pop', 'P:/', ''), (2, 'd.mp3', 'Rock', 'P:/', '')");
    }
    /// The flag of "Rock", and its files; whatever is not its own must be untouched.
    [[nodiscard]] std::string rock() const
    {
        EXPECT_EQ(sql.text("SELECT count(*) FROM tPFolder WHERE [PhoneID] = 2 OR [Path] = 'Pop'"), "2");
        EXPECT_EQ(sql.text("SELECT count(DISTINCT [Flag]) FROM tPFolder WHERE [PhoneID] = 2 OR [Path] = 'Pop'"), "1");
        EXPECT_EQ(sql.text("SELECT [Path] FROM tPFile WHERE [PhoneID] = 2 OR [BasePath] = 'Pop'"), "c.mp3\nd.mp3");
        return sql.text(
            "SELECT coalesce((SELECT [Flag] FROM tPFolder WHERE [PhoneID] = 1 AND [Path] = 'Rock'), 'gone'), (SELECT "
            "count(*) FROM tPFile WHERE [PhoneID] = 1 AND [BasePath] = 'Rock')");
    }
    int32_t deleteRock() { return lib.DB_PLAYERMUSIC_DeleteList(W(kImei), W("Rock")); }
};

struct Case {
    int flag;
    const char* idInPhone;
    int32_t result;
    const char* after;
};

TEST_F(PlaylistDeletion, DeleteList_EveryFlag_ActsByFlagAndIdentifier)
{
    const Case cases[] = {
        {1, "NULL", 0, "gone|0"},                               // never on the phone
        {1, "'P:/1'", 0, "gone|0"},                             // the flag alone decides
        {4, "'P:/1'", 0, "gone|0"},                             // deleted on the phone
        {4, "NULL", 0, "gone|0"},                               //
        {0, "'P:/1'", 0, "3|2"},                                // on the phone: waits for its removal
        {0, "NULL", 0, "3|2"},                                  //
        {2, "'P:/1'", 0, "3|2"},                                //
        {3, "NULL", 0, "gone|0"},                               // unconfirmed and not on the phone
        {3, "'(null)'", 0, "gone|0"}, {3, "'P:/1'", 0, "3|2"},  // unconfirmed and on the phone
        {3, "''", 0, "3|2"},                                    //
        {5, "NULL", 1, "5|2"},                                  // no such state
        {-1, "NULL", 1, "-1|2"},
    };
    for (const Case& one : cases) {
        given(one.flag, one.idInPhone);
        EXPECT_EQ(deleteRock(), one.result) << one.flag << " " << one.idInPhone;
        EXPECT_EQ(rock(), one.after) << one.flag << " " << one.idInPhone;
        EXPECT_THAT(trace.take(), ElementsAre(kEnter, one.result == 0 ? kDone : kFailed));
    }
}

TEST_F(PlaylistDeletion, DeleteList_UnknownName_Succeeds)
{
    given(1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_DeleteList(W(kImei), W("rock")), 0);
    EXPECT_EQ(rock(), "1|2");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_PLAYERMUSIC_DeleteList(szName: rock).", kDone));
}

TEST_F(PlaylistDeletion, DeleteList_FilesOfAnUnknownName_Stay)
{
    sql.exec("INSERT INTO tPFile VALUES (1, 'a.mp3', 'Rock', 'P:/', '')");
    EXPECT_EQ(deleteRock(), 0);
    EXPECT_EQ(sql.text("SELECT [Path] FROM tPFile"), "a.mp3");
}

TEST_F(PlaylistDeletion, DeleteList_UnconfirmedOnThePhone_KeepsItsFilesThoughOthersChangedBefore)
{
    given(3, "'P:/1'");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_SetListSelected(W(kImei), W("Rock"), 0), 0);
    trace.take();
    EXPECT_EQ(deleteRock(), 0);
    EXPECT_EQ(rock(), "3|2");
}

TEST_F(PlaylistDeletion, DeleteList_NameWithApostrophe_IsFoundEverywhere)
{
    for (const int flag : {1, 0, 3}) {
        sql.exec(
            "DELETE FROM tPFolder; DELETE FROM tPFile; INSERT INTO tPFolder ([PhoneID], [Path], [Flag], "
            "[AddTime]) VALUES (1, 'O''Brien', " +
            std::to_string(flag) + ", ''); INSERT INTO tPFile VALUES (1, 'a.mp3', 'O''Brien', 'P:/', '')");
        EXPECT_EQ(lib.DB_PLAYERMUSIC_DeleteList(W(kImei), W("O'Brien")), 0);
        EXPECT_EQ(sql.text("SELECT [Flag] FROM tPFolder"), flag == 0 ? "3" : "");
        EXPECT_EQ(sql.text("SELECT [Path] FROM tPFile"), flag == 0 ? "a.mp3" : "");
    }
}

TEST_F(PlaylistDeletion, DeleteList_RowCannotBeDeleted_TracesItAndDeletesTheFiles)
{
    for (const int flag : {1, 4}) {
        given(flag);
        sql.exec("CREATE TRIGGER refuse BEFORE DELETE ON tPFolder BEGIN SELECT RAISE(ABORT, 'no'); END");
        EXPECT_EQ(deleteRock(), 0);
        EXPECT_EQ(rock(), std::to_string(flag) + "|0");
        EXPECT_THAT(trace.take(), ElementsAre(kEnter, kError, kDone));
        sql.exec("DROP TRIGGER refuse");
    }
}

TEST_F(PlaylistDeletion, DeleteList_FilesCannotBeDeleted_Fails)
{
    for (const int flag : {1, 3, 4}) {
        given(flag);
        sql.exec("CREATE TRIGGER refuse BEFORE DELETE ON tPFile BEGIN SELECT RAISE(ABORT, 'no'); END");
        EXPECT_EQ(deleteRock(), 1);
        EXPECT_EQ(rock(), "gone|2");
        EXPECT_THAT(trace.take(), ElementsAre(kEnter, kError, kFailed));
        sql.exec("DROP TRIGGER refuse");
    }
}

TEST_F(PlaylistDeletion, DeleteList_NeitherCanBeDeleted_TracesBoth)
{
    given(1);
    sql.exec(
        "CREATE TRIGGER refuse BEFORE DELETE ON tPFile BEGIN SELECT RAISE(ABORT, 'no'); END;"
        "CREATE TRIGGER refuseToo BEFORE DELETE ON tPFolder BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(deleteRock(), 1);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, kError, kError, kFailed));
}

TEST_F(PlaylistDeletion, DeleteList_UnconfirmedRowCannotBeDeleted_FailsAndKeepsTheFiles)
{
    given(3);
    sql.exec("CREATE TRIGGER refuse BEFORE DELETE ON tPFolder BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(deleteRock(), 1);
    EXPECT_EQ(rock(), "3|2");
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, kError, kFailed));
}

TEST_F(PlaylistDeletion, DeleteList_UnconfirmedRowGoesAndItsStatementFails_DeletesTheFilesAndFails)
{
    given(3);
    sql.exec("CREATE TRIGGER refuse AFTER DELETE ON tPFolder BEGIN SELECT RAISE(FAIL, 'no'); END");
    EXPECT_EQ(deleteRock(), 1);
    EXPECT_EQ(rock(), "gone|0");
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, kError, kFailed));
}

TEST_F(PlaylistDeletion, DeleteList_FlagCannotBeSet_FailsUnderTheRoutinesName)
{
    for (const int flag : {0, 2}) {
        given(flag);
        sql.exec("CREATE TRIGGER refuse BEFORE UPDATE ON tPFolder BEGIN SELECT RAISE(ABORT, 'no'); END");
        EXPECT_EQ(deleteRock(), 1);
        EXPECT_EQ(rock(), std::to_string(flag) + "|2");
        EXPECT_THAT(trace.take(), ElementsAre(kEnter, "Error in DB_INTNOLOCK_SetFolderState(), position 2.", kFailed));
        sql.exec("DROP TRIGGER refuse");
    }
}

TEST_F(PlaylistDeletion, DeleteList_FlagCannotBeRead_IsTakenForZero)
{
    givenSchema("DROP TABLE tPFolder");
    EXPECT_EQ(deleteRock(), 1);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, "Error in DB_INTNOLOCK_SetFolderState(), position 2.", kFailed));
}

TEST_F(PlaylistDeletion, DeleteList_UnknownPhone_FailsWithoutErrorLine)
{
    given(1);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_DeleteList(W("999"), W("Rock")), 1);
    EXPECT_EQ(rock(), "1|2");
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, kFailed));
}

TEST_F(PlaylistDeletion, DeleteList_NullName_IsTheEmptyName)
{
    sql.exec("INSERT INTO tPFolder ([PhoneID], [Path], [Flag], [AddTime]) VALUES (1, '', 1, '')");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_DeleteList(W(kImei), nullptr), 0);
    EXPECT_EQ(sql.text("SELECT count(*) FROM tPFolder"), "0");
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_PLAYERMUSIC_DeleteList(szName: (null)).", kDone));
}

TEST_F(ClosedDatabase, PlaylistDeletion_FailsWithEntryAndExitLine)
{
    EXPECT_EQ(lib.DB_PLAYERMUSIC_DeleteList(W(kImei), W("Rock")), 1);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, kFailed));
}

}  // namespace
}  // namespace kesta::test
