// Playlists: the lists on the phone, the music that goes along, and the records of both.
#include "client_fixture.h"

namespace kesta::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class SyncPlaylistsTest : public ClientTest {
protected:
    void givenList(const std::string& file, const std::string& lines) { givenFile("lists/" + file, lines); }
    void givenMusic(std::initializer_list<const char*> names)
    {
        for (const char* name : names) {
            givenFile(std::string("Extra/") + name, std::string("music ") + name);
        }
    }
    // Three lists: one shares a member with another.
    void givenThreeLists()
    {
        givenMusic({"a.mp3", "b.mp3", "c.mp3", "d.mp3"});
        givenList("One.m3u8", "../Extra/a.mp3\n../Extra/b.mp3\n");
        givenList("Two.m3u8", "../Extra/b.mp3\n../Extra/c.mp3\n");
        givenList("Three.m3u8", "../Extra/d.mp3\n");
        ASSERT_EQ(syncLists().exitCode, 0);
    }
    Ended syncLists(std::vector<std::string> more = {})
    {
        more.insert(more.begin(), {"--playlists", pc("lists")});
        return sync(more);
    }
    [[nodiscard]] std::string list(const std::string& name) const { return phoneFiles().at("Playlists/" + name); }
    [[nodiscard]] std::string lists() const
    {
        return database().text("SELECT [Path], [IdInPhone], [Flag], [Count] FROM tPFolder ORDER BY 1");
    }
    [[nodiscard]] std::string files() const
    {
        return database().text("SELECT [BasePath], [PhonePath] FROM tPFile ORDER BY 2");
    }
    [[nodiscard]] std::string members(const std::string& list) const
    {
        return database().text("SELECT COUNT(*) FROM tPFilename WHERE [IMEI] = '351111' AND [Listname] = '" + list +
                               "'");
    }
    [[nodiscard]] fs::file_time_type timeOf(const std::string& place) const
    {
        return fs::last_write_time(Path(phone(place)));
    }
};

TEST_F(SyncPlaylistsTest, NewLists_GoToThePhoneWithTheirMusic)
{
    givenMusic({"a.mp3", "b.mp3"});
    givenList("One.m3u8",
              "#EXTM3U\n#EXTINF:12,Song A\n../Extra/a.mp3\nhttp://radio.example/live\n" + pc("Extra/b.mp3") + "\n");
    const Ended run = syncLists();
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, AllOf(HasSubstr("Summary: 2 copied"), HasSubstr("Playlists: 1 added, 0 updated, 0 removed")));
    EXPECT_EQ(list("One.m3u8"),
              "#EXTM3U\n#PLAYLIST:One\n#EXTINF:12,Song A\nMedia/Extra/a.mp3\nhttp://radio.example/live\n"
              "Media/Extra/b.mp3\n");
    EXPECT_EQ(phoneFiles().at("Playlists/Media/Extra/a.mp3"), "music a.mp3");
    EXPECT_EQ(lists(), "One|Playlists/One.m3u8|0|3");
    EXPECT_EQ(files(), "One|Playlists/Media/Extra/a.mp3\nOne|Playlists/Media/Extra/b.mp3");
    EXPECT_EQ(members("One"), "3");
    EXPECT_EQ(database().text("SELECT length([Digest]) FROM tPFolder"), "32");
    EXPECT_THAT(ownFiles(), IsEmpty());
}

TEST_F(SyncPlaylistsTest, SecondRun_ReadsAndWritesNothing)
{
    givenThreeLists();
    const auto listTime = timeOf("Playlists/One.m3u8");
    const auto musicTime = timeOf("Playlists/Media/Extra/a.mp3");
    const Ended run = syncLists();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, AllOf(HasSubstr("0 copied, 0 updated, 0 removed, 4 unchanged"),
                               HasSubstr("Playlists: 0 added, 0 updated, 0 removed, 3 unchanged")));
    EXPECT_EQ(timeOf("Playlists/One.m3u8"), listTime);
    EXPECT_EQ(timeOf("Playlists/Media/Extra/a.mp3"), musicTime);
}

