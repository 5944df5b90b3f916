// Where a named mutex lives on a system that has none, and what takes its place when that cannot be trusted.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <future>
#include <new>
#include <string>
#include <thread>

#include "platform/named_mutex.h"
#include "platform/posix/lock_file.h"
#include "platform/posix/shared_mutex.h"
#include "support/data_folder.h"

namespace kesta::platform {
namespace {

namespace fs = std::filesystem;

using std::chrono::milliseconds;
using std::chrono::seconds;

Path lockFolder;

Path LockFolder()
{
    return lockFolder;
}

/// A name of its own for each test, and nothing left of it afterwards.
class PosixMutex : public ::testing::Test {
protected:
    void SetUp() override
    {
        removeSegment();
        lockFolder = data.applicationData();
        fs::create_directory(lockFolder);
    }
    void TearDown() override
    {
        mutex.close();
        removeSegment();
    }

    void open() { mutex.open(name.c_str(), &LockFolder); }

    void removeSegment() const
    {
        const int segment = shmget(SegmentKey(name.c_str()), 0, 0);
        if (segment >= 0) {
            shmctl(segment, IPC_RMID, nullptr);
        }
    }

    [[nodiscard]] fs::path lockFile() const { return data.runtimeFolder() / (name + ".lock"); }

    static void expectExclusion(NamedMutex& one, NamedMutex& other)
    {
        one.lock();
        std::future<void> use = std::async(std::launch::async, [&] {
            other.lock();
            other.unlock();
        });
        EXPECT_EQ(use.wait_for(milliseconds(200)), std::future_status::timeout);
        one.unlock();
        EXPECT_EQ(use.wait_for(seconds(30)), std::future_status::ready);
    }
    void expectExclusion() { expectExclusion(mutex, mutex); }

    /// Runs in a process of its own, which ends with what it returns.
    template <class Body>
    static pid_t start(Body&& body)
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

    test::DataFolder data;
    const std::string name = "KESTA_TEST_MUTEX_" + std::to_string(getpid());
    NamedMutex mutex;
};

TEST_F(PosixMutex, Segment_IsPrivateToTheUser)
{
    open();
    shmid_ds status = {};
    ASSERT_EQ(shmctl(shmget(SegmentKey(name.c_str()), 0, 0), IPC_STAT, &status), 0);
    EXPECT_EQ(status.shm_perm.mode & 0777, 0600);
    EXPECT_EQ(status.shm_perm.uid, geteuid());
    EXPECT_FALSE(fs::exists(lockFile()));
}

TEST_F(PosixMutex, AnotherUser_HasASegmentOfItsOwn)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can be another user";
    }
    const key_t ours = SegmentKey(name.c_str());
    const pid_t other = start([&] { return setuid(65534) != 0 ? 2 : SegmentKey(name.c_str()) != ours ? 0 : 1; });
    EXPECT_EQ(resultOf(other), 0);
}

TEST_F(PosixMutex, HolderKilled_TheNextTakesIt)
{
    open();
    const pid_t holder = start([&] {
        NamedMutex own;
        own.open(name.c_str(), &LockFolder);
        own.lock();
        raise(SIGKILL);
        return 0;
    });
    EXPECT_EQ(resultOf(holder), -SIGKILL);
    expectExclusion();
    expectExclusion();
    EXPECT_FALSE(fs::exists(lockFile())) << "the mutex itself was made good";
}

TEST_F(PosixMutex, ThreadThatEndsWithTheLockFile_LeavesItToTheNextAndOthers)
{
    ASSERT_GE(shmget(SegmentKey(name.c_str()), 16, IPC_CREAT | 0600), 0);
    open();
    std::thread([&] { mutex.lock(); }).join();
    mutex.lock();
    mutex.unlock();
    const pid_t other = start([&] {
        alarm(20);
        NamedMutex own;
        own.open(name.c_str(), &LockFolder);
        own.lock();
        own.unlock();
        return 0;
    });
    EXPECT_EQ(resultOf(other), 0);
}

TEST_F(PosixMutex, Names_HaveMemoryOfTheirOwn)
{
    EXPECT_NE(SegmentKey("KESTA_ONE"), SegmentKey("KESTA_TWO"));
    EXPECT_EQ(SegmentKey("KESTA_ONE"), SegmentKey("KESTA_ONE"));
}

TEST_F(PosixMutex, SegmentOfAnotherUser_ALockFileTakesItsPlace)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give a segment away";
    }
    const int segment = shmget(SegmentKey(name.c_str()), kSegmentBytes, IPC_CREAT | 0600);
    ASSERT_GE(segment, 0);
    shmid_ds status = {};
    ASSERT_EQ(shmctl(segment, IPC_STAT, &status), 0);
    status.shm_perm.uid = 65534;
    ASSERT_EQ(shmctl(segment, IPC_SET, &status), 0);
    open();
    NamedMutex second;
    second.open(name.c_str(), &LockFolder);
    expectExclusion(mutex, second);
    struct stat file = {};
    ASSERT_EQ(stat(lockFile().c_str(), &file), 0);
    EXPECT_EQ(file.st_mode & 07777, 0600u);
    second.close();
}

