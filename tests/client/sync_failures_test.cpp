// What cannot be read, removed or written.
#include "client_fixture.h"

#if !defined(_WIN32)
#include <sys/mount.h>
#include <unistd.h>
#endif

namespace kesta::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

using SyncFailuresTest = ClientTest;

TEST_F(SyncFailuresTest, MissingFolder_IsNotTakenForEmpty)
{
    givenFile("Rock/a.mp3", "first");
    givenFile("Jazz/b.mp3", "second");
    (void)sync({"--music", pc("Rock"), "--music", pc("Jazz")});
    fs::rename(Path(pc("Rock")), Path(pc("away")));
    givenFile("Jazz/c.mp3", "third");
    const Ended run = sync({"--music", pc("Rock"), "--music", pc("Jazz"), "--force"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("nothing of it is removed"));
    EXPECT_THAT(run.out, HasSubstr("1 copied, 0 updated, 0 removed, 1 unchanged, 1 failed"));
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Jazz/b.mp3", "Music/Jazz/c.mp3", "Music/Rock/a.mp3"));
    EXPECT_EQ(database().text("SELECT [ErrCode] FROM tPhone"), "3");
    EXPECT_EQ(database().text("SELECT [Count], [Deleted] FROM tMFolder WHERE [Path] LIKE '%Rock'"), "1|0");
}

TEST_F(SyncFailuresTest, RemovingMoreThanHalf_NeedsForce)
{
    for (const char* name : {"a", "b", "c", "d"}) {
        givenFile(std::string("Rock/") + name, name);
    }
    givenFile("Pictures/p1", "1");
    givenFile("Pictures/p2", "2");
    (void)sync({"--music", pc("Rock"), "--images", pc("Pictures")});
    removeFile("Rock/a");
    removeFile("Rock/b");
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0) << "half is not more than half";
    givenFile("Rock/e", "new");
    removeFile("Rock/c");
    removeFile("Rock/d");
    removeFile("Pictures/p1");
    const Ended run = sync({"--music", pc("Rock"), "--images", pc("Pictures")});
    EXPECT_EQ(run.exitCode, 4);
    EXPECT_THAT(run.out, HasSubstr("Deferred: 2 files"));
    EXPECT_THAT(run.out, HasSubstr("1 copied, 0 updated, 1 removed"));
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/c", "Music/Rock/d", "Music/Rock/e", "Pictures/Pictures/p2"));
    EXPECT_EQ(sync({"--music", pc("Rock"), "--force"}).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/e", "Pictures/Pictures/p2"));
}

TEST_F(SyncFailuresTest, EmptyMountPointInAFoldersPlace_RemovesNothing)
{
    for (const char* name : {"a", "b", "c"}) {
        givenFile(std::string("Rock/") + name, name);
    }
    (void)sync({"--music", pc("Rock")});
    for (const char* name : {"a", "b", "c"}) {
        removeFile(std::string("Rock/") + name);
    }
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 4);
    EXPECT_THAT(phonePaths(), SizeIs(3));
}

TEST_F(SyncFailuresTest, PlaceTakenByAFolder_GetsAnotherPlace)
{
    givenFile("Rock/a.mp3", "first");
    (void)sync({"--music", pc("Rock")});
    fs::remove(Path(phone("Music/Rock/a.mp3")));
    fs::create_directories(Path(phone("Music/Rock/a.mp3/inside")));
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    expectInOrder();
    EXPECT_TRUE(fs::exists(Path(phone("Music/Rock/a.mp3/inside"))));
}

TEST_F(SyncFailuresTest, DatabaseOfAnotherVersionOrReadOnly_IsReported)
{
    givenFile("Rock/a.mp3", "first");
    (void)sync({"--music", pc("Rock")});
    fs::permissions(data().databasePath(), fs::perms::owner_read | fs::perms::group_read);
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 8);
    EXPECT_THAT(run.err, HasSubstr("read-only"));
    EXPECT_EQ(client({"status"}).exitCode, 8);
    fs::permissions(data().databasePath(), fs::perms::owner_all);
}

TEST_F(SyncFailuresTest, RecordThatTheDatabaseRefuse_LeavesNothingOnThePhone)
{
    givenFile("Rock/a.mp3", "first");
    (void)sync({"--music", pc("Rock")});
    database().exec("CREATE TRIGGER no BEFORE INSERT ON tMFile BEGIN SELECT RAISE(ABORT, 'no'); END");
    givenFile("Rock/b.mp3", "second");
    givenFile("Rock/c.mp3", "third");
    const Ended run = sync({"--music", pc("Rock")});
    // A refused row looks like one that is there already.
    EXPECT_EQ(run.exitCode, 8) << run.out;
    EXPECT_THAT(run.out, HasSubstr("b.mp3: it cannot be recorded in the database"));
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a.mp3"));
    expectInOrder();
    database().exec("DROP TRIGGER no");
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    expectInOrder();
}

TEST_F(SyncFailuresTest, DatabaseWithoutTheTable_StopsTheRun)
{
    givenFile("Rock/a.mp3", "first");
    (void)sync({"--music", pc("Rock")});
    database().exec("DROP TABLE tMFolder");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 8);
    EXPECT_THAT(run.out + run.err, HasSubstr("DB_MUSIC_GetFolders failed"));
}

#if !defined(_WIN32)