TEST_F(SyncPlaylistsTest, MusicThatMediaSyncCarries_IsReferredTo)
{
    givenFile("Rock/a.mp3", "a");
    givenFile("Rock/b.mp3", "b");
    givenList("One.m3u8", "../Rock/a.mp3\n../Rock/b.mp3\n");
    EXPECT_EQ(sync({"--music", pc("Rock"), "--playlists", pc("lists")}).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a.mp3", "Music/Rock/b.mp3", "Playlists/One.m3u8"));
    EXPECT_THAT(list("One.m3u8"), HasSubstr("\n../Music/Rock/a.mp3\n../Music/Rock/b.mp3\n"));
    EXPECT_EQ(files(), "");
    givenList("Two.m3u8", "../Rock/b.mp3\n");  // carried by an earlier run
    EXPECT_EQ(syncLists().exitCode, 0);
    EXPECT_THAT(list("Two.m3u8"), HasSubstr("\n../Music/Rock/b.mp3\n"));
    EXPECT_EQ(files(), "");
}

TEST_F(SyncPlaylistsTest, MusicThatMediaSyncTakesOver_LiesOnThePhoneOnce)
{
    givenMusic({"a.mp3"});
    givenList("One.m3u8", "../Extra/a.mp3\n");
    EXPECT_EQ(syncLists().exitCode, 0);
    const Ended run = syncLists({"--music", pc("Extra")});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Extra/a.mp3", "Playlists/One.m3u8"));
    EXPECT_THAT(list("One.m3u8"), HasSubstr("\n../Music/Extra/a.mp3\n"));
    EXPECT_EQ(files(), "");
    EXPECT_FALSE(fs::exists(Path(phone("Playlists/Media"))));
}

TEST_F(SyncPlaylistsTest, ChangedList_IsWrittenAgain_AndLetsGoOfWhatNoListNeeds)
{
    givenThreeLists();
    givenMusic({"e.mp3"});
    changeFile("lists/One.m3u8", "../Extra/e.mp3\n");
    const Ended run = syncLists();
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, AllOf(HasSubstr("1 copied, 0 updated, 1 removed, 3 unchanged"),
                               HasSubstr("Playlists: 0 added, 1 updated, 0 removed, 2 unchanged")));
    EXPECT_THAT(list("One.m3u8"), HasSubstr("\nMedia/Extra/e.mp3\n"));
    EXPECT_EQ(members("One"), "1");
    EXPECT_FALSE(phoneFiles().contains("Playlists/Media/Extra/a.mp3"));
    EXPECT_TRUE(phoneFiles().contains("Playlists/Media/Extra/b.mp3")) << "the other list needs it";
}

TEST_F(SyncPlaylistsTest, ChangedMusic_IsCopiedAgain_TheListStays)
{
    givenThreeLists();
    changeFile("Extra/a.mp3", "another recording");
    const Ended run = syncLists();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, AllOf(HasSubstr("0 copied, 1 updated"), HasSubstr("3 unchanged\n")));
    EXPECT_EQ(phoneFiles().at("Playlists/Media/Extra/a.mp3"), "another recording");
}

TEST_F(SyncPlaylistsTest, ListGone_LeavesWithItsOwnMusicOnly)
{
    givenThreeLists();
    EXPECT_THAT(files(), HasSubstr("One|Playlists/Media/Extra/b.mp3"));
    removeFile("lists/One.m3u8");
    const Ended run = syncLists();
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, AllOf(HasSubstr("1 removed, 3 unchanged"), HasSubstr("0 updated, 1 removed, 2 unchanged")));
    EXPECT_THAT(phonePaths(), ElementsAre("Playlists/Media/Extra/b.mp3", "Playlists/Media/Extra/c.mp3",
                                          "Playlists/Media/Extra/d.mp3", "Playlists/Three.m3u8", "Playlists/Two.m3u8"));
    EXPECT_EQ(lists(), "Three|Playlists/Three.m3u8|0|1\nTwo|Playlists/Two.m3u8|0|2");
    EXPECT_EQ(files(),
              "Two|Playlists/Media/Extra/b.mp3\nTwo|Playlists/Media/Extra/c.mp3\nThree|Playlists/Media/Extra/d.mp3");
    EXPECT_EQ(members("One"), "0");
    EXPECT_THAT(syncLists().out, HasSubstr("0 copied, 0 updated, 0 removed, 3 unchanged"));
}

