// Adding and confirming a playlist: four statements, each in the trace, none of which changes the result.
#include "api/records.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

constexpr char kAdd[] = "DB_PLAYERMUSIC_AddPlaylist";
constexpr char kEnter[] = "Enter DB_PLAYERMUSIC_AddPlaylist(IMEI: 351111, Name: Rock, Type: 5).";
constexpr char kExit[] = "Exit DB_PLAYERMUSIC_AddPlaylist() with 0.";

std::string Information(const std::string& what)
{
    return "Information in DB_PLAYERMUSIC_AddPlaylist(), " + what;
}
std::string Error(const std::string& what)
{
    return "Error in DB_PLAYERMUSIC_AddPlaylist(), " + what;
}

// What the statements for Playlist("Rock") are, to the letter.
const std::string kSynced = Information(
    "Exec SQL: UPDATE tPFolder SET [Flag] = 0, [Digest] = 'd1', [Count] = 7, [Size] = 70000000000, [TotalSize] = "
    "700000000000, [Sized] = 1 WHERE [PhoneID] = 1 AND [Path] = 'Rock' AND [Flag] = 3 AND [IdInPhone] NOTNULL AND "
    "[IdInPhone] <> '(null)';.");
const std::string kUnsynced = Information(
    "Exec SQL: UPDATE tPFolder SET [Flag] = 1, [Digest] = 'd1', [Count] = 7, [Size] = 70000000000, [TotalSize] = "
    "700000000000, [Sized] = 1 WHERE [PhoneID] = 1 AND [Path] = 'Rock' AND [Flag] = 3 AND ([IdInPhone] ISNULL OR "
    "[IdInPhone] = '(null)');.");
const std::string kInformation = Information(
    "Exec SQL: UPDATE tPFolder SET [Digest] = 'd1', [Count] = 7, [Size] = 70000000000, [TotalSize] = 700000000000, "
    "[Sized] = 1 WHERE [PhoneID] = 1 AND [Path] = 'Rock';.");
const std::string kInsert = Information(
    "Exec SQL: INSERT INTO tPFolder ([PhoneID], [Path], [Digest], [Type], [Flag], [Count], [Size], [TotalSize], "
    "[Sized], [AddTime]) VALUES (1, 'Rock', 'd1', 5, 1, 7, 70000000000, 700000000000, 1, '");

const std::string kSyncedDone = Information("Updated synced record.");
const std::string kUnsyncedDone = Information("Updated unsynced record.");
const std::string kInformationDone = Information("Updated information.");
const std::string kInserted = Information("New playlist inserted.");
const std::string kNotInserted = Information("Not new playlist or error.");

constexpr char kColumns[] =
    "[PhoneID], [Path], [Digest], [IdInPhone], [Type], [Flag], [Count], [Size], [TotalSize], [Selected], [Sized]";

class PlaylistAdd : public FamilyExports {
protected:
    /// A row of phone 1; `idInPhone` is SQL.
    void givenRow(int flag, const std::string& idInPhone = "NULL") const
    {
        sql.exec("INSERT INTO tPFolder VALUES (1, 'Rock', 'old', " + idInPhone + ", 9, " + std::to_string(flag) +
                 ", 1, 2, 3, 0, '2020-01-01 00:00:00', 0)");
    }
    [[nodiscard]] std::string rows() const
    {
        return sql.text(std::string("SELECT ") + kColumns + " FROM tPFolder ORDER BY [Path]");
    }

    const Playlist rock{"Rock"};
};

TEST_F(PlaylistAdd, AddPlaylist_NewPlaylist_IsInsertedAsNew)
{
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &rock), 0);
    EXPECT_EQ(rows(), "1|Rock|d1|<null>|5|1|7|70000000000|700000000000|1|1");
    EXPECT_TRUE(IsNow(sql.text("SELECT [AddTime] FROM tPFolder")));
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, kSynced, kSyncedDone, kUnsynced, kUnsyncedDone, kInformation,
                                          kInformationDone, StartsWith(kInsert), kInserted, kExit));
}

TEST_F(PlaylistAdd, AddPlaylist_InsertLine_EndsWithTheTimeThatIsStored)
{
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &rock), 0);
    EXPECT_EQ(trace.take()[7], kInsert + sql.text("SELECT [AddTime] FROM tPFolder") + "');.");
}

