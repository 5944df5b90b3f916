// A sync that is given less than the one before.
#include "client_fixture.h"

namespace kesta::test {
namespace {

using testing::HasSubstr;
using testing::Not;

using SyncRemembered = ClientTest;

TEST_F(SyncRemembered, SyncAlone_DoesItAllWhereThePhoneWasLastSeen)
{
    givenFile("Rock/a.mp3", "a");
    givenFile("Papers/a.txt", "a");
    givenFile("lists/One.m3u8", "../Rock/a.mp3\n");
    givenFile("pages.html", "<DL><DT><A HREF=\"http://a.example/\">A</A></DL>");
    givenFile("friends.vcf", "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:1\r\nFN:Ann\r\nN:;Ann;;;\r\nEND:VCARD\r\n");
    fs::create_directory(Path(pc("backups")));
    ASSERT_EQ(sync({"--music", pc("Rock"), "--playlists", pc("lists"), "--bookmarks", pc("pages.html")}).exitCode, 0);
    ASSERT_EQ(sync({"--documents", pc("Papers"), "--contacts", pc("friends.vcf"), "--backup", pc("backups")}).exitCode,
              0);
    givenFile("Rock/b.mp3", "b");
    givenFile("Papers/b.txt", "b");
    const Ended run = client({"sync"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("Summary: 2 copied, 0 updated, 0 removed, 2 unchanged"));
    EXPECT_THAT(run.out, HasSubstr("Playlists: 0 added, 0 updated, 0 removed, 1 unchanged"));
    EXPECT_THAT(run.out, HasSubstr("Bookmarks: 0 added, 0 updated, 0 removed, 1 unchanged"));
    EXPECT_THAT(run.out, HasSubstr("Contacts: 0 added, 0 updated, 0 removed, 1 unchanged"));
    EXPECT_THAT(run.out, HasSubstr("Backup    "));
}

TEST_F(SyncRemembered, PhoneAlone_DoesTheSame)
{
    givenFile("Rock/a.mp3", "a");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    givenFile("Rock/b.mp3", "b");
    EXPECT_THAT(client({"sync", "--phone", phone()}).out, HasSubstr("Summary: 1 copied"));
}

TEST_F(SyncRemembered, WhatIsGiven_IsAllThatIsDoneThisTime)
{
    givenFile("Rock/a.mp3", "a");
    givenFile("Papers/a.txt", "a");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    givenFile("Rock/b.mp3", "b");
    EXPECT_THAT(sync({"--documents", pc("Papers")}).out, HasSubstr("Summary: 1 copied"));
}

TEST_F(SyncRemembered, NoSourceAtAll_IsAMistake)
{
    const Ended run = sync({});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("there is nothing to sync"));
    EXPECT_FALSE(fs::exists(Path(phone(".kesta-phone"))));
    const Ended alone = client({"sync"});
    EXPECT_EQ(alone.exitCode, 2);
    EXPECT_THAT(alone.err, HasSubstr("no phone has been synced from here yet: give --phone DIR"));
}

TEST_F(SyncRemembered, PhoneThatIsNotThere_IsNamed)
{
    givenFile("Rock/a.mp3", "a");
    ASSERT_EQ(sync({"--music", pc("Rock"), "--name", "Ann's phone"}).exitCode, 0);
    fs::remove(Path(phone(".kesta-phone")));
    const Ended run = client({"sync"});
    EXPECT_EQ(run.exitCode, 10);
    EXPECT_THAT(run.err, HasSubstr("Ann's phone (351111), last seen in "));
}

TEST_F(SyncRemembered, SeveralPhones_AreSyncedOneAfterTheOther)
{
    givenFile("Rock/a.mp3", "a");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    const std::string other = pc("../other");
    fs::create_directory(Path(other));
    ASSERT_EQ(client({"sync", "--phone", other, "--imei", "352222", "--music", pc("Rock")}).exitCode, 0);
    givenFile("Rock/b.mp3", "b");
    EXPECT_EQ(client({"sync"}).exitCode, 0);
    EXPECT_TRUE(fs::exists(Path(phone("Music/Rock/b.mp3"))));
    EXPECT_TRUE(fs::exists(Path(other + "/Music/Rock/b.mp3")));
    givenFile("Rock/c.mp3", "c");
    EXPECT_EQ(client({"sync", "--imei", "352222"}).exitCode, 0);
    EXPECT_FALSE(fs::exists(Path(phone("Music/Rock/c.mp3"))));
    EXPECT_TRUE(fs::exists(Path(other + "/Music/Rock/c.mp3")));
}

TEST_F(SyncRemembered, DryRun_RemembersNothing)
{
    givenFile("Rock/a.mp3", "a");
    givenFile("Pop/a.mp3", "a");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    ASSERT_EQ(sync({"--music", pc("Pop"), "--dry-run"}).exitCode, 0);
    EXPECT_THAT(client({"sync"}).out, HasSubstr("Summary: 0 copied, 0 updated, 0 removed, 1 unchanged"));
}

TEST_F(SyncRemembered, Settings_ShowAndChangeWhatIsRemembered)
{
    givenFile("Rock/a.mp3", "a");
    givenFile("Pop/b.mp3", "b");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    const std::string rock = Utf8(fs::canonical(Path(pc("Rock"))));
    EXPECT_THAT(client({"settings", "--imei", kImei}).out, HasSubstr("--music                     " + rock + "\n"));
    const Ended change = client(
        {"settings", "--imei", kImei, "--music", pc("Pop"), "--drop", pc("Rock"), "--exclude", "*.wav", "--json"});
    EXPECT_EQ(change.exitCode, 0);
    const auto remembered = nlohmann::json::parse(change.out).at("remembered");
    EXPECT_EQ(remembered.at("music"), nlohmann::json({Utf8(fs::canonical(Path(pc("Pop"))))}));
    EXPECT_EQ(remembered.at("rules"), nlohmann::json::parse(R"([{"exclude": "*.wav"}])"));
    EXPECT_THAT(client({"sync"}).out, HasSubstr("Summary: 1 copied"));
    EXPECT_EQ(client({"settings", "--imei", kImei, "--drop", pc("Rock")}).exitCode, 1);
}

TEST_F(SyncRemembered, DamagedState_IsNotOverwritten)
{
    givenFile("Rock/a.mp3", "a");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    const fs::path state = note("sync of 351111.json");
    std::ofstream(state) << "{";
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("what was given for this phone before cannot be read"));
    EXPECT_EQ(fs::file_size(state), 1u);
    EXPECT_EQ(client({"settings", "--imei", kImei}).exitCode, 1);
}

}  // namespace
}  // namespace kesta::test