TEST_F(SyncPlaylistsTest, MoreThanHalfGone_IsDeferredUntilForced)
{
    givenThreeLists();
    const auto before = phoneFiles();
    removeFile("lists/One.m3u8");
    removeFile("lists/Two.m3u8");
    const Ended held = syncLists();
    EXPECT_EQ(held.exitCode, 4);
    EXPECT_THAT(held.out, HasSubstr("Deferred: 2 playlists to be removed"));
    EXPECT_EQ(phoneFiles(), before);
    EXPECT_EQ(syncLists({"--force"}).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Playlists/Media/Extra/d.mp3", "Playlists/Three.m3u8"));
    EXPECT_EQ(lists(), "Three|Playlists/Three.m3u8|0|1");
}

TEST_F(SyncPlaylistsTest, ListsThatLoseAllEntries_CountAsGone)
{
    givenMusic({"a.mp3"});
    givenList("One.m3u8", "../Extra/a.mp3\n");
    ASSERT_EQ(syncLists().exitCode, 0);
    const auto before = phoneFiles();
    changeFile("lists/One.m3u8", "");
    EXPECT_EQ(syncLists().exitCode, 4);
    EXPECT_EQ(phoneFiles(), before);
    EXPECT_EQ(syncLists({"--force"}).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Playlists/One.m3u8"));
}

TEST_F(SyncPlaylistsTest, MissingFolder_IsNoEmptyOne)
{
    givenThreeLists();
    const auto before = phoneFiles();
    const std::string rows = lists();
    fs::rename(Path(pc("lists")), Path(pc("elsewhere")));
    const Ended run = syncLists({"--force"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("the folder cannot be read"));
    EXPECT_EQ(phoneFiles(), before);
    EXPECT_EQ(lists(), rows);
}

TEST_F(SyncPlaylistsTest, ListThatIsNotUnderstood_LosesNothing)
{
    givenMusic({"a.mp3", "b.mp3"});
    givenList("One.m3u8", "../Extra/a.mp3\n../Extra/b.mp3\n");
    ASSERT_EQ(syncLists().exitCode, 0);
    changeFile("lists/One.m3u8", "../Extra/a.mp3\n./\n");
    for (int run = 0; run < 2; ++run) {
        const Ended result = syncLists({"--force"});
        EXPECT_EQ(result.exitCode, 3);
        EXPECT_THAT(result.out, HasSubstr("line 2: not the name of a file"));
        EXPECT_TRUE(phoneFiles().contains("Playlists/Media/Extra/b.mp3")) << "in run " << run;
        EXPECT_EQ(members("One"), "2");
    }
    changeFile("lists/One.m3u8", "../Extra/a.mp3\n");
    EXPECT_EQ(syncLists().exitCode, 0);
    EXPECT_FALSE(phoneFiles().contains("Playlists/Media/Extra/b.mp3"));
}

TEST_F(SyncPlaylistsTest, MissingMember_IsReported_AndComesLater)
{
    givenMusic({"a.mp3"});
    givenList("One.m3u8", "../Extra/a.mp3\n../Extra/later.mp3\n");
    const Ended run = syncLists();
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, AllOf(HasSubstr("One.m3u8: line 2: "), HasSubstr("later.mp3")));
    EXPECT_THAT(list("One.m3u8"), Not(HasSubstr("later")));
    EXPECT_THAT(syncLists().out, HasSubstr("1 unchanged\n")) << "there is nothing new to write";
    givenMusic({"later.mp3"});
    EXPECT_EQ(syncLists().exitCode, 0);
    EXPECT_THAT(list("One.m3u8"), HasSubstr("Media/Extra/later.mp3"));
}

TEST_F(SyncPlaylistsTest, MemberThatGoesMissing_StaysOnThePhoneWhileItsListNamesIt)
{
    givenThreeLists();
    removeFile("Extra/a.mp3");
    const Ended run = syncLists();
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_TRUE(phoneFiles().contains("Playlists/Media/Extra/a.mp3"));
    EXPECT_THAT(list("One.m3u8"), HasSubstr("Media/Extra/a.mp3"));
}

TEST_F(SyncPlaylistsTest, ListThatIsNotSelected_IsSkipped)
{
    givenThreeLists();
    const auto before = phoneFiles();
    database().exec("UPDATE tPFolder SET [Selected] = 0 WHERE [Path] <> 'Three'");
    changeFile("lists/One.m3u8", "../Extra/d.mp3\n");
    removeFile("lists/Two.m3u8");
    const Ended run = syncLists();
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, AllOf(HasSubstr("the playlist One is not selected"), HasSubstr("the playlist Two is not")));
    EXPECT_EQ(phoneFiles(), before);
    database().exec("UPDATE tPFolder SET [Selected] = 1");
    EXPECT_EQ(syncLists().exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Playlists/Media/Extra/d.mp3", "Playlists/One.m3u8", "Playlists/Three.m3u8"));
}

TEST_F(SyncPlaylistsTest, ListDeletedOnThePhone_DoesNotComeBack)
{
    givenThreeLists();
    database().exec("UPDATE tPFolder SET [Flag] = 4 WHERE [Path] = 'One'");
    ASSERT_TRUE(fs::remove(Path(phone("Playlists/One.m3u8"))));
    const Ended run = syncLists();
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, HasSubstr("the playlist One was deleted on the phone: skipped"));
    EXPECT_FALSE(phoneFiles().contains("Playlists/One.m3u8"));
    EXPECT_FALSE(phoneFiles().contains("Playlists/Media/Extra/a.mp3"));
    removeFile("lists/One.m3u8");
    EXPECT_EQ(syncLists().exitCode, 0);
    EXPECT_EQ(lists(), "Three|Playlists/Three.m3u8|0|1\nTwo|Playlists/Two.m3u8|0|2");
    EXPECT_TRUE(phoneFiles().contains("Playlists/Media/Extra/b.mp3"));
    EXPECT_THAT(files(), HasSubstr("Two|Playlists/Media/Extra/b.mp3"));
}

TEST_F(SyncPlaylistsTest, OldEncodingAndCommonName)
{
    givenFile("Extra/Stra\u00dfe.mp3", "s");
    givenList("One.m3u",
              "../Extra/Stra\xDF"
              "e.mp3\n");
    givenList("Both.m3u",
              "../Extra/Stra\xDF"
              "e.mp3\n");
    givenList("Both.m3u8", "../Extra/Stra\u00dfe.mp3\n../Extra/Stra\u00dfe.mp3\n");
    const Ended run = syncLists();
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(list("One.m3u8"), HasSubstr("Media/Extra/Stra\u00dfe.mp3"));
    EXPECT_EQ(lists(),
              "Both|Playlists/Both.m3u8|0|2\nBoth.m3u|Playlists/Both.m3u.m3u8|0|1\nOne|Playlists/One.m3u8|0|1");
}

TEST_F(SyncPlaylistsTest, FilesOfTheUserOnThePhone_AreNeverTouched)
{
    givenMusic({"a.mp3"});
    givenList("One.m3u8", "../Extra/a.mp3\n");
    fs::create_directories(Path(phone("Playlists/Media/Extra")));
    std::ofstream(Path(phone("Playlists/One.m3u8"))) << "mine";
    std::ofstream(Path(phone("Playlists/Media/Extra/a.mp3"))) << "mine, too";
    EXPECT_EQ(syncLists().exitCode, 0);
    EXPECT_EQ(list("One.m3u8"), "mine");
    EXPECT_EQ(phoneFiles().at("Playlists/Media/Extra/a.mp3"), "mine, too");
    EXPECT_THAT(phonePaths(), testing::SizeIs(4));
    removeFile("lists/One.m3u8");
    EXPECT_EQ(syncLists({"--force"}).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Playlists/Media/Extra/a.mp3", "Playlists/One.m3u8"));
}

TEST_F(SyncPlaylistsTest, RecordsFromElsewhere_AreNotFollowed)
{
    givenThreeLists();
    givenFile("precious", "keep me");
    database().exec("UPDATE tPFolder SET [IdInPhone] = '../pc/precious' WHERE [Path] = 'One'");
    database().exec("UPDATE tPFile SET [PhonePath] = '../pc/precious' WHERE [Path] LIKE '%a.mp3'");
    removeFile("lists/One.m3u8");
    EXPECT_EQ(syncLists().exitCode, 0);
    EXPECT_TRUE(fs::exists(Path(pc("precious"))));
    EXPECT_EQ(lists(), "Three|Playlists/Three.m3u8|0|1\nTwo|Playlists/Two.m3u8|0|2");
}

TEST_F(SyncPlaylistsTest, ListMissingOrChangedOnThePhone_IsWrittenAgain)
{
    givenThreeLists();
    const auto before = phoneFiles();
    ASSERT_TRUE(fs::remove(Path(phone("Playlists/One.m3u8"))));
    std::ofstream(Path(phone("Playlists/Two.m3u8"))) << "cut off";
    ASSERT_TRUE(fs::remove(Path(phone("Playlists/Media/Extra/d.mp3"))));
    const Ended run = syncLists();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, AllOf(HasSubstr("0 copied, 1 updated"), HasSubstr("Playlists: 0 added, 2 updated")));
    auto after = phoneFiles();
    EXPECT_EQ(after["Playlists/Two (changed on the phone).m3u8"], "cut off");
    after.erase("Playlists/Two (changed on the phone).m3u8");
    EXPECT_EQ(after, before);
}

TEST_F(SyncPlaylistsTest, LostDatabase_IsFilledFromWhatIsThere)
{
    givenThreeLists();
    const auto before = phoneFiles();
    database().exec("DELETE FROM tPFile; DELETE FROM tPFolder; DELETE FROM tPFilename; DELETE FROM tPhone");
    const Ended run = syncLists();
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, AllOf(HasSubstr("0 copied, 0 updated, 0 removed, 0 unchanged, 0 failed, 4 recorded as found"),
                               HasSubstr("Playlists: 3 added")));
    EXPECT_EQ(phoneFiles(), before);
}