TEST_F(PlaylistAdd, AddPlaylist_SelectionFlagAndIdentifierOfTheRecord_AreNotTaken)
{
    Playlist playlist("Rock", "d1", "P:/elsewhere");
    playlist.RowId = 99;
    playlist.Flag = 4;
    playlist.Selected = 0;
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &playlist), 0);
    EXPECT_EQ(sql.text("SELECT ROWID, [Flag], [Selected], [IdInPhone] FROM tPFolder"), "1|1|1|<null>");
}

struct Known {
    int flag;
    const char* idInPhone;
    int flagAfter;
};

TEST_F(PlaylistAdd, AddPlaylist_KnownPlaylist_IsConfirmedByWhatThePhoneHas)
{
    for (const Known& known : {Known{3, "'P:/1'", 0}, Known{3, "''", 0}, Known{3, "NULL", 1}, Known{3, "'(null)'", 1},
                               Known{3, "'(NULL)'", 0}, Known{0, "'P:/1'", 0}, Known{0, "NULL", 0}, Known{1, "NULL", 1},
                               Known{1, "'P:/1'", 1}, Known{2, "'P:/1'", 2}, Known{4, "'P:/1'", 4}, Known{4, "NULL", 4},
                               Known{7, "NULL", 7}}) {
        sql.exec("DELETE FROM tPFolder");
        givenRow(known.flag, known.idInPhone);
        trace.take();
        EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &rock), 0);
        EXPECT_EQ(sql.text("SELECT [Flag], [Digest], [Count], [Size], [TotalSize], [Sized], [Type], [Selected], "
                           "[AddTime], [IdInPhone] IS " +
                           std::string(known.idInPhone) + " FROM tPFolder"),
                  std::to_string(known.flagAfter) + "|d1|7|70000000000|700000000000|1|9|0|2020-01-01 00:00:00|1")
            << known.flag << " " << known.idInPhone;
        EXPECT_THAT(trace.take(), ElementsAre(kEnter, kSynced, kSyncedDone, kUnsynced, kUnsyncedDone, kInformation,
                                              kInformationDone, StartsWith(kInsert), kNotInserted, kExit))
            << "a row that exists is no error";
    }
}

TEST_F(PlaylistAdd, AddPlaylist_OtherPlaylistsAndPhones_AreLeftAlone)
{
    givenRow(3);
    sql.exec(
        "INSERT INTO tPFolder SELECT 2, [Path], [Digest], [IdInPhone], [Type], [Flag], [Count], [Size], "
        "[TotalSize], [Selected], [AddTime], [Sized] FROM tPFolder");
    sql.exec(
        "INSERT INTO tPFolder SELECT 1, 'rock', [Digest], [IdInPhone], [Type], [Flag], [Count], [Size], "
        "[TotalSize], [Selected], [AddTime], [Sized] FROM tPFolder WHERE [PhoneID] = 2");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &rock), 0);
    EXPECT_EQ(sql.text("SELECT [PhoneID], [Path], [Flag], [Digest] FROM tPFolder ORDER BY 1, 2"),
              "1|Rock|1|d1\n1|rock|3|old\n2|Rock|3|old");
}

TEST_F(PlaylistAdd, AddPlaylist_NameWithApostropheAndEmoji_IsStoredAsItIs)
{
    const std::string name = "O'Brien''s " + AnsiCharacter();  // the trace reaches the test through the code page
    const Playlist playlist(name);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &playlist), 0);
    EXPECT_EQ(sql.text("SELECT [Path] FROM tPFolder"), name);
    const std::vector<std::string> lines = trace.take();
    EXPECT_EQ(lines[0], "Enter DB_PLAYERMUSIC_AddPlaylist(IMEI: 351111, Name: " + name + ", Type: 5).");
    EXPECT_THAT(lines[5], ::testing::HasSubstr("[Path] = 'O''Brien''''s " + AnsiCharacter() + "';."));
}

