// Files and folders that have another name or place on the PC than at the last sync.
#include <chrono>
#include <fstream>

#include "pim_fixture.h"

namespace kesta::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class SyncMovesTest : public PimTest {
protected:
    void move(const std::string& from, const std::string& to)
    {
        fs::create_directories(Path(pc(to)).parent_path());
        fs::rename(Path(pc(from)), Path(pc(to)));
    }
    void givenSynced()
    {
        for (const char* name : {"Rock/a.mp3", "Rock/b.mp3", "Rock/Live/c.mp3", "Rock/d.mp3"}) {
            givenFile(name, std::string("the music of ") + name);
        }
        ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    }
};

TEST_F(SyncMovesTest, RenamedFile_IsMovedOnThePhone)
{
    givenSynced();
    move("Rock/a.mp3", "Rock/Best/z.mp3");
    const Ended dry = sync({"--music", pc("Rock"), "--dry-run"});
    EXPECT_THAT(dry.out, HasSubstr("move      Music/Rock/Best/z.mp3"));
    EXPECT_THAT(dry.out, HasSubstr("0 copied, 0 updated, 0 removed, 3 unchanged, 0 failed, 1 moved (0 B to copy)"));
    EXPECT_THAT(phonePaths(), Contains("Music/Rock/a.mp3"));
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("moved     Music/Rock/Best/z.mp3"));
    EXPECT_THAT(run.out, HasSubstr("0 copied, 0 updated, 0 removed, 3 unchanged, 0 failed, 1 moved (0 B in"));
    EXPECT_THAT(phonePaths(),
                ElementsAre("Music/Rock/Best/z.mp3", "Music/Rock/Live/c.mp3", "Music/Rock/b.mp3", "Music/Rock/d.mp3"));
    EXPECT_EQ(phoneFiles().at("Music/Rock/Best/z.mp3"), "the music of Rock/a.mp3");
    EXPECT_TRUE(trash().empty());
    expectInOrder();
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("0 copied, 0 updated, 0 removed, 4 unchanged"));
}

TEST_F(SyncMovesTest, RenamedFolderInside_IsNoReasonToDefer)
{
    givenSynced();
    move("Rock", "Moved");
    move("Moved", "Rock/All");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, HasSubstr("4 moved"));
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/All/Live/c.mp3", "Music/Rock/All/a.mp3", "Music/Rock/All/b.mp3",
                                          "Music/Rock/All/d.mp3"));
    expectInOrder();
}

TEST_F(SyncMovesTest, RenamedChosenFolder_IsNotDoubled)
{
    givenSynced();
    move("Rock", "Pop");
    const Ended run = sync({"--music", pc("Pop")});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, HasSubstr("0 copied, 0 updated, 0 removed, 0 unchanged, 0 failed, 4 moved"));
    EXPECT_THAT(phonePaths(),
                ElementsAre("Music/Pop/Live/c.mp3", "Music/Pop/a.mp3", "Music/Pop/b.mp3", "Music/Pop/d.mp3"));
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tMFolder"), "1");
    expectInOrder();
    // The old name is not asked for any more.
    const Ended again = client({"sync"});
    EXPECT_EQ(again.exitCode, 0) << again.out;
    EXPECT_THAT(again.out, HasSubstr("4 unchanged"));
    EXPECT_THAT(client({"settings", "--imei", kImei}).out, Not(HasSubstr(pc("Rock"))));
}

TEST_F(SyncMovesTest, FolderOfTheSameNameElsewhere_StaysWhereItIsOnThePhone)
{
    givenSynced();
    move("Rock", "Disk/Rock");
    const Ended run = sync({"--music", pc("Disk/Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, HasSubstr("4 moved"));
    EXPECT_THAT(phonePaths(),
                ElementsAre("Music/Rock/Live/c.mp3", "Music/Rock/a.mp3", "Music/Rock/b.mp3", "Music/Rock/d.mp3"));
    expectInOrder();
    EXPECT_THAT(sync({"--music", pc("Disk/Rock")}).out, HasSubstr("4 unchanged"));
}

TEST_F(SyncMovesTest, CopyWhoseFirstOneIsStillThere_IsCopied)
{
    givenSynced();
    fs::copy_file(Path(pc("Rock/a.mp3")), Path(pc("Rock/e.mp3")));
    fs::last_write_time(Path(pc("Rock/e.mp3")), fs::last_write_time(Path(pc("Rock/a.mp3"))));
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("1 copied, 0 updated, 0 removed, 4 unchanged"));
}

TEST_F(SyncMovesTest, OtherContentsOfTheSameSizeAndTime_AreCopied)
{
    givenSynced();
    const auto time = fs::file_time_type(std::chrono::duration_cast<fs::file_time_type::duration>(
        std::chrono::floor<std::chrono::seconds>(fs::last_write_time(Path(pc("Rock/a.mp3"))).time_since_epoch())));
    fs::last_write_time(Path(pc("Rock/a.mp3")), time);
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    removeFile("Rock/a.mp3");
    givenFile("Rock/n.mp3", "THE MUSIC OF ROCK/A.MP3");
    fs::last_write_time(Path(pc("Rock/n.mp3")), time);
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("1 copied, 0 updated, 1 removed, 3 unchanged"));
    EXPECT_EQ(phoneFiles().at("Music/Rock/n.mp3"), "THE MUSIC OF ROCK/A.MP3");
    expectInOrder();
}

// As a program leaves them that writes many at once: one time to the last digit, and one size.
TEST_F(SyncMovesTest, FilesOfOneMoment_AreToldApartByWhatTheyHold)
{
    const auto time = fs::file_time_type::clock::now();
    for (const char* name : {"Rock/a.mp3", "Rock/b.mp3", "Rock/Live/same.mp3", "Rock/Gone/same.mp3", "Rock/d.mp3"}) {
        givenFile(name, std::string("the music of ") + name[5]);
        fs::last_write_time(Path(pc(name)), time);
    }
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    removeFile("Rock/a.mp3");
    move("Rock/b.mp3", "Rock/z.mp3");
    removeFile("Rock/Gone/same.mp3");
    move("Rock/Live/same.mp3", "Rock/New/same.mp3");
    const Ended run = sync({"--music", pc("Rock"), "--force"});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, HasSubstr("2 moved"));
    EXPECT_EQ(phoneFiles().at("Music/Rock/z.mp3"), "the music of b");
    EXPECT_EQ(phoneFiles().at("Music/Rock/New/same.mp3"), "the music of L");
    expectInOrder();
}

