// kesta why: every reason for which a file or folder is on a phone or is not.
#include "client_fixture.h"

namespace kesta::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class WhyTest : public ClientTest {
protected:
    nlohmann::json why(const std::string& path)
    {
        const Ended run = client({"why", path, "--imei", kImei, "--json"});
        EXPECT_EQ(run.exitCode, 0) << run.err;
        return nlohmann::json::parse(run.out);
    }
    static std::vector<std::string> reasonsOf(const nlohmann::json& answer)
    {
        std::vector<std::string> reasons;
        for (const auto& reason : answer.at("phones").at(0).at("reasons")) {
            reasons.push_back(reason.at("reason").get<std::string>());
        }
        return reasons;
    }
    std::vector<std::string> reasons(const std::string& path) { return reasonsOf(why(path)); }
    bool isOnPhone(const std::string& path) { return why(path).at("phones").at(0).at("on_phone").get<bool>(); }
    std::string text(const std::string& path)
    {
        const Ended run = client({"why", path});
        EXPECT_EQ(run.exitCode, 0) << run.err;
        return run.out;
    }
    void givenSyncedMusic()
    {
        givenFile("Rock/a.mp3", "first");
        ASSERT_EQ(sync({"--name", "Ann's phone", "--music", pc("Rock")}).exitCode, 0);
    }
};

TEST_F(WhyTest, NoPhone_IsSaid)
{
    givenFile("Rock/a.mp3", "first");
    EXPECT_THAT(text(pc("Rock/a.mp3")), HasSubstr("No phone has been synced yet."));
}

TEST_F(WhyTest, UnknownPhone_IsAnError)
{
    const Ended run = client({"why", pc(), "--imei", "999"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("no phone with the IMEI 999 is known"));
}

TEST_F(WhyTest, CopiedFile_IsRecordedAndUnchanged)
{
    givenSyncedMusic();
    const auto answer = why(pc("Rock/../Rock/a.mp3"));
    EXPECT_EQ(answer.at("path"), pc("Rock/a.mp3"));
    EXPECT_EQ(answer.at("on_pc").at("kind"), "file");
    EXPECT_EQ(answer.at("on_pc").at("size"), 5);
    const auto& phone = answer.at("phones").at(0);
    EXPECT_EQ(phone.at("imei"), kImei);
    EXPECT_EQ(phone.at("name"), "Ann's phone");
    EXPECT_EQ(phone.at("on_phone"), true);
    EXPECT_EQ(phone.at("phone_paths"), nlohmann::json::parse(R"(["Music/Rock/a.mp3"])"));
    EXPECT_THAT(reasonsOf(answer), ElementsAre("recorded", "unchanged"));
    const std::string words = text(pc("Rock/a.mp3"));
    EXPECT_THAT(words, HasSubstr("Ann's phone (IMEI 351111): on the phone"));
    EXPECT_THAT(words, HasSubstr("It is on the phone as Music/Rock/a.mp3, recorded in music with the time " +
                                 answer.at("on_pc").at("modified").get<std::string>()));
    EXPECT_THAT(words, HasSubstr("It has not changed since."));
}

TEST_F(WhyTest, ChangedFile_IsCopiedAgain)
{
    givenSyncedMusic();
    changeFile("Rock/a.mp3", "newer");
    EXPECT_THAT(reasons(pc("Rock/a.mp3")), ElementsAre("recorded", "changed"));
    EXPECT_THAT(text(pc("Rock/a.mp3")), HasSubstr("copies it again"));
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("1 updated"));
    EXPECT_THAT(reasons(pc("Rock/a.mp3")), ElementsAre("recorded", "unchanged"));
}

TEST_F(WhyTest, FileOfAnotherSizeWithinTheSecond_IsCopiedAgain)
{
    givenSyncedMusic();
    const fs::path file = Path(pc("Rock/a.mp3"));
    const auto time = fs::last_write_time(file);
    EXPECT_THAT(text(pc("Rock/a.mp3")), HasSubstr("It has not changed since."));
    givenFile("Rock/a.mp3", "the second one");
    fs::last_write_time(file, time);
    EXPECT_THAT(text(pc("Rock/a.mp3")), HasSubstr("It has changed since, within the second of its time"));
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("1 updated"));
    EXPECT_THAT(text(pc("Rock/a.mp3")), HasSubstr("It has not changed since."));
}

