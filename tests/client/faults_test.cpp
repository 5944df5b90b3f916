// System calls that fail, and the process dying at each of them in turn.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fstream>

#include "client_fixture.h"
#include "fault_environment.h"

namespace kesta::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class FaultsTest : public ClientTest {
protected:
    static Environment failing(int code, const std::string& path, int skip = 0)
    {
        return Faults({{"KESTA_FAULT_ERRNO", std::to_string(code)},
                       {"KESTA_FAULT_PATH", path},
                       {"KESTA_FAULT_SKIP", std::to_string(skip)}});
    }
    // A phone with something to copy, to update, to move, to remove and to leave.
    void givenWork()
    {
        fs::remove_all(phone());
        fs::remove_all(pc("Rock"));
        fs::remove_all(data().applicationData() / "NORVIK");
        fs::create_directories(phone());
        for (const char* name : {"old/gone", "changed", "stays", "stays2"}) {
            givenFile(std::string("Rock/") + name, name);
        }
        ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
        removeFile("Rock/old/gone");
        fs::remove(pc("Rock/old"));
        changeFile("Rock/changed", "another text");
        fs::create_directories(pc("Rock/other"));
        fs::rename(pc("Rock/stays2"), pc("Rock/other/place"));
        givenFile("Rock/new/er", "brand new");
        givenFile("Rock/new 2", "brand new as well");
    }
};

TEST_F(FaultsTest, KilledAtEachCall_TheNextRunEndsInOrder)
{
    givenWork();
    const std::string counted = (work() / "count").string();
    ASSERT_EQ(sync({"--music", pc("Rock")}, Faults({{"KESTA_FAULT_COUNT_FILE", counted}})).exitCode, 0);
    long calls = 0;
    std::ifstream(counted) >> calls;
    ASSERT_GT(calls, 40) << "the calls are not seen";
    for (long call = 1; call <= calls; ++call) {
        SCOPED_TRACE("killed at call " + std::to_string(call) + " of " + std::to_string(calls));
        givenWork();
        const Ended killed = sync({"--music", pc("Rock")}, Faults({{"KESTA_FAULT_KILL_AT", std::to_string(call)}}));
        // The end of a run is not written again within the second of the one before.
        const bool isWhole = killed.exitCode == 0 && call > calls - 20;
        ASSERT_TRUE(killed.exitCode == -SIGKILL || isWhole) << killed.exitCode << killed.out << killed.err;
        // What was on its way may be gone or changed by the time of the next run.
        if (call % 3 == 1) {
            removeFile("Rock/new/er");
        }
        if (call % 3 == 2) {
            changeFile("Rock/new 2", "changed again");
        }
        const Ended run = sync({"--music", pc("Rock")});
        ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
        expectInOrder();
        ASSERT_THAT(phonePaths(), SizeIs(call % 3 == 1 ? 4 : 5));
        EXPECT_FALSE(fs::exists(phone("Music/Rock/old")));
        EXPECT_EQ(fs::exists(phone("Music/Rock/new")), call % 3 != 1);
        ASSERT_FALSE(HasFailure());
    }
}

TEST_F(FaultsTest, FirstRunKilledAtEachCall_TheNextRunEndsInOrder)
{
    const auto fresh = [&] {
        fs::remove_all(phone());
        fs::remove_all(data().applicationData() / "NORVIK");
        fs::create_directories(phone());
        EXPECT_EQ(client({"status"}).exitCode, 0);  // The database itself is made before.
    };
    givenFile("Rock/a", "a");
    fresh();
    const std::string counted = (work() / "count").string();
    const std::vector<std::string> arguments{"sync", "--phone", phone(), "--music", pc("Rock")};
    ASSERT_EQ(client(arguments, Faults({{"KESTA_FAULT_COUNT_FILE", counted}})).exitCode, 0);
    long calls = 0;
    std::ifstream(counted) >> calls;
    for (long call = 1; call <= calls; ++call) {
        SCOPED_TRACE("killed at call " + std::to_string(call) + " of " + std::to_string(calls));
        fresh();
        ASSERT_EQ(client(arguments, Faults({{"KESTA_FAULT_KILL_AT", std::to_string(call)}})).exitCode, -SIGKILL);
        ASSERT_EQ(client(arguments).exitCode, 0);
        EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a"));
        EXPECT_THAT(ownFiles(), IsEmpty());
        EXPECT_EQ(database().text("SELECT COUNT(*), (SELECT COUNT(*) FROM tMFile) FROM tPhone"), "1|1");
        ASSERT_FALSE(HasFailure());
    }
}

