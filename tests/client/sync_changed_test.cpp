// What somebody has changed on the phone is kept, and what a sync takes away can be had back.
#include "client_fixture.h"
#include "pim_samples.h"

namespace kesta::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Key;
using testing::Not;
using testing::Pair;

class SyncChangedTest : public ClientTest {
protected:
    void givenSynced()
    {
        for (const char* name : {"a.mp3", "b.mp3", "c.mp3", "d.mp3", "e.mp3"}) {
            givenFile(std::string("Rock/") + name, name);
        }
        ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    }
    /// With a time of its own.
    void changeOnPhone(const std::string& path, const std::string& contents)
    {
        std::ofstream(Path(phone(path)), std::ios::binary) << contents;
        fs::last_write_time(Path(phone(path)), fs::file_time_type::clock::now() + std::chrono::seconds(77));
    }
    void changeOnPhoneKeepingTime(const std::string& path, const std::string& contents)
    {
        const auto time = fs::last_write_time(Path(phone(path)));
        std::ofstream(Path(phone(path)), std::ios::binary) << contents;
        fs::last_write_time(Path(phone(path)), time);
    }
};

TEST_F(SyncChangedTest, ChangedFile_IsKeptBesideTheOneOfThePc)
{
    givenSynced();
    changeOnPhone("Music/Rock/a.mp3", "edited on the phone");
    const Ended preview = sync({"--music", pc("Rock"), "--dry-run"});
    EXPECT_THAT(preview.out, HasSubstr("keep      Music/Rock/a (changed on the phone).mp3"));
    EXPECT_EQ(phoneFiles().at("Music/Rock/a.mp3"), "edited on the phone");

    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("kept      Music/Rock/a (changed on the phone).mp3"));
    EXPECT_THAT(run.out, HasSubstr("Changed on the phone, kept there beside the PC's:"));
    EXPECT_THAT(run.out, HasSubstr("0 copied, 1 updated, 0 removed, 4 unchanged"));
    EXPECT_EQ(phoneFiles().at("Music/Rock/a.mp3"), "a.mp3");
    EXPECT_EQ(phoneFiles().at("Music/Rock/a (changed on the phone).mp3"), "edited on the phone");
    const Ended why = client({"why", pc("Rock/a.mp3"), "--json"});
    EXPECT_THAT(why.out, HasSubstr("changed_on_phone"));
    EXPECT_THAT(why.out, HasSubstr("Music/Rock/a (changed on the phone).mp3"));
    // It is the user's now.
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("0 copied, 0 updated, 0 removed, 5 unchanged"));
    EXPECT_EQ(phoneFiles().size(), 6u);
}

TEST_F(SyncChangedTest, ChangedAgain_GetsANameOfItsOwn)
{
    givenSynced();
    for (const char* contents : {"first edit", "second edit"}) {
        changeOnPhone("Music/Rock/a.mp3", contents);
        EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    }
    std::vector<std::string> kept;
    for (const auto& [path, contents] : phoneFiles()) {
        if (path.find("changed on the phone") != std::string::npos) {
            kept.push_back(contents);
        }
    }
    EXPECT_THAT(kept, testing::UnorderedElementsAre("first edit", "second edit"));
}

TEST_F(SyncChangedTest, ChangedFileThatIsGoneFromThePc_IsKept)
{
    givenSynced();
    changeOnPhone("Music/Rock/a.mp3", "edited on the phone");
    removeFile("Rock/a.mp3");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_EQ(phoneFiles().at("Music/Rock/a (changed on the phone).mp3"), "edited on the phone");
    EXPECT_THAT(phonePaths(), Not(Contains("Music/Rock/a.mp3")));
    EXPECT_EQ(recorded().size(), 4u);
}

TEST_F(SyncChangedTest, ChangedOnBothSides_BothStay)
{
    givenSynced();
    changeOnPhone("Music/Rock/a.mp3", "edited on the phone");
    changeFile("Rock/a.mp3", "edited on the PC");
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_EQ(phoneFiles().at("Music/Rock/a.mp3"), "edited on the PC");
    EXPECT_EQ(phoneFiles().at("Music/Rock/a (changed on the phone).mp3"), "edited on the phone");
}