TEST_F(WhyTest, FileChangedWithinTheSecond_IsCopiedAgain)
{
    using std::chrono::milliseconds, std::chrono::seconds;
    const fs::path file = Path(pc("Rock/a.mp3"));
    givenFile("Rock/a.mp3", "first");
    const auto second = std::chrono::floor<seconds>(fs::last_write_time(file));
    fs::last_write_time(file, second + milliseconds(200));
    if (fs::last_write_time(file) == second) {
        GTEST_SKIP() << "the C++ library sets whole seconds here";
    }
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    givenFile("Rock/a.mp3", "FIRST");
    fs::last_write_time(file, second + milliseconds(700));
    EXPECT_THAT(text(pc("Rock/a.mp3")), HasSubstr("It has changed since, within the second of its time"));
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("1 updated"));
    EXPECT_THAT(text(pc("Rock/a.mp3")), HasSubstr("It has not changed since."));
}

TEST_F(WhyTest, FileGoneFromThePc_IsRemovedByTheNextSync)
{
    givenSyncedMusic();
    removeFile("Rock/a.mp3");
    EXPECT_THAT(reasons(pc("Rock/a.mp3")), ElementsAre("recorded", "missing_on_pc"));
    EXPECT_TRUE(isOnPhone(pc("Rock/a.mp3")));
    EXPECT_THAT(text(pc("Rock/a.mp3")), HasSubstr("not on the PC"));
    EXPECT_THAT(sync({"--force", "--music", pc("Rock")}).out, HasSubstr("1 removed"));
    EXPECT_THAT(reasons(pc("Rock/a.mp3")), ElementsAre("missing_on_pc"));
    EXPECT_FALSE(isOnPhone(pc("Rock/a.mp3")));
}

TEST_F(WhyTest, FolderInThePlaceOfTheFile_IsSaid)
{
    givenSyncedMusic();
    removeFile("Rock/a.mp3");
    fs::create_directories(Path(pc("Rock/a.mp3")));
    EXPECT_THAT(reasons(pc("Rock/a.mp3")), ElementsAre("recorded", "no_file_on_pc"));
}

TEST_F(WhyTest, NewFileInAChosenFolder_IsNotCopiedYet)
{
    givenSyncedMusic();
    givenFile("Rock/b.mp3", "second");
    EXPECT_THAT(reasons(pc("Rock/b.mp3")), ElementsAre("not_copied_yet"));
    EXPECT_FALSE(isOnPhone(pc("Rock/b.mp3")));
    EXPECT_THAT(text(pc("Rock/b.mp3")), HasSubstr("not on the phone"));
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_TRUE(isOnPhone(pc("Rock/b.mp3")));
}

TEST_F(WhyTest, FileInNoChosenFolder_IsSaid)
{
    givenSyncedMusic();
    givenFile("Rock2/b.mp3", "second");
    EXPECT_THAT(reasons(pc("Rock2/b.mp3")), ElementsAre("in_no_folder"));
    EXPECT_THAT(reasons(pc("nothing")), ElementsAre("missing_on_pc", "in_no_folder"));
    EXPECT_EQ(why(pc("nothing")).at("on_pc").at("kind"), "missing");
}

TEST_F(WhyTest, DeselectedFolder_IsTheReason)
{
    givenSyncedMusic();
    givenFile("Rock/b.mp3", "second");
    ASSERT_EQ(client({"settings", "--imei", kImei, "--deselect", pc("Rock")}).exitCode, 0);
    EXPECT_THAT(reasons(pc("Rock/b.mp3")), ElementsAre("folder_not_selected"));
    EXPECT_THAT(reasons(pc("Rock/a.mp3")), ElementsAre("recorded", "unchanged", "folder_not_selected"));
    EXPECT_THAT(reasons(pc("Rock")), ElementsAre("folder_recorded", "folder_not_selected"));
    EXPECT_THAT(text(pc("Rock/b.mp3")), HasSubstr("kesta settings --imei 351111 --select " + pc("Rock")));
}

TEST_F(WhyTest, DeselectedMainFolder_IsTheReason)
{
    givenSyncedMusic();
    givenFile("Rock/b.mp3", "second");
    ASSERT_EQ(client({"settings", "--imei", kImei, "select.music=no"}).exitCode, 0);
    EXPECT_THAT(reasons(pc("Rock/b.mp3")), ElementsAre("main_folder_not_selected"));
    EXPECT_THAT(reasons(pc("Rock")), ElementsAre("folder_recorded", "main_folder_not_selected"));
    EXPECT_THAT(text(pc("Rock/b.mp3")), HasSubstr("select.music=yes"));
}