TEST_F(FaultsTest, PhoneFullInTheMiddleOfAFile_LeavesNoPartOfIt)
{
    givenFile("Rock/a", std::string(5'000'000, 'a'));
    Environment full = failing(ENOSPC, "Rock/.kesta-part", 3);
    full["KESTA_FAULT_CALL"] = "write";
    const Ended run = sync({"--music", pc("Rock")}, full);
    EXPECT_EQ(run.exitCode, 5) << run.out;
    EXPECT_THAT(run.out, HasSubstr("the phone is full"));
    EXPECT_THAT(phonePaths(), IsEmpty());
    expectInOrder();
}

TEST_F(FaultsTest, PhoneFullForTheJournal_StopsBeforeCopying)
{
    givenFile("Rock/a", "a");
    ASSERT_EQ(meet().exitCode, 0);
    Environment full = failing(ENOSPC, ".kesta-part");
    full["KESTA_FAULT_CALL"] = "write";
    const Ended run = sync({"--music", pc("Rock")}, full);
    EXPECT_EQ(run.exitCode, 5) << run.out;
    EXPECT_THAT(recorded(), IsEmpty());
    EXPECT_THAT(ownFiles(), IsEmpty());
}

TEST_F(FaultsTest, PhoneThatTurnsReadOnly_Stops)
{
    givenFile("Rock/a", "a");
    givenFile("Rock/b", "b");
    const Ended run = sync({"--music", pc("Rock")}, failing(EROFS, "Music/Rock/b"));
    EXPECT_EQ(run.exitCode, 6) << run.out;
    EXPECT_THAT(run.out, HasSubstr("the phone is read-only"));
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a"));
    expectInOrder();
}

TEST_F(FaultsTest, OneFileThatCannotBeWritten_DoesNotStopTheRest)
{
    givenFile("Rock/a", "a");
    givenFile("Rock/b", "b");
    givenFile("Rock/c", "c");
    const Ended run = sync({"--music", pc("Rock")}, failing(EIO, "Music/Rock/b"));
    EXPECT_EQ(run.exitCode, 3) << run.out;
    EXPECT_THAT(run.out, HasSubstr("it cannot be written to the phone: Input/output error"));
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/a", "Music/Rock/c"));
    expectInOrder();
}

TEST_F(FaultsTest, FileThatCannotBeRemoved_StaysInTheDatabase)
{
    for (const char* name : {"a", "b", "c"}) {
        givenFile(std::string("Rock/") + name, name);
    }
    (void)sync({"--music", pc("Rock")});
    removeFile("Rock/b");
    const Ended run = sync({"--music", pc("Rock")}, failing(EIO, "Music/Rock/b"));
    EXPECT_EQ(run.exitCode, 3) << run.out;
    EXPECT_THAT(run.out, HasSubstr("it cannot be removed from the phone"));
    EXPECT_THAT(recorded(), SizeIs(3));
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    expectInOrder();
}

TEST_F(FaultsTest, FileThatVanishesBeforeItsTurn_IsReported)
{
    givenFile("Rock/a", "a");
    givenFile("Rock/b", "b");
    const Ended run = sync({"--music", pc("Rock")}, Faults({{"KESTA_FAULT_VANISH", pc("Rock/a")}}));
    EXPECT_EQ(run.exitCode, 3) << run.out;
    EXPECT_THAT(run.out, HasSubstr("Rock/a: it went away before it could be copied"));
    EXPECT_THAT(phonePaths(), ElementsAre("Music/Rock/b"));
    expectInOrder();
}