TEST_F(PosixMutex, SegmentTooSmall_ALockFileTakesItsPlace)
{
    ASSERT_GE(shmget(SegmentKey(name.c_str()), 16, IPC_CREAT | 0600), 0);
    open();
    expectExclusion();
    EXPECT_TRUE(fs::exists(lockFile()));
}

TEST_F(PosixMutex, SegmentThatOthersMayWrite_ALockFileTakesItsPlace)
{
    ASSERT_GE(shmget(SegmentKey(name.c_str()), kSegmentBytes, IPC_CREAT | 0622), 0);
    open();
    expectExclusion();
    EXPECT_TRUE(fs::exists(lockFile()));
}

TEST_F(PosixMutex, LinkInThePlaceOfTheLockFile_IsNotFollowed)
{
    ASSERT_GE(shmget(SegmentKey(name.c_str()), 16, IPC_CREAT | 0600), 0);
    const fs::path target = data.runtimeFolder() / "somebody's own";
    fs::create_symlink(target, lockFile());
    open();
    expectExclusion();
    EXPECT_FALSE(fs::exists(target));
    EXPECT_TRUE(fs::exists(lockFolder / (name + ".lock")));
}

TEST_F(PosixMutex, FolderThatIsNotNamedFromTheRoot_HoldsNoLockFile)
{
    ASSERT_GE(shmget(SegmentKey(name.c_str()), 16, IPC_CREAT | 0600), 0);
    const fs::path before = fs::current_path();
    fs::current_path(data.runtimeFolder());
    fs::create_directory("below");
    setenv("XDG_RUNTIME_DIR", "below", 1);
    open();
    expectExclusion();
    EXPECT_TRUE(fs::is_empty("below"));
    EXPECT_TRUE(fs::exists(lockFolder / (name + ".lock")));
    fs::current_path(before);
}

TEST_F(PosixMutex, Closed_HoldsNoMemory)
{
    open();
    const int segment = shmget(SegmentKey(name.c_str()), 0, 0);
    shmid_ds status = {};
    ASSERT_EQ(shmctl(segment, IPC_STAT, &status), 0);
    EXPECT_EQ(status.shm_nattch, 1u);
    mutex.close();
    ASSERT_EQ(shmctl(segment, IPC_STAT, &status), 0);
    EXPECT_EQ(status.shm_nattch, 0u);
}

TEST_F(PosixMutex, Closed_HoldsNoFile)
{
    ASSERT_GE(shmget(SegmentKey(name.c_str()), 16, IPC_CREAT | 0600), 0);
    open();
    expectExclusion();
    ASSERT_TRUE(fs::exists(lockFile()));
    mutex.close();
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        EXPECT_NE(fs::read_symlink(entry.path(), gone), lockFile());
    }
}

TEST_F(PosixMutex, LockFileWithoutRuntimeFolder_LiesInTheOtherFolder)
{
    ASSERT_GE(shmget(SegmentKey(name.c_str()), 16, IPC_CREAT | 0600), 0);
    setenv("XDG_RUNTIME_DIR", "/nonexistent", 1);
    open();
    expectExclusion();
    EXPECT_TRUE(fs::exists(lockFolder / (name + ".lock")));
}

TEST_F(PosixMutex, LockFileNowhereToBeHad_StillSerialisesThisProcess)
{
    ASSERT_GE(shmget(SegmentKey(name.c_str()), 16, IPC_CREAT | 0600), 0);
    setenv("XDG_RUNTIME_DIR", "relative", 1);
    lockFolder = "/nonexistent";
    open();
    expectExclusion();
}

TEST_F(PosixMutex, LockFileOfAnotherUser_IsNotUsed)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give a file away";
    }
    ASSERT_GE(shmget(SegmentKey(name.c_str()), 16, IPC_CREAT | 0600), 0);
    ASSERT_EQ(close(::open(lockFile().c_str(), O_CREAT | O_RDWR, 0666)), 0);
    ASSERT_EQ(chown(lockFile().c_str(), 65534, 65534), 0);
    open();
    expectExclusion();
    EXPECT_TRUE(fs::exists(lockFolder / (name + ".lock")));
}

/// The segment as a process of another PID name space has set it up.
class MixedMutex : public PosixMutex {
protected:
    void SetUp() override
    {
        PosixMutex::SetUp();
        first.open(name.c_str(), &LockFolder);
        segment = AttachSegment(SegmentKey(name.c_str()));
        ASSERT_NE(segment, nullptr);
    }
    void TearDown() override
    {
        first.close();
        DetachSegment(segment);
        PosixMutex::TearDown();
    }