TEST_F(WhyTest, FolderMarkedDeleted_IsSaid)
{
    givenSyncedMusic();
    givenFile("Rock/b.mp3", "second");
    database().exec("UPDATE tMFolder SET [Deleted] = 1");
    EXPECT_THAT(reasons(pc("Rock/b.mp3")), ElementsAre("folder_marked_deleted", "not_copied_yet"));
    EXPECT_THAT(reasons(pc("Rock/a.mp3")), ElementsAre("recorded", "unchanged", "folder_marked_deleted"));
    EXPECT_THAT(reasons(pc("Rock")), ElementsAre("folder_recorded", "folder_marked_deleted"));
}

TEST_F(WhyTest, RecordWithoutItsFolder_IsSaid)
{
    givenSyncedMusic();
    database().exec("DELETE FROM tMFolder");
    EXPECT_THAT(reasons(pc("Rock/a.mp3")), ElementsAre("recorded", "unchanged", "folder_unknown"));
}

TEST_F(WhyTest, Folder_TellsStateAndCounts)
{
    givenSyncedMusic();
    givenFile("Rock/b.mp3", "second");
    const auto answer = why(pc("Rock"));
    EXPECT_EQ(answer.at("on_pc").at("kind"), "folder");
    EXPECT_TRUE(answer.at("on_pc").at("size").is_null());
    EXPECT_EQ(answer.at("phones").at(0).at("files_on_phone"), 1);
    EXPECT_THAT(reasonsOf(answer), ElementsAre("folder_recorded"));
    const std::string words = text(pc("Rock"));
    EXPECT_THAT(words, HasSubstr("1 file on the phone"));
    EXPECT_THAT(words, HasSubstr("It is a folder of music of this phone since "));
    EXPECT_THAT(words, HasSubstr(": synced. 1 file counted in it, 1 on the phone."));
    fs::remove_all(Path(pc("Rock")));
    EXPECT_THAT(reasons(pc("Rock")), ElementsAre("folder_recorded", "missing_on_pc"));
}

TEST_F(WhyTest, FolderBelowAndAboveAChosenOne)
{
    givenFile("Rock/Live/a.mp3", "first");
    givenFile("Rock/b.mp3", "second");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    const auto below = why(pc("Rock/Live"));
    EXPECT_THAT(reasonsOf(below), ElementsAre("part_of_folder"));
    EXPECT_EQ(below.at("phones").at(0).at("files_on_phone"), 1);
    const auto above = why(pc());
    EXPECT_THAT(reasonsOf(above), ElementsAre("holds_folder"));
    EXPECT_EQ(above.at("phones").at(0).at("files_on_phone"), 2);
    fs::remove_all(Path(pc("Rock/Live")));
    EXPECT_THAT(reasons(pc("Rock/Live")), ElementsAre("part_of_folder", "missing_on_pc"));
}

TEST_F(WhyTest, InnermostFolder_IsInCharge)
{
    givenFile("Rock/Live/a.mp3", "first");
    ASSERT_EQ(sync({"--music", pc("Rock"), "--music", pc("Rock/Live")}).exitCode, 0);
    ASSERT_EQ(client({"settings", "--imei", kImei, "--deselect", pc("Rock/Live")}).exitCode, 0);
    givenFile("Rock/Live/b.mp3", "second");
    givenFile("Rock/c.mp3", "third");
    EXPECT_THAT(reasons(pc("Rock/Live/b.mp3")), ElementsAre("folder_not_selected"));
    EXPECT_THAT(reasons(pc("Rock/c.mp3")), ElementsAre("not_copied_yet"));
}

TEST_F(WhyTest, SeveralCategories_AreAllNamed)
{
    givenFile("Pics/p.png", "first");
    ASSERT_EQ(sync({"--images", pc("Pics"), "--documents", pc("Pics")}).exitCode, 0);
    const auto answer = why(pc("Pics/p.png"));
    EXPECT_THAT(reasonsOf(answer), ElementsAre("recorded", "unchanged", "recorded", "unchanged"));
    EXPECT_THAT(answer.at("phones").at(0).at("phone_paths"), SizeIs(2));
}