TEST_F(FaultsTest, PhoneWithoutTimes_IsSyncedAllTheSame)
{
    givenFile("Rock/a", "a");
    Environment noTimes = failing(EPERM, ".kesta-part");
    noTimes["KESTA_FAULT_CALL"] = "futimens";
    const Ended run = sync({"--music", pc("Rock")}, noTimes);
    EXPECT_THAT(run.out, HasSubstr("the phone did not take the modification time of 1 file"));
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("1 unchanged"));
}

// The library answers with empty lists then.
TEST_F(FaultsTest, DatabaseThatCannotBeRead_IsNotTakenForAnEmptyOne)
{
    givenFile("Rock/a", "a");
    givenFile("Rock/b", "b");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    const auto onPhone = phoneFiles();
    int refused = 0;
    for (int skip = 0; skip < 120; ++skip) {
        SCOPED_TRACE("all reads but the first " + std::to_string(skip) + " fail");
        Environment unreadable = failing(EIO, "KESTA_DB.s3db", skip);
        unreadable["KESTA_FAULT_CALL"] = "pread";
        std::vector<std::string> arguments{"--music", pc("Rock")};
        if (skip % 3 > 0) {
            arguments.emplace_back("--dry-run");
        }
        const Ended run = sync(arguments, unreadable);
        if (run.exitCode == 8) {
            ++refused;
        } else {
            ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
            ASSERT_THAT(run.out, HasSubstr("0 copied, 0 updated, 0 removed, 2 unchanged"));
        }
        ASSERT_EQ(phoneFiles(), onPhone);
    }
    EXPECT_GT(refused, 5);
    EXPECT_THAT(sync({"--music", pc("Rock")}).out, HasSubstr("2 unchanged"));
    expectInOrder();
}

TEST_F(FaultsTest, DatabaseThatCannotBeWritten_StopsTheRun)
{
    givenFile("Rock/a", "a");
    (void)sync({"--music", pc("Rock")});
    givenFile("Rock/b", "b");
    givenFile("Rock/c", "c");
    const Ended run = sync({"--music", pc("Rock")}, failing(ENOSPC, "KESTA_DB.s3db-journal", 4));
    EXPECT_EQ(run.exitCode, 8) << run.out << run.err;
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    expectInOrder();
}

// Two rows change for a file that was renamed: the run may end before, between or after them.
TEST_F(FaultsTest, DatabaseThatFailsWhileAFileIsMoved_KeepsTheFile)
{
    givenFile("Rock/a", "the music of a");
    givenFile("Rock/b", "the music of b");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    std::string from = "Rock/a";
    int stopped = 0;
    for (int skip = 0; skip < 40; ++skip) {
        SCOPED_TRACE("all writes to the journal but the first " + std::to_string(skip) + " fail");
        const std::string to = "Rock/renamed " + std::to_string(skip);
        fs::rename(pc(from), pc(to));
        from = to;
        Environment unwritable = failing(ENOSPC, "KESTA_DB.s3db-journal", skip);
        unwritable["KESTA_FAULT_CALL"] = "pwrite";
        const Ended run = sync({"--music", pc("Rock")}, unwritable);
        ASSERT_TRUE(run.exitCode == 8 || run.exitCode == 0) << run.exitCode << run.out << run.err;
        stopped += run.exitCode == 8 ? 1 : 0;
        const auto onPhone = phoneFiles();
        ASSERT_TRUE(std::any_of(onPhone.begin(), onPhone.end(),
                                [](const auto& file) { return file.second == "the music of a"; }));
        const Ended again = sync({"--music", pc("Rock")});
        ASSERT_EQ(again.exitCode, 0) << again.out << again.err;
        ASSERT_THAT(phonePaths(), SizeIs(2));
        expectInOrder();
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(stopped, 8);
    EXPECT_LT(stopped, 40) << "the last ones do not reach the rows";
}

}  // namespace
}  // namespace kesta::test