TEST_F(SyncMovesTest, FileChangedOnThePhone_IsNotMoved)
{
    givenSynced();
    std::ofstream(Path(phone("Music/Rock/a.mp3"))) << "somebody's own";
    move("Rock/a.mp3", "Rock/z.mp3");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(phoneFiles(), Contains(testing::Pair("Music/Rock/a (changed on the phone).mp3", "somebody's own")));
    EXPECT_EQ(phoneFiles().at("Music/Rock/z.mp3"), "the music of Rock/a.mp3");
}

TEST_F(SyncMovesTest, OnlyTheCaseOfAName_IsCopiedAnew)
{
    givenSynced();
    move("Rock/a.mp3", "Rock/tmp");
    move("Rock/tmp", "Rock/A.mp3");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, Not(HasSubstr("1 moved")));
    EXPECT_THAT(phonePaths(), Contains("Music/Rock/A.mp3"));
}

TEST_F(SyncMovesTest, PlaylistsFollow)
{
    givenSynced();
    givenFile("lists/One.m3u8", "../Rock/a.mp3\n");
    ASSERT_EQ(sync({"--music", pc("Rock"), "--playlists", pc("lists")}).exitCode, 0);
    move("Rock/a.mp3", "Rock/z.mp3");
    givenFile("lists/One.m3u8", "../Rock/z.mp3\n");
    const Ended run = sync({"--music", pc("Rock"), "--playlists", pc("lists")});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, HasSubstr("1 moved"));
    EXPECT_THAT(phoneFiles().at("Playlists/One.m3u8"), HasSubstr("../Music/Rock/z.mp3\n"));
}

constexpr const char* kFriends =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:a\r\nFN:Ann\r\nN:;Ann;;;\r\nEND:VCARD\r\n"
    "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:b\r\nFN:Ben\r\nN:;Ben;;;\r\nEND:VCARD\r\n";

TEST_F(SyncMovesTest, RenamedAddressBook_IsNotDoubled)
{
    givenFile("friends.vcf", kFriends);
    ASSERT_EQ(syncContacts({"friends.vcf"}).exitCode, 0);
    move("friends.vcf", "people.vcf");
    const Ended run = syncContacts({"people.vcf"});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr(pc("friends.vcf") + " is " + pc("people.vcf") + " now."));
    EXPECT_THAT(phonePaths(), ElementsAre("Contacts/people.vcf"));
    EXPECT_EQ(contactsIn("Contacts/people.vcf").size(), 2u);
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPimItem"), "2");
    const Ended again = client({"sync"});
    EXPECT_EQ(again.exitCode, 0) << again.out;
    EXPECT_THAT(again.out, HasSubstr("Contacts: 0 added, 0 updated, 0 removed, 2 unchanged"));
}

TEST_F(SyncMovesTest, AddressBookMovedForAnotherPhoneAlready_IsNotDoubledEither)
{
    givenFile("friends.vcf", kFriends);
    const std::vector<std::string> other{"sync",   "--phone", work().string() + "/other",
                                         "--imei", "352222",  "--contacts"};
    fs::create_directories(work() / "other");
    const auto with = [](std::vector<std::string> arguments, const std::string& path) {
        arguments.push_back(path);
        return arguments;
    };
    ASSERT_EQ(syncContacts({"friends.vcf"}).exitCode, 0);
    ASSERT_EQ(client(with(other, pc("friends.vcf"))).exitCode, 0);
    move("friends.vcf", "people.vcf");
    ASSERT_EQ(syncContacts({"people.vcf"}).exitCode, 0);
    const Ended run = client(with(other, pc("people.vcf")));
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_FALSE(fs::exists(work() / "other/Contacts/friends.vcf"));
    EXPECT_TRUE(fs::exists(work() / "other/Contacts/people.vcf"));
}

TEST_F(SyncMovesTest, AddressBookThatHoldsLess_IsAnotherOne)
{
    givenFile("friends.vcf", kFriends);
    ASSERT_EQ(syncContacts({"friends.vcf"}).exitCode, 0);
    removeFile("friends.vcf");
    givenFile("people.vcf", "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:a\r\nFN:Ann\r\nN:;Ann;;;\r\nEND:VCARD\r\n");
    EXPECT_EQ(syncContacts({"people.vcf"}).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Contacts/friends.vcf", "Contacts/people.vcf"));
}

}  // namespace
}  // namespace kesta::test
