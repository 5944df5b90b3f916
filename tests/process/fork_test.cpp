// A process that uses the library is forked, as Python's multiprocessing does by default: parent and child go on
// independently, and neither undoes what the other is in the middle of.
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>

#include "support/api_test.h"
#include "support/dates.h"

namespace kesta::test {
namespace {

constexpr char kImei[] = "351111";

class Forked : public ApiTest {
protected:
    Forked() { EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W("Phone")), 1); }

    /// Records one file under a name of its own; false when the call fails.
    bool record(const std::string& name) const
    {
        Text path(name);
        Text base("folder");
        const SyncedFileRecord file = {Date(2024, 1, 1), path.get(), base.get(), base.get()};
        return lib.DB_MUSIC_SetAddedFile(W(kImei), &file) == 0;
    }

    /// Runs the body in a forked process; the body's result is its exit code.
    template <class Body>
    static pid_t forked(Body&& body)
    {
        const pid_t child = fork();
        EXPECT_GE(child, 0);
        if (child == 0) {
            _exit(body());
        }
        return child;
    }

    static int resultOf(pid_t child)
    {
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

    [[nodiscard]] std::string count(const std::string& name) const
    {
        return sql.text("SELECT COUNT(*) FROM tMFile WHERE [Path] LIKE '" + name + "%'");
    }
};

TEST_F(Forked, WhileThreadsCall_NoRowIsLostOnEitherSide)
{
    constexpr int kChildren = 20;
    constexpr int kRowsOfAChild = 5;
    std::atomic<bool> done = false;
    std::array<int, 3> recorded = {};
    std::vector<std::thread> threads;
    for (size_t thread = 0; thread < recorded.size(); ++thread) {
        threads.emplace_back([&, thread] {
            while (!done) {
                if (record("parent " + std::to_string(thread) + " " + std::to_string(recorded[thread]))) {
                    ++recorded[thread];
                }
            }
        });
    }
    std::vector<pid_t> children;
    for (int i = 0; i < kChildren; ++i) {
        children.push_back(forked([&] {
            for (int row = 0; row < kRowsOfAChild; ++row) {
                if (!record("child " + std::to_string(i) + " " + std::to_string(row))) {
                    return 1;
                }
            }
            return 0;
        }));
    }
    for (const pid_t child : children) {
        EXPECT_EQ(resultOf(child), 0);
    }
    done = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(sql.text("PRAGMA integrity_check"), "ok");
    EXPECT_EQ(count("child"), std::to_string(kChildren * kRowsOfAChild));
    EXPECT_EQ(count("parent"), std::to_string(recorded[0] + recorded[1] + recorded[2]));
}

TEST_F(Forked, ChildsFirstCall_OpensWithoutALine)
{
    (void)trace.take();
    EXPECT_EQ(resultOf(forked([&] { return lib.DB_LIB_PhoneDetected(W(kImei), W("Phone")); })), 1);
    EXPECT_THAT(trace.take(), ::testing::ElementsAre("Enter DB_LIB_PhoneDetected(IMEI: 351111, Name: Phone).",
                                                     "Exit DB_LIB_PhoneDetected() with PhoneID = 1."));
}

/// Every way in: with and without a frame of its own, through the lock alone, and past it.
TEST_F(Forked, EveryWayIn_FindsTheChildsOwnConnection)
{
    MainFolderList changes = {};
    EXPECT_EQ(resultOf(forked([&] { return lib.DB_LIB_MainFoldersChanged(&changes); })), 0);
    EXPECT_EQ(resultOf(forked([&] { return lib.DB_MUSIC_SetFolderSelected(W(kImei), W("folder"), 1); })), 0);
    EXPECT_EQ(resultOf(forked([&] { return lib.DB_MUSIC_SetFolderDeleted(W(kImei), W("folder"), 1); })), 0);
    EXPECT_EQ(resultOf(forked([&] { return lib.DB_Open(); })), 0);
    EXPECT_EQ(resultOf(forked([&] {
                  BackupRecord backup = {};
                  return lib.DB_BACKUP_AddBackup(W(kImei), &backup);  // there is no table for it
              })),
              1);
}

TEST_F(Forked, ChildOfAChild_AndTheParentAfterIt_GoOn)
{
    EXPECT_EQ(resultOf(forked([&] {
                  if (!record("child")) {
                      return 1;
                  }
                  return resultOf(forked([&] { return record("grandchild") ? 0 : 2; }));
              })),
              0);
    EXPECT_TRUE(record("parent"));
    EXPECT_EQ(sql.text("SELECT [Path] FROM tMFile ORDER BY 1"), "child\ngrandchild\nparent");
}

TEST_F(Forked, ChildThatEndsAsAProgramDoes_LeavesTheParentItsConnection)
{
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        lib.unload();
        _exit(0);
    }
    EXPECT_EQ(resultOf(child), 0);
    EXPECT_TRUE(record("parent"));
}

TEST_F(Forked, ParentUnloads_TheChildGoesOn)
{
    std::array<int, 2> gate = {};
    ASSERT_EQ(pipe(gate.data()), 0);
    const pid_t child = forked([&] {
        char byte = 0;
        (void)!read(gate[0], &byte, 1);
        return record("child") ? 0 : 1;
    });
    lib.unload();
    EXPECT_EQ(write(gate[1], "x", 1), 1);
    EXPECT_EQ(resultOf(child), 0);
    EXPECT_EQ(count("child"), "1");
}

}  // namespace
}  // namespace kesta::test