    /// Has `mutex` find the thread ids of another name space in the segment.
    void openAsStranger()
    {
        ++segment->pidSpace;
        open();
        --segment->pidSpace;
    }

    NamedMutex first;
    SharedMutex* segment = nullptr;
};

TEST_F(MixedMutex, BothNameSpaces_TakeTheLockFile)
{
    openAsStranger();
    EXPECT_EQ(segment->needsLockFile.load(), 1u);
    expectExclusion(first, mutex);
    expectExclusion(mutex, first);
    first.lock();
    first.lock();
    first.unlock();
    std::future<void> stranger = std::async(std::launch::async, [this] {
        mutex.lock();
        mutex.unlock();
    });
    EXPECT_EQ(stranger.wait_for(milliseconds(200)), std::future_status::timeout);  // once is still held
    first.unlock();
    EXPECT_EQ(stranger.wait_for(seconds(30)), std::future_status::ready);
}

TEST_F(MixedMutex, StrangerComesInTheMiddleOfACall_WaitsForItsEnd)
{
    first.lock();
    openAsStranger();
    std::future<void> stranger = std::async(std::launch::async, [this] {
        mutex.lock();
        mutex.unlock();
    });
    EXPECT_EQ(stranger.wait_for(milliseconds(200)), std::future_status::timeout);
    first.unlock();
    EXPECT_EQ(stranger.wait_for(seconds(30)), std::future_status::ready);
    expectExclusion(first, mutex);
}

TEST_F(MixedMutex, OtherLayout_IsAStrangerToo)
{
    ++segment->mutexBytes;
    open();
    EXPECT_EQ(segment->needsLockFile.load(), 1u);
    --segment->mutexBytes;
    expectExclusion(first, mutex);
}

TEST_F(MixedMutex, MutexWrittenOver_ALockFileTakesItsPlace)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer stops at a mutex that nobody made";
#endif
    open();
    std::memset(&segment->mutex, 0x7f, sizeof segment->mutex);
    expectExclusion(first, mutex);
    EXPECT_EQ(segment->needsLockFile.load(), 1u);
}

TEST_F(PosixMutex, LockFileRemovedWhileUsed_BothTakeTheNewOne)
{
    ASSERT_GE(shmget(SegmentKey(name.c_str()), 16, IPC_CREAT | 0600), 0);
    open();
    expectExclusion();
    fs::remove(lockFile());
    NamedMutex second;
    second.open(name.c_str(), &LockFolder);
    expectExclusion(second, mutex);
    expectExclusion(mutex, second);
    second.close();
}

TEST_F(PosixMutex, MakerDiedHalfway_NobodyWaitsTwice)
{
    SharedMutex* segment = AttachSegment(SegmentKey(name.c_str()));
    ASSERT_NE(segment, nullptr);
    segment->stage.store(SegmentStage::kBeingMade);
    open();
    EXPECT_EQ(segment->stage.load(), SegmentStage::kAbandoned);
    NamedMutex second;
    second.open(name.c_str(), &LockFolder);
    expectExclusion(mutex, second);
    second.close();
    DetachSegment(segment);
}

TEST_F(PosixMutex, ForkedWhileHeld_TheChildWaitsForTheParent)
{
    open();
    mutex.lock();
    const pid_t child = start([&] {
        mutex.startAnewInChild();
        mutex.lock();
        mutex.unlock();
        return 7;
    });
    std::this_thread::sleep_for(milliseconds(200));
    EXPECT_EQ(waitpid(child, nullptr, WNOHANG), 0);
    mutex.unlock();
    EXPECT_EQ(resultOf(child), 7);
}

TEST_F(PosixMutex, ForkedWhileTheLockFileIsHeld_TheChildWaitsForTheParent)
{
    ASSERT_GE(shmget(SegmentKey(name.c_str()), 16, IPC_CREAT | 0600), 0);
    open();
    mutex.lock();
    const pid_t child = start([&] {
        mutex.startAnewInChild();
        mutex.lock();
        mutex.unlock();
        return 7;
    });
    std::this_thread::sleep_for(milliseconds(200));
    EXPECT_EQ(waitpid(child, nullptr, WNOHANG), 0);
    mutex.unlock();
    EXPECT_EQ(resultOf(child), 7);
    expectExclusion();
}

TEST_F(PosixMutex, StandardStreamsClosed_StayClosed)
{
    ASSERT_GE(shmget(SegmentKey(name.c_str()), 16, IPC_CREAT | 0600), 0);
    const pid_t child = start([&] {
        for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            close(file);
        }
        open();
        mutex.lock();
        int taken = 0;
        for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            taken += fcntl(file, F_GETFD) >= 0 ? 1 : 0;
        }
        return taken;
    });
    EXPECT_EQ(resultOf(child), 0);
    EXPECT_TRUE(fs::exists(lockFile()));
}

}  // namespace
}  // namespace kesta::platform