TEST_F(WhyTest, PlaylistsThatNameTheFile_AreListed)
{
    givenFile("Rock/a.mp3", "first");
    givenFile("Jazz/b.mp3", "second");
    givenFile("Lists/Party.m3u8", pc("Rock/a.mp3") + "\n" + pc("Jazz/b.mp3") + "\n");
    givenFile("Lists/Quiet.m3u8", pc("Jazz/b.mp3") + "\n");
    ASSERT_EQ(sync({"--music", pc("Rock"), "--playlists", pc("Lists")}).exitCode, 0);
    EXPECT_THAT(reasons(pc("Rock/a.mp3")), ElementsAre("recorded", "unchanged", "in_playlist"));
    const auto answer = why(pc("Jazz/b.mp3"));
    EXPECT_THAT(reasonsOf(answer), ElementsAre("in_playlist", "in_playlist", "copied_for_playlist", "unchanged"));
    const auto& phone = answer.at("phones").at(0);
    EXPECT_EQ(phone.at("on_phone"), true);
    EXPECT_EQ(phone.at("playlists"), nlohmann::json::parse(R"([{"name": "Party", "state": "on the phone"},
                                                               {"name": "Quiet", "state": "on the phone"}])"));
    EXPECT_THAT(text(pc("Jazz/b.mp3")), HasSubstr("The playlist Quiet names it (on the phone)."));
    ASSERT_EQ(client({"settings", "--imei", kImei, "select.music=no"}).exitCode, 0);
    EXPECT_THAT(reasons(pc("Jazz/b.mp3")), Contains("main_folder_not_selected"));
}

TEST_F(WhyTest, ContactAndCalendarFiles_AreCounted)
{
    givenFile("c.vcf",
              "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:1\r\nFN:Ann\r\nN:;Ann;;;\r\nEND:VCARD\r\n"
              "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:2\r\nFN:Ben\r\nN:;Ben;;;\r\nEND:VCARD\r\n");
    ASSERT_EQ(sync({"--contacts", pc("c.vcf")}).exitCode, 0);
    EXPECT_THAT(reasons(pc("c.vcf")), ElementsAre("entries_in_store"));
    EXPECT_THAT(text(pc("c.vcf")), HasSubstr("The database holds 2 entries of it in contacts"));
    EXPECT_THAT(text(pc("c.vcf")), HasSubstr("2 entries on the phone"));
}

TEST_F(WhyTest, BackupOfThePhone_IsNamed)
{
    givenSyncedMusic();
    givenFile("b.zip", "archive");
    EXPECT_THAT(reasons(pc("b.zip")), ElementsAre("in_no_folder"));
    database().exec(
        "CREATE TABLE tBackups ([bcID] INTEGER PRIMARY KEY, [phoneID], [Path], [PhonePath], [Size], "
        "[ModifiedTime]); INSERT INTO tBackups SELECT 1, [ID], '" +
        pc("b.zip") + "', '', 7, '2026-01-31 12:00:00' FROM tPhone");
    EXPECT_THAT(reasons(pc("b.zip")), ElementsAre("backup"));
    EXPECT_THAT(text(pc("b.zip")), HasSubstr("a backup of this phone, made 2026-01-31 12:00:00"));
}

TEST_F(WhyTest, WithoutImei_AllPhonesAnswer)
{
    givenSyncedMusic();
    fs::create_directories(work() / "other");
    fs::create_directories(Path(pc("Other")));
    ASSERT_EQ(
        client({"sync", "--phone", Utf8(work() / "other"), "--imei", "352222", "--name", "Ben", "--music", pc("Other")})
            .exitCode,
        0);
    const std::string words = text(pc("Rock/a.mp3"));
    EXPECT_THAT(words, HasSubstr("Ann's phone (IMEI 351111): on the phone"));
    EXPECT_THAT(words, HasSubstr("Ben (IMEI 352222): not on the phone"));
    const auto all = nlohmann::json::parse(client({"why", pc("Rock/a.mp3"), "--json"}).out);
    EXPECT_THAT(all.at("phones"), SizeIs(2));
    EXPECT_THAT(why(pc("Rock/a.mp3")).at("phones"), SizeIs(1));
}

TEST_F(WhyTest, NothingIsChanged)
{
    givenSyncedMusic();
    const std::string before = database().text("SELECT * FROM tMFile, tMFolder, tPhone");
    (void)why(pc("Rock/a.mp3"));
    (void)why(pc("gone"));
    EXPECT_EQ(database().text("SELECT * FROM tMFile, tMFolder, tPhone"), before);
}

TEST_F(WhyTest, PathThatIsMissing_IsAUsageError)
{
    EXPECT_EQ(client({"why"}).exitCode, 2);
    EXPECT_EQ(client({"why", "a", "b"}).exitCode, 2);
}

}  // namespace
}  // namespace kesta::test
