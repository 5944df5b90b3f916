// What must never cost anybody a file: accidents on the PC, in the phone's folder and on the command line.
#include "client_fixture.h"
#include "pim_samples.h"

namespace kesta::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class SyncSafetyTest : public ClientTest {
protected:
    /// Defers what is gone in favour of as much that is new, now and in the next run, until it is forced.
    void expectDeferredUntilForced(const std::vector<std::string>& arguments, const std::string& what)
    {
        for (int run = 0; run < 3; ++run) {
            const Ended held = sync(arguments);
            EXPECT_EQ(held.exitCode, 4) << run << held.out;
            EXPECT_THAT(held.out, HasSubstr("Deferred: " + what)) << run;
        }
        std::vector<std::string> forced = arguments;
        forced.emplace_back("--force");
        EXPECT_EQ(sync(forced).exitCode, 0);
        EXPECT_EQ(sync(arguments).exitCode, 0);
    }

    static std::string html(const std::vector<std::string>& urls)
    {
        std::string text = "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<DL><p>\n";
        for (const std::string& url : urls) {
            text += "<DT><A HREF=\"" + url + "\">" + url + "</A>\n";
        }
        return text + "</DL><p>\n";
    }
};

TEST_F(SyncSafetyTest, Files_StayDeferredWhenNewOnesCome)
{
    for (const char* name : {"a", "b", "c", "d"}) {
        givenFile(std::string("Rock/") + name, name);
    }
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    for (const char* name : {"a", "b", "c", "d"}) {
        removeFile(std::string("Rock/") + name);
    }
    for (const char* name : {"e", "f", "g", "h", "i"}) {
        givenFile(std::string("Rock/") + name, name);
    }
    expectDeferredUntilForced({"--music", pc("Rock")}, "4 files");
    expectInOrder();
}

// A disk that is not mounted leaves an empty folder behind.
TEST_F(SyncSafetyTest, EmptiedFolder_BesideALargerOne_IsDeferredUntilForced)
{
    for (const char* name : {"a", "b", "c", "d"}) {
        givenFile(std::string("Rock/") + name, name);
    }
    givenFile("Disk/e", "e");
    const std::vector<std::string> both{"--music", pc("Rock"), "--music", pc("Disk")};
    ASSERT_EQ(sync(both).exitCode, 0);
    removeFile("Disk/e");
    removeFile("Rock/a");
    for (int run = 0; run < 2; ++run) {
        const Ended deferred = sync(both);
        EXPECT_EQ(deferred.exitCode, 4) << deferred.out;
        EXPECT_THAT(deferred.out, HasSubstr("Deferred: 1 file"));
        EXPECT_THAT(deferred.out, HasSubstr(pc("Disk") + ": 1 of 1 recorded files are gone from it"));
        EXPECT_THAT(phonePaths(), ElementsAre("Music/Disk/e", "Music/Rock/b", "Music/Rock/c", "Music/Rock/d"));
    }
    std::vector<std::string> forced = both;
    forced.emplace_back("--force");
    EXPECT_EQ(sync(forced).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/b", "Music/Rock/c", "Music/Rock/d"));
}

TEST_F(SyncSafetyTest, FolderOfWhichMostIsGone_StaysDeferredWhenNewFilesCome)
{
    for (const char* name : {"Rock/a", "Rock/b", "Rock/c", "Jazz/d", "Jazz/e"}) {
        givenFile(name, name);
    }
    const std::vector<std::string> both{"--music", pc("Rock"), "--music", pc("Jazz")};
    ASSERT_EQ(sync(both).exitCode, 0);
    removeFile("Jazz/d");
    removeFile("Jazz/e");
    for (const char* name : {"Jazz/f", "Jazz/g", "Jazz/h"}) {
        givenFile(name, name);
    }
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0) << "a folder that is not given is not judged";
    expectDeferredUntilForced(both, "2 files");
    expectInOrder();
}

// The files were recorded under the folder around the one that is empty now.
TEST_F(SyncSafetyTest, EmptiedFolder_ChosenAroundItBefore_IsDeferred)
{
    for (const char* name : {"Music/a", "Music/b", "Music/c", "Music/Disk/d"}) {
        givenFile(name, name);
    }
    ASSERT_EQ(sync({"--music", pc("Music")}).exitCode, 0);
    removeFile("Music/Disk/d");
    const Ended run = sync({"--music", pc("Music/Disk")});
    EXPECT_EQ(run.exitCode, 4) << run.out;
    EXPECT_THAT(phonePaths(), testing::Contains("Music/Music/Disk/d"));
}

TEST_F(SyncSafetyTest, Files_ThatComeBack_EndTheDeferring)
{
    for (const char* name : {"a", "b", "c"}) {
        givenFile(std::string("Rock/") + name, name);
    }
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    for (const char* name : {"a", "b"}) {
        removeFile(std::string("Rock/") + name);
    }
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 4);
    givenFile("Rock/a", "a");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a", "Music/Rock/c"));
}