TEST_F(SyncPlaylistsTest, RunCutShortAfterTheListsWereConfirmed_IsCaughtUpWith)
{
    givenThreeLists();
    changeFile("lists/Three.m3u8", "../Extra/a.mp3\n");
    database().exec("UPDATE tPFolder SET [Flag] = 3");
    EXPECT_THAT(syncLists().out, HasSubstr("Playlists: 0 added, 1 updated, 0 removed, 2 unchanged"));
    EXPECT_THAT(list("Three.m3u8"), HasSubstr("Media/Extra/a.mp3"));
}

TEST_F(SyncPlaylistsTest, DryRun_PreviewsAndChangesNothing)
{
    givenThreeLists();
    removeFile("lists/One.m3u8");
    givenMusic({"e.mp3"});
    givenList("Four.m3u8", "../Extra/e.mp3\n");
    changeFile("lists/Three.m3u8", "../Extra/c.mp3\n");
    const auto before = phoneFiles();
    const std::string rows = lists() + files();
    const Ended dry = syncLists({"--dry-run"});
    EXPECT_EQ(dry.exitCode, 0) << dry.out;
    EXPECT_THAT(dry.out,
                AllOf(HasSubstr("remove    Playlists/Media/Extra/a.mp3"), HasSubstr("add       Playlists/Four"),
                      HasSubstr("update    Playlists/Three.m3u8"), HasSubstr("remove    Playlists/One.m3u8")));
    EXPECT_EQ(phoneFiles(), before);
    EXPECT_EQ(lists() + files(), rows);
    const Ended run = syncLists();
    const auto counts = [](const std::string& out) { return out.substr(out.find("Playlists: ")); };
    EXPECT_EQ(counts(run.out), counts(dry.out));
    EXPECT_THAT(run.out, HasSubstr("1 copied, 0 updated, 2 removed"));
    EXPECT_THAT(dry.out, HasSubstr("1 copied, 0 updated, 2 removed"));
}

