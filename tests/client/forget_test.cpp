// kesta forget: off the phone and out of the database, though the PC still has it.
#include "pim_fixture.h"

namespace kesta::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

using ForgetTest = PimTest;

TEST_F(ForgetTest, Folder_GoesFromPhoneAndDatabaseAndIsNotSyncedAgain)
{
    for (const char* name : {"Rock/a.mp3", "Rock/b.mp3", "Pop/c.mp3"}) {
        givenFile(name, name);
    }
    ASSERT_EQ(sync({"--music", pc("Rock"), "--music", pc("Pop")}).exitCode, 0);
    const Ended dry = client({"forget", pc("Pop"), "--dry-run"});
    EXPECT_EQ(dry.exitCode, 0) << dry.err;
    EXPECT_THAT(dry.out, HasSubstr("remove    Music/Pop/c.mp3"));
    EXPECT_EQ(phonePaths().size(), 3u);
    const Ended run = client({"forget", pc("Pop")});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("0 updated, 1 removed"));
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a.mp3", "Music/Rock/b.mp3"));
    EXPECT_EQ(recorded().size(), 2u);
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tMFolder"), "1");
    EXPECT_TRUE(fs::exists(Path(pc("Pop/c.mp3"))));
    EXPECT_EQ(trash().size(), 1u);
    EXPECT_EQ(client({"sync"}).exitCode, 0);
    EXPECT_EQ(phonePaths().size(), 2u);
}

TEST_F(ForgetTest, MostOfACategory_GoesByForceOnly)
{
    givenFile("Rock/a.mp3", "a");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    const Ended deferred = client({"forget", pc("Rock")});
    EXPECT_EQ(deferred.exitCode, 4);
    EXPECT_EQ(phonePaths().size(), 1u);
    EXPECT_THAT(client({"sync"}).out, HasSubstr("1 unchanged"));
    EXPECT_EQ(client({"forget", pc("Rock"), "--force"}).exitCode, 0);
    EXPECT_TRUE(phonePaths().empty());
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tMFolder"), "0");
}

TEST_F(ForgetTest, WhatARuleHasLeftOut_GoesOneByOne)
{
    for (const char* name : {"Rock/a.wav", "Rock/b.mp3", "Rock/c.mp3"}) {
        givenFile(name, name);
    }
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    ASSERT_EQ(sync({"--music", pc("Rock"), "--exclude", "*.wav"}).exitCode, 0);
    EXPECT_EQ(phonePaths().size(), 3u);
    EXPECT_EQ(client({"forget", pc("Rock/a.wav")}).exitCode, 0);
    EXPECT_EQ(client({"sync"}).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/b.mp3", "Music/Rock/c.mp3"));
}

TEST_F(ForgetTest, Playlist_GoesWithTheMusicThatOnlyItHasBrought)
{
    for (const char* name : {"Extra/a.mp3", "Extra/b.mp3", "Extra/c.mp3"}) {
        givenFile(name, name);
    }
    givenFile("lists/One.m3u8", "../Extra/a.mp3\n../Extra/b.mp3\n");
    givenFile("lists/Two.m3u8", "../Extra/b.mp3\n");
    givenFile("lists/Three.m3u8", "../Extra/c.mp3\n");
    ASSERT_EQ(sync({"--playlists", pc("lists")}).exitCode, 0);
    const Ended run = client({"forget", "One"});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(phonePaths(), ElementsAre("Playlists/Media/Extra/b.mp3", "Playlists/Media/Extra/c.mp3",
                                          "Playlists/Three.m3u8", "Playlists/Two.m3u8"));
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPFolder"), "2");
}

TEST_F(ForgetTest, AddressBook_GoesWithItsEntries)
{
    givenFile("friends.vcf", "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:a\r\nFN:Ann\r\nN:;Ann;;;\r\nEND:VCARD\r\n");
    givenFile("work.vcf", "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:b\r\nFN:Ben\r\nN:;Ben;;;\r\nEND:VCARD\r\n");
    ASSERT_EQ(syncContacts({"friends.vcf", "work.vcf"}).exitCode, 0);
    EXPECT_EQ(client({"forget", pc("work.vcf")}).exitCode, 4);
    const Ended run = client({"forget", pc("work.vcf"), "--force"});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(phonePaths(), ElementsAre("Contacts/friends.vcf"));
    EXPECT_THAT(client({"sync"}).out, HasSubstr("Contacts: 0 added, 0 updated, 0 removed, 1 unchanged"));
    EXPECT_THAT(phonePaths(), ElementsAre("Contacts/friends.vcf"));
}

TEST_F(ForgetTest, WhatIsNotKnown_IsAFailure)
{
    givenFile("Rock/a.mp3", "a");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    const Ended run = client({"forget", pc("Jazz")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.out + run.err, HasSubstr("is recorded for this phone"));
    EXPECT_EQ(client({"forget"}).exitCode, 2);
    EXPECT_EQ(client({"forget", "x", "--imei", "352222"}).exitCode, 2);
}

TEST_F(ForgetTest, Phone_IsClearedAndHiddenUntilItIsSyncedAgain)
{
    givenFile("Rock/a.mp3", "a");
    givenFile("Extra/b.mp3", "b");
    givenFile("lists/One.m3u8", "../Extra/b.mp3\n");
    ASSERT_EQ(sync({"--music", pc("Rock"), "--playlists", pc("lists")}).exitCode, 0);
    EXPECT_EQ(client({"forget", "--imei", kImei, "--dry-run"}).exitCode, 0);
    EXPECT_EQ(client({"forget", "--imei", kImei}).exitCode, 4);
    EXPECT_EQ(recorded().size(), 1u);
    const Ended run = client({"forget", "--imei", kImei, "--force"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tMFile"), "0");
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPFolder"), "0");
    EXPECT_THAT(client({"status"}).out, Not(HasSubstr(kImei)));
    EXPECT_EQ(phonePaths().size(), 3u);
    EXPECT_EQ(client({"sync"}).exitCode, 2);
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_THAT(client({"status"}).out, HasSubstr(kImei));
    EXPECT_EQ(recorded().size(), 1u);
}

}  // namespace
}  // namespace kesta::test