TEST_F(SyncSafetyTest, DamagedFileOfDeferred_IsReplaced)
{
    for (const char* name : {"a", "b", "c"}) {
        givenFile(std::string("Rock/") + name, name);
    }
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    for (const char* name : {"a", "b"}) {
        removeFile(std::string("Rock/") + name);
    }
    for (const char* text : {"{\"imei\": 351111}", "{\"imei\": \"351111\", \"recorded\": 3}", "[]", "{"}) {
        std::ofstream(note("351111.deferred.json"), std::ios::binary) << text;
        const Ended run = sync({"--music", pc("Rock")});
        EXPECT_EQ(run.exitCode, 4) << text << run.err;
        EXPECT_THAT(run.out, HasSubstr("Deferred: 2 files")) << text;
        std::ifstream replaced(note("351111.deferred.json"));
        EXPECT_EQ(nlohmann::json::parse(replaced, nullptr, false)["recorded"]["music"], 3) << text;
    }
}

TEST_F(SyncSafetyTest, DryRun_NotesNothingOfWhatItDefers)
{
    for (const char* name : {"a", "b"}) {
        givenFile(std::string("Rock/") + name, name);
    }
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    for (const char* name : {"a", "b"}) {
        removeFile(std::string("Rock/") + name);
    }
    EXPECT_EQ(sync({"--music", pc("Rock"), "--dry-run"}).exitCode, 4);
    for (const char* name : {"a", "c", "d", "e"}) {
        givenFile(std::string("Rock/") + name, name);
    }
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
}

TEST_F(SyncSafetyTest, Playlists_StayDeferredWhenNewOnesCome)
{
    givenFile("Rock/a.mp3", "a");
    for (const char* name : {"A", "B"}) {
        givenFile(std::string("Lists/") + name + ".m3u8", "../Rock/a.mp3\n");
    }
    ASSERT_EQ(sync({"--playlists", pc("Lists")}).exitCode, 0);
    for (const char* name : {"A", "B"}) {
        removeFile(std::string("Lists/") + name + ".m3u8");
    }
    for (const char* name : {"C", "D", "E"}) {
        givenFile(std::string("Lists/") + name + ".m3u8", "../Rock/a.mp3\n");
    }
    expectDeferredUntilForced({"--playlists", pc("Lists")}, "2 playlists");
}

TEST_F(SyncSafetyTest, Bookmarks_StayDeferredWhenNewOnesCome)
{
    givenFile("b.html", html({"http://a/", "http://b/"}));
    ASSERT_EQ(sync({"--bookmarks", pc("b.html")}).exitCode, 0);
    givenFile("b.html", html({"http://c/", "http://d/", "http://e/"}));
    expectDeferredUntilForced({"--bookmarks", pc("b.html")}, "2 bookmarks");
}

TEST_F(SyncSafetyTest, Contacts_StayDeferredWhenNewOnesCome)
{
    givenFile("c.vcf", CardText("1", "Ann") + CardText("2", "Bob"));
    ASSERT_EQ(sync({"--contacts", pc("c.vcf")}).exitCode, 0);
    givenFile("c.vcf", CardText("3", "Cid") + CardText("4", "Dan") + CardText("5", "Eve"));
    expectDeferredUntilForced({"--contacts", pc("c.vcf")}, "2 contacts");
}

TEST_F(SyncSafetyTest, FileThatTheUserBrought_IsNoLeftoverOfARunKilledWhileCopying)
{
    givenFile("Rock/a", "a");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    // So a run leaves the phone that is killed while it copies b.
    std::ofstream(Path(phone(".kesta-journal")), std::ios::binary) << "Music/Rock/b\nMusic/Rock/c\n";
    std::ofstream(Path(phone("Music/Rock/.kesta-part")), std::ios::binary) << "half of b";
    std::ofstream(Path(phone("Music/Rock/c")), std::ios::binary) << "the user's own";
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("1 leftover of it removed"));
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a", "Music/Rock/c"));
    EXPECT_THAT(ownFiles(), testing::IsEmpty());
}

TEST_F(SyncSafetyTest, EmptiedFolderInAChosenOne_IsDeferred)
{
    for (const char* name : {"Rock/a", "Rock/b", "Rock/c", "Disk/Old/d", "Disk/e"}) {
        givenFile(std::string("Music/") + name, name);
    }
    ASSERT_EQ(sync({"--music", pc("Music")}).exitCode, 0);
    // As the mount point of a disk that has been unmounted.
    fs::remove_all(Path(pc("Music/Disk")));
    fs::create_directories(Path(pc("Music/Disk")));
    const Ended run = sync({"--music", pc("Music")});
    EXPECT_EQ(run.exitCode, 4) << run.out;
    EXPECT_THAT(run.out, HasSubstr("2 of 2 recorded files are gone from it"));
    EXPECT_EQ(phoneFiles().size(), 5u);
    // A folder that is gone was removed by somebody.
    fs::remove_all(Path(pc("Music/Disk")));
    EXPECT_THAT(sync({"--music", pc("Music")}).out, HasSubstr("2 removed"));
}