TEST_F(SyncFailuresTest, UnreadableSubfolder_KeepsEverythingOfTheFolder)
{
    for (const char* name : {"a", "b", "c", "sub/d"}) {
        givenFile(std::string("Rock/") + name, name);
    }
    (void)sync({"--music", pc("Rock")});
    removeFile("Rock/a");
    givenFile("Rock/new", "new");
    fs::permissions(pc("Rock/sub"), fs::perms::none);
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("Rock/sub: the folder cannot be read: Permission denied"));
    EXPECT_THAT(run.out, HasSubstr("1 copied, 0 updated, 0 removed"));
    EXPECT_THAT(phonePaths(), SizeIs(5));
    EXPECT_EQ(database().text("SELECT [Sized] FROM tMFolder"), "0");
    fs::permissions(pc("Rock/sub"), fs::perms::owner_all);
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    expectInOrder();
}

TEST_F(SyncFailuresTest, UnreadableFile_IsReportedAndTheRestGoesOn)
{
    for (const char* name : {"a", "b", "c"}) {
        givenFile(std::string("Rock/") + name, name);
    }
    fs::permissions(pc("Rock/b"), fs::perms::none);
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("Rock/b: it cannot be read: Permission denied"));
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a", "Music/Rock/c"));
    EXPECT_THAT(recorded(), SizeIs(2));
}

TEST_F(SyncFailuresTest, PhoneWithoutPermission_IsRefusedBeforeAnythingChanges)
{
    givenFile("Rock/a", "a");
    fs::permissions(phone(), fs::perms::owner_read | fs::perms::owner_exec);
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 6);
    EXPECT_THAT(run.err, HasSubstr("the phone cannot be written"));
    fs::permissions(phone(), fs::perms::owner_all);
    EXPECT_TRUE(fs::is_empty(phone()));
}

TEST_F(SyncFailuresTest, LinkOnThePhone_LeadsNobodyBackToThePc)
{
    givenFile("Rock/a", "a");
    givenFile("Rock/b", "b");
    givenFile("Rock/c", "c");
    (void)sync({"--music", pc("Rock")});
    fs::remove_all(phone("Music/Rock"));
    fs::create_directory_symlink(pc("Rock"), phone("Music/Rock"));
    givenFile("keep/a", "a");
    removeFile("Rock/c");
    fs::copy_file(pc("keep/a"), pc("Rock/d"));
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("'Music/Rock' on the phone is no folder"));
    for (const char* name : {"a", "b", "d"}) {
        EXPECT_TRUE(fs::exists(pc(std::string("Rock/") + name))) << name;
    }
}

// A file system of its own in the phone's place, where this user may mount one.
class MountedPhone {
public:
    explicit MountedPhone(std::string path) : path_(std::move(path))
    {
        mounted_ = mount("none", path_.c_str(), "tmpfs", 0, "size=1m") == 0;
    }
    ~MountedPhone()
    {
        if (mounted_) {
            (void)umount2(path_.c_str(), MNT_DETACH);
        }
    }
    MountedPhone(const MountedPhone&) = delete;
    MountedPhone& operator=(const MountedPhone&) = delete;
    [[nodiscard]] bool mounted() const { return mounted_; }
    [[nodiscard]] bool makeReadOnly() const
    {
        return mount("none", path_.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }

private:
    std::string path_;
    bool mounted_ = false;
};

TEST_F(SyncFailuresTest, FullPhone_StopsWithTheDatabaseRight)
{
    const MountedPhone mounted(phone());
    if (!mounted.mounted()) {
        GTEST_SKIP() << "needs the right to mount";
    }
    for (const char* name : {"a", "b", "c", "d", "e"}) {
        givenFile(std::string("Rock/") + name, std::string(300'000, *name));
    }
    const Ended refused = sync({"--music", pc("Rock")});
    EXPECT_EQ(refused.exitCode, 5) << refused.out << refused.err;
    EXPECT_THAT(refused.out, HasSubstr("the phone has not enough room: needs 1.5 MB"));
    EXPECT_THAT(phonePaths(), SizeIs(0));
    const Ended run = sync({"--music", pc("Rock"), "--force"});
    EXPECT_EQ(run.exitCode, 5) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("Stopped: the phone is full"));
    EXPECT_THAT(run.out, HasSubstr("3 copied"));
    EXPECT_THAT(phonePaths(), SizeIs(3));
    expectInOrder();
    EXPECT_EQ(status().at("last_error").at("code"), 5);
    // Removals come first, and make room.
    removeFile("Rock/a");
    const Ended next = sync({"--music", pc("Rock"), "--force"});
    EXPECT_EQ(next.exitCode, 5);
    EXPECT_THAT(next.out, HasSubstr("1 copied, 0 updated, 1 removed, 2 unchanged, 1 failed"));
    expectInOrder();
}

TEST_F(SyncFailuresTest, ReadOnlyPhone_IsRefused)
{
    const MountedPhone mounted(phone());
    if (!mounted.mounted()) {
        GTEST_SKIP() << "needs the right to mount";
    }
    givenFile("Rock/a", "a");
    ASSERT_TRUE(mounted.makeReadOnly());
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 6);
    EXPECT_THAT(run.err, HasSubstr("Read-only file system"));
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPhone"), "0");
    EXPECT_EQ(sync({"--music", pc("Rock"), "--dry-run"}).exitCode, 0);
}

#endif

}  // namespace
}  // namespace kesta::test