TEST_F(PlaylistAdd, AddPlaylist_DigestWithApostrophe_BreaksEveryStatementAndStillSucceeds)
{
    givenRow(3, "'P:/1'");
    const Playlist playlist("Rock", "d'1");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &playlist), 0);
    EXPECT_EQ(sql.text("SELECT [Flag], [Digest] FROM tPFolder"), "3|old");
    EXPECT_THAT(
        trace.take(),
        ElementsAre(kEnter, StartsWith(Information("Exec SQL: UPDATE tPFolder SET [Flag] = 0, [Digest] = 'd'1',")),
                    Information("Not synced record or error."), Error("Update synced record failed."),
                    StartsWith(Information("Exec SQL: UPDATE tPFolder SET [Flag] = 1, [Digest] = 'd'1',")),
                    Information("Not unsynced record or error."), Error("Update unsynced record failed."),
                    StartsWith(Information("Exec SQL: UPDATE tPFolder SET [Digest] = 'd'1',")),
                    Information("Update information error."), Error("Update information failed."),
                    StartsWith(Information("Exec SQL: INSERT INTO tPFolder")), kNotInserted,
                    Error("Insert new playlist failed."), kExit));
}

TEST_F(PlaylistAdd, AddPlaylist_DigestThatEndsItsText_RunsWhatItSays)
{
    const Playlist playlist("Rock", "', [Type] = 77, [Digest] = 'mine");
    givenRow(0);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &playlist), 0);
    EXPECT_EQ(sql.text("SELECT [Digest], [Type] FROM tPFolder"), "mine|77");
}

TEST_F(PlaylistAdd, AddPlaylist_RefusedUpdates_AreErrorsAlsoForAConstraint)
{
    givenRow(3);
    sql.exec("CREATE TRIGGER refuse BEFORE UPDATE ON tPFolder BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &rock), 0);
    EXPECT_EQ(sql.text("SELECT [Flag], [Digest] FROM tPFolder"), "3|old");
    EXPECT_THAT(
        trace.take(),
        ElementsAre(kEnter, kSynced, kSyncedDone, kUnsynced, Information("Not unsynced record or error."),
                    Error("Update unsynced record failed."), kInformation, Information("Update information error."),
                    Error("Update information failed."), StartsWith(kInsert), kNotInserted, kExit));
}

TEST_F(PlaylistAdd, AddPlaylist_RefusedSyncedUpdate_GoesOnWithTheRest)
{
    givenRow(3, "'P:/1'");
    sql.exec("CREATE TRIGGER refuse BEFORE UPDATE OF [Flag] ON tPFolder BEGIN SELECT RAISE(ABORT, 'no'); END");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &rock), 0);
    EXPECT_EQ(sql.text("SELECT [Flag], [Digest] FROM tPFolder"), "3|d1");
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, kSynced, Information("Not synced record or error."),
                                          Error("Update synced record failed."), kUnsynced, kUnsyncedDone, kInformation,
                                          kInformationDone, StartsWith(kInsert), kNotInserted, kExit));
}

TEST_F(PlaylistAdd, AddPlaylist_InsertFailsOtherwise_IsAnError)
{
    sql.exec("CREATE TRIGGER refuse BEFORE INSERT ON tPFolder BEGIN SELECT abs(-9223372036854775807 - 1); END");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &rock), 0);
    EXPECT_EQ(rows(), "");
    EXPECT_THAT(trace.take(),
                ElementsAre(kEnter, kSynced, kSyncedDone, kUnsynced, kUnsyncedDone, kInformation, kInformationDone,
                            StartsWith(kInsert), kNotInserted, Error("Insert new playlist failed."), kExit));
}

TEST_F(PlaylistAdd, AddPlaylist_NoTable_FailsFourTimesAndSucceeds)
{
    givenSchema("DROP TABLE tPFolder");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &rock), 0);
    EXPECT_THAT(
        trace.take(),
        ElementsAre(kEnter, kSynced, Information("Not synced record or error."), Error("Update synced record failed."),
                    kUnsynced, Information("Not unsynced record or error."), Error("Update unsynced record failed."),
                    kInformation, Information("Update information error."), Error("Update information failed."),
                    StartsWith(kInsert), kNotInserted, Error("Insert new playlist failed."), kExit));
}

