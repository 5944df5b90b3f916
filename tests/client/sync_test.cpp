// What a sync does when nothing is in its way.
#include "client_fixture.h"

namespace kesta::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

using SyncTest = ClientTest;

TEST_F(SyncTest, FirstRun_CopiesRecordsAndMarksThePhoneThePhone)
{
    givenFile("Rock/a.mp3", "first");
    givenFile("Rock/sub/b.mp3", std::string(3'000'000, 'x'));
    givenFile("Rock/empty.mp3", "");
    const Ended run = sync({"--name", "Ann's phone", "--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("Summary: 3 copied, 0 updated, 0 removed, 0 unchanged, 0 failed"));
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a.mp3", "Music/Rock/empty.mp3", "Music/Rock/sub/b.mp3"));
    expectInOrder();
    const auto marker = nlohmann::json::parse(std::ifstream(Path(phone(".kesta-phone"))));
    EXPECT_EQ(marker.at("imei"), kImei);
    EXPECT_EQ(marker.at("name"), "Ann's phone");
    EXPECT_EQ(status().at("name"), "Ann's phone");
}

TEST_F(SyncTest, SecondRun_NeitherReadsNorWrites)
{
    givenFile("Rock/a.mp3", "first");
    givenFile("Rock/b.mp3", "second");
    (void)sync({"--music", pc("Rock")});
    // What is not looked into can be changed behind the run's back.
    const auto time = fs::last_write_time(Path(pc("Rock/a.mp3")));
    givenFile("Rock/a.mp3", "FIRST");
    fs::last_write_time(Path(pc("Rock/a.mp3")), time);
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("Summary: 0 copied, 0 updated, 0 removed, 2 unchanged, 0 failed"));
    EXPECT_EQ(phoneFiles().at("Music/Rock/a.mp3"), "first");
}

TEST_F(SyncTest, ChangedFile_IsCopiedAndRecordedAgain)
{
    givenFile("Rock/a.mp3", "first");
    givenFile("Rock/b.mp3", "second");
    (void)sync({"--music", pc("Rock")});
    const auto before = recorded()[0].at("modified");
    changeFile("Rock/a.mp3", "other");  // of the same size
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("0 copied, 1 updated, 0 removed, 1 unchanged, 0 failed"));
    EXPECT_NE(recorded()[0].at("modified"), before);
    expectInOrder();
}

TEST_F(SyncTest, FileMissingOrOtherOnThePhone_IsCopiedAgain)
{
    givenFile("Rock/a.mp3", "first");
    givenFile("Rock/b.mp3", "second");
    givenFile("Rock/c.mp3", "third");
    (void)sync({"--music", pc("Rock")});
    fs::remove(Path(phone("Music/Rock/a.mp3")));
    std::ofstream(Path(phone("Music/Rock/b.mp3")), std::ios::app) << "spoilt";
    const Ended run = sync({"--music", pc("Rock"), "--force"});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("0 copied, 2 updated, 0 removed, 1 unchanged, 0 failed"));
    expectInOrder();
}

TEST_F(SyncTest, FileGoneFromThePc_IsRemovedWithItsEmptyFolders)
{
    givenFile("Rock/a.mp3", "first");
    givenFile("Rock/b.mp3", "second");
    givenFile("Rock/deep/er/c.mp3", "third");
    (void)sync({"--music", pc("Rock")});
    removeFile("Rock/deep/er/c.mp3");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("0 copied, 0 updated, 1 removed, 2 unchanged, 0 failed"));
    EXPECT_FALSE(fs::exists(Path(phone("Music/Rock/deep"))));
    EXPECT_THAT(recorded(), SizeIs(2));
    expectInOrder();
}

TEST_F(SyncTest, EmptiedFolder_LeavesTheCategorysFolder)
{
    givenFile("Rock/a.mp3", "first");
    (void)sync({"--music", pc("Rock")});
    removeFile("Rock/a.mp3");
    EXPECT_EQ(sync({"--music", pc("Rock"), "--force"}).exitCode, 0);
    EXPECT_FALSE(fs::exists(Path(phone("Music/Rock"))));
    EXPECT_TRUE(fs::exists(Path(phone("Music"))));
}

TEST_F(SyncTest, FolderNotGivenThisTime_IsLeftAlone)
{
    givenFile("Rock/a.mp3", "first");
    givenFile("Jazz/b.mp3", "second");
    (void)sync({"--music", pc("Rock"), "--music", pc("Jazz")});
    removeFile("Jazz/b.mp3");
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Jazz/b.mp3", "Music/Rock/a.mp3"));
    EXPECT_THAT(recorded(), SizeIs(2));
}