TEST_F(SyncSafetyTest, FolderChosenByItsParentLater_LosesWhatIsGone)
{
    for (const char* name : {"a", "b", "c"}) {
        givenFile(std::string("Music/Rock/") + name, name);
    }
    givenFile("Music/Jazz/d", "d");
    ASSERT_EQ(sync({"--music", pc("Music/Rock")}).exitCode, 0);
    removeFile("Music/Rock/a");
    const Ended run = sync({"--music", pc("Music")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("1 copied, 0 updated, 1 removed, 2 unchanged"));
    EXPECT_EQ(recorded().size(), 3u);
}

TEST_F(SyncSafetyTest, FolderChosenByItsChildrenLater_LosesWhatIsGone)
{
    for (const char* name : {"a", "b", "c"}) {
        givenFile(std::string("Music/Rock/") + name, name);
    }
    givenFile("Music/Jazz/d", "d");
    ASSERT_EQ(sync({"--music", pc("Music")}).exitCode, 0);
    removeFile("Music/Rock/a");
    removeFile("Music/Jazz/d");
    const Ended run = sync({"--music", pc("Music/Rock")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("0 copied, 0 updated, 1 removed, 2 unchanged"));
}

TEST_F(SyncSafetyTest, BookmarkFileCutShort_RemovesNothing)
{
    const std::string whole = html({"http://a/", "http://b/", "http://c/", "http://d/"});
    givenFile("b.html", whole);
    ASSERT_EQ(sync({"--bookmarks", pc("b.html")}).exitCode, 0);
    for (const size_t cut : {whole.find("</DL>"), whole.find("http://d/") + 3, whole.find("http://d/") - 2}) {
        givenFile("b.html", whole.substr(0, cut));
        const Ended run = sync({"--bookmarks", pc("b.html")});
        EXPECT_EQ(run.exitCode, 3) << cut;
        EXPECT_THAT(run.out, HasSubstr("it ends before its lists do")) << cut;
        EXPECT_THAT(run.out, HasSubstr("0 removed")) << cut;
    }
}

TEST_F(SyncSafetyTest, EmptyPath_IsNotTheCurrentFolder)
{
    for (const char* option : {"--music", "--playlists", "--bookmarks", "--contacts", "--calendar", "--backup"}) {
        const Ended run = sync({option, ""});
        EXPECT_EQ(run.exitCode, 2) << option;
        EXPECT_THAT(run.err, HasSubstr("a path cannot be empty")) << option;
    }
    EXPECT_EQ(client({"sync", "--phone", ""}).exitCode, 2);
    EXPECT_THAT(ownFiles(), testing::IsEmpty());
}

TEST_F(SyncSafetyTest, NameThatIsTooLong_IsRefusedBeforeThePhoneIsMarked)
{
    EXPECT_EQ(sync({"--name", std::string(5000, 'n')}).exitCode, 2);
    EXPECT_FALSE(fs::exists(Path(phone(".kesta-phone"))));
}

TEST_F(SyncSafetyTest, Bookmarks_FolderInTheirPlace_IsSaid)
{
    const Ended run = sync({"--bookmarks", pc()});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("it is not a file"));
}

#if !defined(_WIN32)
TEST_F(SyncSafetyTest, ChosenFolderAndMemberWhosePathsAreNoText_GoAlong)
{
    givenFile("Good/a.mp3", "a");
    givenFile("M\xfcsik/b.mp3", "b");
    givenFile("Other/c\xfc.mp3", "c");
    givenFile("Lists/A.m3u8", "two.mp3\n../Good/a.mp3\n");
    fs::create_symlink("../Other/c\xfc.mp3", pc("Lists/two.mp3"));
    const Ended run = sync({"--music", pc("M\xfcsik"), "--music", pc("Good"), "--playlists", pc("Lists")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    const auto files = phoneFiles();
    EXPECT_EQ(files.at("Music/M\xfcsik/b.mp3"), "b");
    EXPECT_EQ(files.at("Playlists/Media/Other/c\xfc.mp3"), "c");
    EXPECT_THAT(files.at("Playlists/A.m3u8"), HasSubstr("Media/Other/c\xfc.mp3\n"));
    EXPECT_THAT(sync({"--music", pc("M\xfcsik"), "--playlists", pc("Lists")}).out, HasSubstr("1 unchanged"));
    const Ended why = client({"why", pc("M\xfcsik"), "--json"});
    EXPECT_EQ(why.exitCode, 0) << why.err;
    EXPECT_TRUE(nlohmann::json::accept(why.out));
}

TEST_F(SyncSafetyTest, OutputThatCannotBeWritten_IsAFailure)
{
    givenFile("Rock/a", "a");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    const std::string command = std::string(KESTA_CLIENT) + " status --json >/dev/full 2>/dev/null";
    const int status = std::system(command.c_str());
    EXPECT_EQ(WEXITSTATUS(status), 1);
}
#endif

}  // namespace
}  // namespace kesta::test