TEST_F(SyncChangedTest, SameSizeAndAnotherTime_IsKeptWhenTheContentsDiffer)
{
    givenSynced();
    changeOnPhone("Music/Rock/a.mp3", "A.MP3");
    changeOnPhone("Music/Rock/b.mp3", "b.mp3");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_THAT(run.out, HasSubstr("0 copied, 1 updated, 0 removed, 4 unchanged"));
    EXPECT_EQ(phoneFiles().at("Music/Rock/a (changed on the phone).mp3"), "A.MP3");
    EXPECT_EQ(phoneFiles().size(), 6u);
}

// As editors of music tags leave a file.
TEST_F(SyncChangedTest, OtherSizeAndTheSameTime_IsKept)
{
    givenSynced();
    for (const char* name : {"a", "b", "c"}) {
        changeOnPhoneKeepingTime(std::string("Music/Rock/") + name + ".mp3", std::string("edited ") + name);
    }
    changeFile("Rock/b.mp3", "edited on the PC");
    removeFile("Rock/c.mp3");
    EXPECT_EQ(sync({"--music", pc("Rock"), "--no-trash"}).exitCode, 0);
    EXPECT_THAT(phoneFiles(), testing::UnorderedElementsAre(
                                  Pair("Music/Rock/a.mp3", "a.mp3"), Pair("Music/Rock/b.mp3", "edited on the PC"),
                                  Pair("Music/Rock/d.mp3", "d.mp3"), Pair("Music/Rock/e.mp3", "e.mp3"),
                                  Pair("Music/Rock/a (changed on the phone).mp3", "edited a"),
                                  Pair("Music/Rock/b (changed on the phone).mp3", "edited b"),
                                  Pair("Music/Rock/c (changed on the phone).mp3", "edited c")));
}

TEST_F(SyncChangedTest, PhoneRestoredWithOtherTimes_TextsAreNoChange)
{
    givenFile("Rock/a.mp3", "a");
    givenFile("Lists/Mix.m3u8", "../Rock/a.mp3\n");
    givenFile("b.html", "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<DL><p>\n<DT><A HREF=\"http://a/\">A</A>\n</DL><p>\n");
    givenFile("c.vcf", CardText("1", "Ann"));
    const std::vector<std::string> all{"--playlists", pc("Lists"),  "--bookmarks",
                                       pc("b.html"),  "--contacts", pc("c.vcf")};
    ASSERT_EQ(sync(all).exitCode, 0);
    for (const auto& [path, contents] : phoneFiles()) {
        changeOnPhone(path, contents);
    }
    givenFile("Rock/b.mp3", "b");
    givenFile("Lists/Mix.m3u8", "../Rock/a.mp3\n../Rock/b.mp3\n");
    givenFile(
        "b.html",
        "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<DL><p>\n<DT><A HREF=\"http://a/\">A</A>\n<DT><A HREF=\"http://b/\">B</A>\n</DL><p>\n");
    givenFile("c.vcf", CardText("1", "Anne"));
    const Ended run = sync(all);
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, Not(HasSubstr("changed on the phone")));
    EXPECT_THAT(phoneFiles().at("Contacts/c.vcf"), HasSubstr("Anne"));
    EXPECT_THAT(phoneFiles().at("Bookmarks/bookmarks.html"), HasSubstr("http://b/"));
    EXPECT_THAT(phoneFiles().at("Playlists/Mix.m3u8"), HasSubstr("b.mp3"));
}

TEST_F(SyncChangedTest, Forced_ChangesAreOverwritten)
{
    givenSynced();
    changeOnPhone("Music/Rock/a.mp3", "edited on the phone");
    EXPECT_EQ(sync({"--music", pc("Rock"), "--force"}).exitCode, 0);
    expectInOrder();
    EXPECT_THAT(trash(), ElementsAre(Pair("Music/Rock/a.mp3", "edited on the phone")));
}