TEST_F(PlaylistAdd, AddPlaylist_NameTooLongForAStatement_IsNotStoredCut)
{
    const Playlist playlist(std::string(41000, 'x'));
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &playlist), 0);
    EXPECT_EQ(rows(), "");
    std::vector<std::string> errors;
    for (const std::string& line : trace.take()) {
        if (line.starts_with("Error")) {
            errors.push_back(line);
        }
    }
    EXPECT_THAT(errors, ElementsAre(Error("Update synced record failed."), Error("Update unsynced record failed."),
                                    Error("Update information failed."), Error("Insert new playlist failed.")));
}

TEST_F(PlaylistAdd, AddPlaylist_NullTexts_AreAnEmptyNameAndTheWordNull)
{
    Playlist playlist("Rock");
    playlist.Name = nullptr;
    playlist.Digest = nullptr;
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &playlist), 0);
    EXPECT_EQ(sql.text("SELECT '<' || [Path] || '>', [Digest] FROM tPFolder"), "<>|(null)");
    EXPECT_EQ(trace.take().front(), "Enter DB_PLAYERMUSIC_AddPlaylist(IMEI: 351111, Name: (null), Type: 5).");
}

TEST_F(PlaylistAdd, AddPlaylist_LoneSurrogate_BecomesTheReplacementCharacter)
{
    Text name = Text::ofUnits({'a', 0xD83D, 'b', 0xDE00});
    Playlist playlist("");
    playlist.Name = name.get();
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &playlist), 0);
    EXPECT_EQ(sql.text("SELECT [Path] FROM tPFolder"),
              "a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD");
}

TEST_F(PlaylistAdd, AddPlaylist_NegativeFigures_AreStored)
{
    Playlist playlist("Rock");
    playlist.Type = -1;
    playlist.Count = INT32_MIN;
    playlist.Size = INT64_MIN;
    playlist.TotalSize = -2;
    playlist.Sized = -3;
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &playlist), 0);
    EXPECT_EQ(sql.text("SELECT [Type], [Count], [Size], [TotalSize], [Sized] FROM tPFolder"),
              "-1|-2147483648|-9223372036854775808|-2|-3");
}

TEST_F(PlaylistAdd, AddPlaylist_KnownPhone_RaisesTheMusicFlag)
{
    MainFolderList changes = {};
    EXPECT_EQ(lib.DB_LIB_MainFoldersChanged(&changes), 0);
    EXPECT_EQ(changes.Items[0].Changed, 0);
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &rock), 0);
    EXPECT_EQ(lib.DB_LIB_MainFoldersChanged(&changes), 0);
    EXPECT_EQ(ToString(changes), "1000|0|0|<null>|1\n1100|0|0|<null>|0\n1400|0|0|<null>|0\n1900|0|0|<null>|0");
}

TEST_F(PlaylistAdd, AddPlaylist_UnknownPhone_FailsWithoutStatementOrFlag)
{
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W("999"), &rock), 1);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_PLAYERMUSIC_AddPlaylist(IMEI: 999, Name: Rock, Type: 5).",
                                          "Exit DB_PLAYERMUSIC_AddPlaylist() with 1."));
    EXPECT_EQ(rows(), "");
    MainFolderList changes = {};
    EXPECT_EQ(lib.DB_LIB_MainFoldersChanged(&changes), 0);
    EXPECT_EQ(changes.Items[0].Changed, 0);
}

TEST_F(PlaylistAdd, AddPlaylist_NullRecord_TakesTheExceptionWay)
{
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), nullptr), 1);
    EXPECT_THAT(trace.take(), ElementsAre(std::string("An exception occured in ") + kAdd + "().",
                                          std::string("Exit ") + kAdd + "() with 1."));
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &rock), 0) << "the lock is free again";
}

TEST_F(ClosedDatabase, PlaylistAdd_FailsWithEntryAndExitLine)
{
    const Playlist rock("Rock");
    EXPECT_EQ(lib.DB_PLAYERMUSIC_AddPlaylist(W(kImei), &rock), 1);
    EXPECT_THAT(trace.take(), ElementsAre(kEnter, "Exit DB_PLAYERMUSIC_AddPlaylist() with 1."));
}

}  // namespace
}  // namespace kesta::test