TEST_F(SyncPlaylistsTest, DryRunOfANewPhone_SeesWhatMediaSyncWouldCarry)
{
    givenFile("Rock/a.mp3", "a");
    givenList("One.m3u8", "../Rock/a.mp3\n");
    const Ended run = sync({"--music", pc("Rock"), "--playlists", pc("lists"), "--dry-run"});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, AllOf(HasSubstr("1 copied"), HasSubstr("Playlists: 1 added")));
    EXPECT_THAT(phonePaths(), IsEmpty());
}

TEST_F(SyncPlaylistsTest, EntriesAsInUrlsOrPaddedWithBlanks_AreResolved)
{
    givenMusic({"my song.mp3", "100%25.mp3", "caf\u00e9.mp3", "plain.mp3"});
    givenList("Odd.m3u8",
              "../Extra/my%20song.mp3\n"
              "../Extra/100%25.mp3\n"
              "  ../Extra/caf%C3%A9.mp3  \n"
              " ../Extra/plain.mp3\t\n");
    const Ended run = syncLists();
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(list("Odd.m3u8"),
                AllOf(HasSubstr("Media/Extra/my song.mp3\n"), HasSubstr("Media/Extra/100%25.mp3\n"),
                      HasSubstr("Media/Extra/caf\u00e9.mp3\n"), HasSubstr("Media/Extra/plain.mp3\n")));
    EXPECT_EQ(members("Odd"), "4");
    EXPECT_THAT(syncLists().out, HasSubstr("1 unchanged"));
    // What a list names stays on the phone while it is missing on the PC.
    removeFile("Extra/my song.mp3");
    EXPECT_EQ(syncLists().exitCode, 3);
    EXPECT_TRUE(phoneFiles().contains("Playlists/Media/Extra/my song.mp3"));
}