TEST_F(SyncTest, EachCategory_HasItsFolderAndItsDatabase)
{
    givenFile("m/a", "1");
    givenFile("i/b", "2");
    givenFile("v/c", "3");
    givenFile("d/d", "4");
    EXPECT_EQ(sync({"--music", pc("m"), "--images", pc("i"), "--videos", pc("v"), "--documents", pc("d")}).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Documents/d/d", "Music/m/a", "Pictures/i/b", "Videos/v/c"));
    for (const char* category : {"music", "images", "videos", "documents"}) {
        EXPECT_THAT(recorded(category), SizeIs(1)) << category;
    }
    EXPECT_EQ(database().text("SELECT (SELECT COUNT(*) FROM tMFile), (SELECT COUNT(*) FROM tIFile), "
                              "(SELECT COUNT(*) FROM tVFile), (SELECT COUNT(*) FROM tDFile)"),
              "1|1|1|1");
}

TEST_F(SyncTest, Database_HoldsCountsSizesAndTheEndOfTheRun)
{
    givenFile("Rock/a.mp3", "12345");
    givenFile("Rock/b.mp3", "1234567");
    (void)sync({"--music", pc("Rock")});
    EXPECT_EQ(database().text("SELECT [Path], [Count], [Size], [TotalSize], [Sized], [Flag], [Deleted] FROM tMFolder"),
              pc("Rock") + "|2|12|12|1|0|0");
    EXPECT_EQ(database().text("SELECT [ErrCode], [LastTime] IS NOT NULL FROM tPhone"), "0|1");
}

TEST_F(SyncTest, DryRun_ChangesNothing)
{
    givenFile("Rock/a.mp3", "first");
    const Ended unknown = client({"sync", "--phone", phone(), "--dry-run", "--music", pc("Rock")});
    EXPECT_EQ(unknown.exitCode, 0) << unknown.err;
    EXPECT_THAT(unknown.out, HasSubstr("copy      Music/Rock/a.mp3"));
    EXPECT_THAT(unknown.out, HasSubstr("A sync would give: 1 copied"));
    EXPECT_TRUE(fs::is_empty(Path(phone())));
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPhone"), "0");

    givenFile("Rock/b.mp3", "second");
    givenFile("Rock/c.mp3", "third");
    (void)sync({"--music", pc("Rock")});
    const auto onPhone = phoneFiles();
    const auto rows =
        "SELECT (SELECT group_concat([Path] || [ModifiedTime]) FROM tMFile), [LastTime], [Count] "
        "FROM tPhone, tMFolder";
    const std::string before = database().text(rows);
    changeFile("Rock/a.mp3", "changed");
    removeFile("Rock/b.mp3");
    givenFile("Rock/d.mp3", "fourth");
    const Ended known = sync({"--music", pc("Rock"), "--dry-run"});
    EXPECT_THAT(known.out, HasSubstr("A sync would give: 1 copied, 1 updated, 1 removed, 1 unchanged, 0 failed"));
    EXPECT_EQ(phoneFiles(), onPhone);
    EXPECT_EQ(database().text(rows), before);
}

TEST_F(SyncTest, FolderMarkedDeleted_ComesBackToLife)
{
    givenFile("Rock/a.mp3", "first");
    (void)sync({"--music", pc("Rock")});
    database().exec("UPDATE tMFolder SET [Deleted] = 1");
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_EQ(database().text("SELECT [Deleted] FROM tMFolder"), "0");
}

TEST_F(SyncTest, FolderNotSelected_IsSkipped)
{
    givenFile("Rock/a.mp3", "first");
    (void)sync({"--music", pc("Rock")});
    database().exec("UPDATE tMFolder SET [Selected] = 0, [Deleted] = 1");
    givenFile("Rock/b.mp3", "second");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("is not selected for this phone"));
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a.mp3"));
    EXPECT_EQ(database().text("SELECT [Deleted], [Count] FROM tMFolder"), "1|1");
}

TEST_F(SyncTest, NestedFolders_EachFileOnce)
{
    givenFile("Rock/a.mp3", "first");
    givenFile("Rock/Live/b.mp3", "second");
    EXPECT_EQ(sync({"--music", pc("Rock"), "--music", pc("Rock/Live")}).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Live/b.mp3", "Music/Rock/a.mp3"));
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("2 unchanged"));
    expectInOrder();
}

TEST_F(SyncTest, SameFolderTwice_CountsOnce)
{
    givenFile("Rock/a.mp3", "first");
    const Ended run = sync({"--music", pc("Rock"), "--music", pc("Rock/../Rock"), "--quiet"});
    EXPECT_THAT(run.out, HasSubstr("1 copied"));
    EXPECT_THAT(run.out, Not(HasSubstr("copied    ")));
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tMFolder"), "1");
}

TEST_F(SyncTest, DatabaseLost_TakesInWhatLiesOnThePhone)
{
    givenFile("Rock/a.mp3", "first");
    givenFile("Rock/b.mp3", "second");
    (void)sync({"--music", pc("Rock")});
    database().exec("DELETE FROM tMFile; DELETE FROM tMFolder; DELETE FROM tPhone");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("0 copied, 0 updated, 0 removed, 0 unchanged, 0 failed, 2 recorded as found"));
    expectInOrder();
}

TEST_F(SyncTest, FilesOfTheUserOnThePhone_AreNeverTouched)
{
    givenFile("Rock/a.mp3", "mine");
    fs::create_directories(Path(phone("Music/Rock")));
    std::ofstream(Path(phone("Music/Rock/a.mp3"))) << "somebody else's";
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_EQ(phoneFiles().at("Music/Rock/a.mp3"), "somebody else's");
    EXPECT_THAT(phonePaths(), SizeIs(2));
    removeFile("Rock/a.mp3");
    EXPECT_EQ(sync({"--music", pc("Rock"), "--force"}).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a.mp3"));
    EXPECT_THAT(recorded(), IsEmpty());
}

TEST_F(SyncTest, RecordFromElsewhere_OutsideTheCategorysFolder_IsNotFollowed)
{
    givenFile("Rock/a.mp3", "first");
    givenFile("Rock/b.mp3", "second");
    givenFile("precious", "keep me");
    (void)sync({"--music", pc("Rock")});
    database().exec("UPDATE tMFile SET [PhonePath] = '../pc/precious' WHERE [Path] LIKE '%a.mp3'");
    removeFile("Rock/a.mp3");
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_TRUE(fs::exists(Path(pc("precious"))));
    EXPECT_THAT(recorded(), SizeIs(1));
}

}  // namespace
}  // namespace kesta::test