TEST_F(SyncChangedTest, ListsBookmarksAndContacts_AreKeptToo)
{
    givenFile("Rock/a.mp3", "a");
    givenFile("Lists/Mix.m3u8", "../Rock/a.mp3\n");
    givenFile("b.html", "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<DL><p>\n<DT><A HREF=\"http://a/\">A</A>\n</DL><p>\n");
    givenFile("c.vcf", CardText("1", "Ann"));
    const std::vector<std::string> all{"--playlists", pc("Lists"),  "--bookmarks",
                                       pc("b.html"),  "--contacts", pc("c.vcf")};
    ASSERT_EQ(sync(all).exitCode, 0);
    EXPECT_THAT(sync(all).out, Not(HasSubstr("changed on the phone")));
    for (const char* path : {"Playlists/Mix.m3u8", "Bookmarks/bookmarks.html", "Contacts/c.vcf"}) {
        changeOnPhone(path, std::string("edited: ") + path);
    }
    const Ended run = sync(all);
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    const auto files = phoneFiles();
    EXPECT_EQ(files.at("Playlists/Mix (changed on the phone).m3u8"), "edited: Playlists/Mix.m3u8");
    EXPECT_EQ(files.at("Bookmarks/bookmarks (changed on the phone).html"), "edited: Bookmarks/bookmarks.html");
    EXPECT_EQ(files.at("Contacts/c (changed on the phone).vcf"), "edited: Contacts/c.vcf");
    EXPECT_THAT(files.at("Contacts/c.vcf"), HasSubstr("Ann"));
    EXPECT_THAT(sync(all).out, Not(HasSubstr("Changed on the phone, kept")));
    EXPECT_EQ(phoneFiles(), files);
}

TEST_F(SyncChangedTest, RemovedAndReplacedFiles_GoToTheTrash)
{
    givenSynced();
    removeFile("Rock/a.mp3");
    changeFile("Rock/b.mp3", "new b");
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    expectInOrder();
    EXPECT_THAT(trash(), ElementsAre(Pair("Music/Rock/a.mp3", "a.mp3"), Pair("Music/Rock/b.mp3", "b.mp3")));
    changeFile("Rock/b.mp3", "newer b");
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    std::vector<std::string> days;
    for (const auto& day : fs::directory_iterator(Path(phone(".kesta-trash")))) {
        days.push_back(Utf8(day.path().filename()));
    }
    EXPECT_THAT(days, testing::SizeIs(2)) << "a second file of a path on one day";
}

TEST_F(SyncChangedTest, WithoutTrash_NothingIsKeptOfThem)
{
    givenSynced();
    removeFile("Rock/a.mp3");
    changeFile("Rock/b.mp3", "new b");
    EXPECT_EQ(sync({"--music", pc("Rock"), "--no-trash"}).exitCode, 0);
    expectInOrder();
    EXPECT_THAT(trash(), IsEmpty());
}

TEST_F(SyncChangedTest, Restore_ListsAndBringsBack)
{
    givenSynced();
    EXPECT_THAT(client({"restore", "--phone", phone()}).out, HasSubstr("The trash of this phone is empty"));
    removeFile("Rock/a.mp3");
    changeFile("Rock/b.mp3", "new b");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    const Ended list = client({"restore", "--phone", phone()});
    EXPECT_EQ(list.exitCode, 0) << list.err;
    EXPECT_THAT(list.out, HasSubstr("Music/Rock/a.mp3"));
    EXPECT_THAT(list.out, HasSubstr("2 files, 10 B"));

    const Ended preview = client({"restore", "--phone", phone(), "Music/Rock", "--dry-run"});
    EXPECT_THAT(preview.out, HasSubstr("restore   Music/Rock/a.mp3"));
    EXPECT_EQ(trash().size(), 2u);
    EXPECT_EQ(client({"restore", "--phone", phone(), "Music/Jazz"}).exitCode, 1);

    EXPECT_EQ(client({"restore", "--phone", phone(), "Music/Rock/a.mp3"}).exitCode, 0);
    EXPECT_EQ(phoneFiles().at("Music/Rock/a.mp3"), "a.mp3");
    EXPECT_EQ(client({"restore", "--phone", phone(), "--all"}).exitCode, 0);
    EXPECT_THAT(trash(), IsEmpty());
    EXPECT_EQ(phoneFiles().at("Music/Rock/b.mp3"), "new b") << "it stays where it is";
    EXPECT_THAT(phoneFiles(), Contains(Pair(testing::StartsWith("Music/Rock/b~"), "b.mp3")));
    // What came back is the user's.
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("0 copied, 0 updated, 0 removed, 4 unchanged"));
    EXPECT_EQ(phoneFiles().size(), 6u);
}

