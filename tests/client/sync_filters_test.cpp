// What is left out of a sync, by kind and by rule.
#include "client_fixture.h"

namespace kesta::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

using SyncFilters = ClientTest;

TEST_F(SyncFilters, OtherKindsAndJunk_StayOnThePcAndAreCounted)
{
    givenFile("Rock/a.mp3", "a");
    givenFile("Rock/cover.jpg", "c");
    givenFile("Rock/notes.txt", "n");
    givenFile("Rock/Thumbs.db", "t");
    givenFile("Rock/b.mp3.part", "p");
    givenFile("Rock/.git/config", "g");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a.mp3"));
    EXPECT_THAT(run.out, HasSubstr("Left out of Music: 2 of other kinds, 3 as junk\n"));
    EXPECT_THAT(run.out, HasSubstr("2 files of other kinds left out"));
}

TEST_F(SyncFilters, Documents_TakeAnyKind)
{
    givenFile("Papers/a.mp3", "a");
    givenFile("Papers/b.xyz", "b");
    EXPECT_EQ(sync({"--documents", pc("Papers")}).exitCode, 0);
    EXPECT_EQ(phonePaths().size(), 2u);
}

TEST_F(SyncFilters, ExcludeAndInclude_AreRemembered)
{
    givenFile("Rock/a.mp3", "a");
    givenFile("Rock/b.wav", "b");
    givenFile("Rock/cover.jpg", "c");
    givenFile("Rock/Live/d.mp3", "d");
    const Ended first =
        sync({"--music", pc("Rock"), "--exclude", "*.wav", "--exclude", "Live", "--include", "cover.*"});
    EXPECT_EQ(first.exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a.mp3", "Music/Rock/cover.jpg"));
    EXPECT_THAT(first.out, HasSubstr("Left out of Music: 2 by rules\n"));
    givenFile("Rock/e.wav", "e");
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_EQ(phonePaths().size(), 2u);
    EXPECT_THAT(client({"settings", "--imei", kImei}).out, HasSubstr("--exclude                   *.wav\n"));
    EXPECT_EQ(client({"settings", "--imei", kImei, "--drop", "*.wav"}).exitCode, 0);
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_EQ(phonePaths().size(), 4u);
}

TEST_F(SyncFilters, IgnoreFile_KeepsItsFolderFromGoing)
{
    givenFile("Rock/a.mp3", "a");
    givenFile("Rock/Live/.kestaignore", "*\n!wanted.mp3\n");
    givenFile("Rock/Live/b.mp3", "b");
    givenFile("Rock/Live/wanted.mp3", "w");
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/Live/wanted.mp3", "Music/Rock/a.mp3"));
}

TEST_F(SyncFilters, WhatWasSyncedBeforeARule_Stays)
{
    for (const char* name : {"Rock/a.wav", "Rock/b.wav", "Rock/c.mp3"}) {
        givenFile(name, name);
    }
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    changeFile("Rock/a.wav", "changed by now");
    removeFile("Rock/b.wav");
    const Ended run = sync({"--music", pc("Rock"), "--exclude", "*.wav"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("0 copied, 0 updated, 0 removed, 1 unchanged"));
    EXPECT_EQ(phoneFiles().at("Music/Rock/a.wav"), "Rock/a.wav");
    EXPECT_EQ(phoneFiles().at("Music/Rock/b.wav"), "Rock/b.wav");
    EXPECT_EQ(recorded().size(), 3u);
}

TEST_F(SyncFilters, Why_NamesTheRule)
{
    givenFile("Rock/a.wav", "a");
    givenFile("Rock/b.mp3", "b");
    givenFile("Rock/c.txt", "c");
    givenFile("Rock/Live/.kestaignore", "d.*\n");
    givenFile("Rock/Live/d.mp3", "d");
    givenFile("Rock/Thumbs.db", "t");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    ASSERT_EQ(sync({"--music", pc("Rock"), "--exclude", "*.wav"}).exitCode, 0);
    givenFile("Rock/e.wav", "e");
    EXPECT_THAT(client({"why", pc("Rock/a.wav")}).out, HasSubstr("A rule leaves it out by now (--exclude *.wav)"));
    EXPECT_THAT(client({"why", pc("Rock/e.wav")}).out, HasSubstr("a rule leaves it out: --exclude *.wav."));
    EXPECT_THAT(client({"why", pc("Rock/Live/d.mp3")}).out, HasSubstr(".kestaignore in Live: d.*"));
    EXPECT_THAT(client({"why", pc("Rock/Thumbs.db")}).out, HasSubstr("Thumbs.db is junk"));
    EXPECT_THAT(client({"why", pc("Rock/c.txt")}).out, HasSubstr("not one of the kinds of files of music"));
    EXPECT_THAT(client({"why", pc("Rock/b.mp3")}).out, Not(HasSubstr("rule")));
}

TEST_F(SyncFilters, EmptyGlob_IsAMistake)
{
    EXPECT_EQ(sync({"--music", pc(), "--exclude", ""}).exitCode, 2);
}

}  // namespace
}  // namespace kesta::test
