// kesta restore --backup: what archives hold, and how it comes back.
#include "client_fixture.h"
#include "stages/backup/zip_writer.h"

namespace kesta::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

class RestoreArchiveTest : public ClientTest {
protected:
    void givenBackup()
    {
        givenFile("Rock/a.mp3", "first");
        givenFile("Rock/Live/b.mp3", "second");
        fs::create_directories(folder());
        const Ended run = sync({"--music", pc("Rock"), "--name", "Ann", "--backup", Utf8(folder())});
        ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
    }
    [[nodiscard]] fs::path folder() const { return work() / "backups"; }
    Ended restore(std::vector<std::string> more = {})
    {
        more.insert(more.begin(), {"restore", "--phone", phone(), "--backup", Utf8(folder())});
        return client(more);
    }
    [[nodiscard]] std::vector<fs::path> archives() const
    {
        std::vector<fs::path> paths;
        for (const auto& entry : fs::directory_iterator(folder())) {
            paths.push_back(entry.path());
        }
        return paths;
    }
    /// With the day before that of the first one.
    void givenOlderArchive(const std::string& name, const std::string& contents)
    {
        ZipWriter zip;
        ASSERT_TRUE(zip.create(Utf8(folder() / "Ann-351111-2020-01-01-000000.zip")).ok());
        ASSERT_TRUE(zip.beginFile(name, {1'500'000'000, 0}, contents.size()).ok());
        ASSERT_TRUE(zip.write(std::as_bytes(std::span(contents))).ok());
        ASSERT_TRUE(zip.endFile().ok());
        ASSERT_TRUE(zip.finish().ok());
    }
};

TEST_F(RestoreArchiveTest, Archives_AreListed)
{
    givenBackup();
    givenOlderArchive("Music/old.mp3", "old");
    std::ofstream(folder() / "Ben-4711-2020-01-01-000000.zip") << "another phone's";
    const Ended all = restore();
    EXPECT_EQ(all.exitCode, 0) << all.err;
    EXPECT_THAT(all.out, AllOf(HasSubstr("2020-01-01"), HasSubstr("Ann-351111-"), Not(HasSubstr("Ben"))));
    const Ended one =
        client({"restore", "--phone", phone(), "--backup", Utf8(folder() / "Ann-351111-2020-01-01-000000.zip")});
    EXPECT_EQ(one.exitCode, 0) << one.err;
    EXPECT_THAT(one.out, AllOf(HasSubstr("3 B  Music/old.mp3"), HasSubstr("1 file.")));
}

TEST_F(RestoreArchiveTest, WithoutAnything_TrashAndArchivesOfThePhoneInPlaceAreListed)
{
    givenBackup();
    removeFile("Rock/a.mp3");
    ASSERT_EQ(client({"sync", "--force"}).exitCode, 0);
    const Ended all = client({"restore"});
    EXPECT_EQ(all.exitCode, 0) << all.err;
    EXPECT_THAT(all.out, AllOf(HasSubstr("Music/Rock/a.mp3"), HasSubstr("Archives of backups in " + Utf8(folder())),
                               HasSubstr("Ann-351111-")));
    fs::remove_all(folder());
    EXPECT_THAT(client({"restore", "--imei", "351111"}).out, HasSubstr("Music/Rock/a.mp3"));
    EXPECT_EQ(client({"restore", "--imei", "4711"}).exitCode, 2);
}

TEST_F(RestoreArchiveTest, LostFile_ComesBack)
{
    givenBackup();
    const auto time = fs::last_write_time(Path(phone("Music/Rock/a.mp3")));
    fs::remove(Path(phone("Music/Rock/a.mp3")));
    const Ended preview = restore({"Music/Rock", "--dry-run"});
    EXPECT_THAT(preview.out, HasSubstr("restore   Music/Rock/a.mp3"));
    EXPECT_FALSE(phoneFiles().contains("Music/Rock/a.mp3"));

    const Ended run = restore({"Music/Rock"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out,
                AllOf(HasSubstr("restored  Music/Rock/a.mp3"), HasSubstr("1 file on the phone as in the archive")));
    EXPECT_EQ(phoneFiles().at("Music/Rock/a.mp3"), "first");
    const auto difference = fs::last_write_time(Path(phone("Music/Rock/a.mp3"))) - time;
    EXPECT_LT(std::chrono::abs(difference), std::chrono::seconds(3));
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("0 copied, 0 updated, 0 removed, 2 unchanged"));
    expectInOrder();
}

TEST_F(RestoreArchiveTest, WhatLiesThereByNow_StaysBesideIt)
{
    givenBackup();
    std::ofstream(Path(phone("Music/Rock/a.mp3")), std::ios::binary) << "something else by now";
    const Ended run = restore({"--all"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(phoneFiles().at("Music/Rock/a.mp3"), "something else by now");
    EXPECT_THAT(phoneFiles(), SizeIs(3));
    EXPECT_THAT(ownFiles(), testing::IsEmpty());
}

TEST_F(RestoreArchiveTest, OfEachPath_TheLatestComesBack)
{
    givenBackup();
    givenOlderArchive("Music/Rock/a.mp3", "of 2020");
    fs::remove_all(Path(phone("Music")));
    EXPECT_EQ(restore({"Music/Rock/a.mp3"}).exitCode, 0);
    EXPECT_EQ(phoneFiles().at("Music/Rock/a.mp3"), "first");
    fs::remove_all(Path(phone("Music")));
    EXPECT_EQ(restore({"--day", "2020-01-01"}).exitCode, 0);
    EXPECT_EQ(phoneFiles().at("Music/Rock/a.mp3"), "of 2020");
    EXPECT_EQ(restore({"Music/never"}).exitCode, 1);
}

TEST_F(RestoreArchiveTest, NamesThatLeadElsewhere_AreRefused)
{
    givenBackup();
    for (const char* name :
         {"../escaped.txt", "Music/../../escaped.txt", "/escaped.txt", ".kesta-phone", "Music\\x.mp3"}) {
        fs::remove(folder() / "Ann-351111-2020-01-01-000000.zip");
        givenOlderArchive(name, "bad");
        const Ended run = restore({"--day", "2020-01-01"});
        EXPECT_EQ(run.exitCode, 3) << name << run.out;
        EXPECT_THAT(run.out, HasSubstr("failed")) << name;
    }
    EXPECT_FALSE(fs::exists(work() / "escaped.txt"));
    EXPECT_THAT(phoneFiles(), SizeIs(2));
}

TEST_F(RestoreArchiveTest, DamagedArchive_IsSaid)
{
    givenBackup();
    std::ofstream(archives()[0], std::ios::binary | std::ios::trunc) << "no archive";
    const Ended run = restore({"--all"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("it is not a ZIP archive, or damaged"));
    EXPECT_THAT(restore().out, HasSubstr("it is not a ZIP archive, or damaged"));
    EXPECT_EQ(client({"restore", "--phone", phone(), "--backup", Utf8(work() / "nowhere")}).exitCode, 1);
}

}  // namespace
}  // namespace kesta::test