TEST_F(SyncPlaylistsTest, OtherFormats_BecomeListsOnThePhone)
{
    givenFile("Extra/a.mp3", "a");
    givenFile("lists/Pls.pls", "[playlist]\nFile1=../Extra/a.mp3\nTitle1=Song\nLength1=5\n");
    givenFile("lists/Xspf.xspf",
              "<playlist><trackList><track><location>../Extra/a.mp3</location></track></trackList></playlist>");
    givenFile("lists/Asx.asx", "<asx><entry><ref href=\"..\\Extra\\a.mp3\"/></entry></asx>");
    givenFile("lists/Other.wpl", "<smil/>");
    const Ended run = sync({"--playlists", pc("lists")});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_EQ(phoneFiles().at("Playlists/Pls.m3u8"), "#EXTM3U\n#PLAYLIST:Pls\n#EXTINF:5,Song\nMedia/Extra/a.mp3\n");
    EXPECT_EQ(phoneFiles().at("Playlists/Xspf.m3u8"), "#EXTM3U\n#PLAYLIST:Xspf\nMedia/Extra/a.mp3\n");
    EXPECT_EQ(phoneFiles().at("Playlists/Asx.m3u8"), "#EXTM3U\n#PLAYLIST:Asx\nMedia/Extra/a.mp3\n");
    EXPECT_THAT(run.out, HasSubstr("Left out of Playlists: 1 in other formats"));
}

}  // namespace
}  // namespace kesta::test