TEST_F(SyncChangedTest, Restore_TakesTheLatestOrThatOfTheDay)
{
    givenSynced();
    for (const char* contents : {"second", "third"}) {
        changeFile("Rock/b.mp3", contents);
        ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    }
    removeFile("Rock/b.mp3");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    ASSERT_EQ(client({"restore", "--phone", phone(), "Music/Rock/b.mp3"}).exitCode, 0);
    EXPECT_EQ(phoneFiles().at("Music/Rock/b.mp3"), "third");
}

TEST_F(SyncChangedTest, OldTrash_Goes)
{
    givenSynced();
    for (const char* day : {"2020-01-31", "2020-01-31~2", "the user's own", "2020-01-32"}) {
        const fs::path folder = Path(phone(".kesta-trash")) / day / "Music";
        fs::create_directories(folder);
        std::ofstream(folder / "old.mp3", std::ios::binary) << day;
    }
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_FALSE(fs::exists(Path(phone(".kesta-trash/2020-01-31"))));
    EXPECT_FALSE(fs::exists(Path(phone(".kesta-trash/2020-01-31~2"))));
    EXPECT_TRUE(fs::exists(Path(phone(".kesta-trash/the user's own/Music/old.mp3"))));
    EXPECT_TRUE(fs::exists(Path(phone(".kesta-trash/2020-01-32/Music/old.mp3"))));
    expectInOrder();
}

// The database keeps whole seconds.
TEST_F(SyncChangedTest, PcFileChangedWithinTheSecond_IsCopied)
{
    using std::chrono::milliseconds;
    givenFile("Rock/a.mp3", "one");
    const fs::path file = Path(pc("Rock/a.mp3"));
    const auto second = std::chrono::floor<std::chrono::seconds>(fs::last_write_time(file));
    fs::last_write_time(file, second + milliseconds(100));
    if (fs::last_write_time(file) == second) {
        GTEST_SKIP() << "the C++ library sets whole seconds here";
    }
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("1 unchanged"));
    givenFile("Rock/a.mp3", "two");
    fs::last_write_time(file, second + milliseconds(350));
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("0 copied, 1 updated, 0 removed, 0 unchanged"));
    EXPECT_EQ(phoneFiles().at("Music/Rock/a.mp3"), "two");
    // A file system that keeps whole seconds only is no change.
    fs::last_write_time(file, second);
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("1 unchanged"));
}

TEST_F(SyncChangedTest, EditedBetweenAKilledRunAndTheNext_IsKept)
{
    givenSynced();
    // So a run leaves the phone that was to replace all of them, and was killed behind the first one.
    std::ofstream(Path(phone(".kesta-journal")), std::ios::binary)
        << "Music/Rock/a.mp3\nMusic/Rock/b.mp3\nMusic/Rock/c.mp3\n";
    changeFile("Rock/a.mp3", "replaced by the run");
    std::ofstream(Path(phone("Music/Rock/a.mp3")), std::ios::binary) << "replaced by the run";
    fs::last_write_time(Path(phone("Music/Rock/a.mp3")), fs::last_write_time(Path(pc("Rock/a.mp3"))));
    changeOnPhone("Music/Rock/b.mp3", "edited on the phone");
    changeOnPhoneKeepingTime("Music/Rock/c.mp3", "edited, with the same time");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    const auto files = phoneFiles();
    EXPECT_EQ(files.at("Music/Rock/a.mp3"), "replaced by the run");
    EXPECT_EQ(files.at("Music/Rock/b (changed on the phone).mp3"), "edited on the phone");
    EXPECT_EQ(files.at("Music/Rock/c (changed on the phone).mp3"), "edited, with the same time");
    EXPECT_EQ(files.size(), 7u);
}

TEST_F(SyncChangedTest, ListEditedBetweenAKilledRunAndTheNext_IsKept)
{
    givenFile("lists/Mix.m3u8", "http://a/\n");
    ASSERT_EQ(sync({"--playlists", pc("lists")}).exitCode, 0);
    std::ofstream(Path(phone(".kesta-journal")), std::ios::binary)
        << "Playlists/Mix.m3u8\t0123456789abcdef0123456789abcdef\n";
    changeOnPhone("Playlists/Mix.m3u8", "http://mine/\n");
    changeFile("lists/Mix.m3u8", "http://b/\n");
    EXPECT_EQ(sync({"--playlists", pc("lists")}).exitCode, 0);
    EXPECT_EQ(phoneFiles().at("Playlists/Mix (changed on the phone).m3u8"), "http://mine/\n");
}

}  // namespace
}  // namespace kesta::test
