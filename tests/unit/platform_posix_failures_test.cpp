// A system that refuses what it rarely refuses: file systems without links or without a rename that replaces nothing,
// full and broken disks, signals in the middle, users without an entry, mutexes and locks that cannot be had.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/shm.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/files.h"
#include "platform/named_mutex.h"
#include "platform/posix/lock_file.h"
#include "platform/posix/shared_mutex.h"
#include "support/data_folder.h"
#include "support/posix/variable.h"
#include "unit/failing_system.h"

namespace kesta::platform {
namespace {

namespace fs = std::filesystem;

using test::FailingSystem;
using test::Variable;

class FailingFiles : public ::testing::Test {
protected:
    FailingFiles() { write(file, text); }

    static void write(const fs::path& path, const std::string& content) { std::ofstream(path) << content; }
    static std::string contentOf(const fs::path& path)
    {
        std::ostringstream content;
        content << std::ifstream(path).rdbuf();
        return content.str();
    }

    test::DataFolder data;
    const std::string text = std::string(300, 'x') + "end";
    const fs::path file = data.applicationData() / "file";
    const fs::path other = data.applicationData() / "other";
};

class WithoutRenamingInOneStep : public FailingFiles, public ::testing::WithParamInterface<int> {};

TEST_P(WithoutRenamingInOneStep, MoveIntoPlace_FreeName_IsMoved)
{
    const FailingSystem system({{"renameat2", {GetParam()}}});
    EXPECT_EQ(MoveIntoPlace(file, other), Naming::kDone);
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(contentOf(other), text);
    EXPECT_TRUE(system.allStruck());
}

TEST_P(WithoutRenamingInOneStep, MoveIntoPlace_TakenName_ReplacesNothing)
{
    write(other, "somebody's own");
    const FailingSystem system({{"renameat2", {GetParam()}}});
    EXPECT_EQ(MoveIntoPlace(file, other), Naming::kNameTaken);
    EXPECT_EQ(contentOf(file), text);
    EXPECT_EQ(contentOf(other), "somebody's own");
}

TEST_P(WithoutRenamingInOneStep, MoveIntoPlace_NameThatCannotBeLookedAt_CountsAsTaken)
{
    const FailingSystem system({{"renameat2", {GetParam()}}, {"lstat", {EIO}}});
    EXPECT_EQ(MoveIntoPlace(file, other), Naming::kNameTaken);
    EXPECT_EQ(contentOf(file), text);
}

TEST_P(WithoutRenamingInOneStep, MoveIntoPlace_RenameFails_IsAFailure)
{
    const FailingSystem system({{"renameat2", {GetParam()}}, {"rename", {EIO}}});
    EXPECT_EQ(MoveIntoPlace(file, other), Naming::kFailed);
    EXPECT_EQ(contentOf(file), text);
}

INSTANTIATE_TEST_SUITE_P(Errors, WithoutRenamingInOneStep, ::testing::Values(EINVAL, ENOSYS, ENOTSUP));

TEST_F(FailingFiles, MoveIntoPlace_BrokenDisk_IsAFailure)
{
    const FailingSystem system({{"renameat2", {EIO}}});
    EXPECT_EQ(MoveIntoPlace(file, other), Naming::kFailed);
    EXPECT_EQ(contentOf(file), text);
}

TEST_F(FailingFiles, GiveSecondName_WithoutLinks_IsACopy)
{
    FailingSystem system({{"link", {EPERM}}, {"read", {EINTR}}, {"write", {EINTR, 0, EINTR}}});
    system.writeByteByByte();
    EXPECT_EQ(GiveSecondName(file, other), Naming::kDone);
    EXPECT_TRUE(system.allStruck());
    EXPECT_EQ(contentOf(other), text);
    EXPECT_EQ(contentOf(file), text);
}

TEST_F(FailingFiles, GiveSecondName_WithoutLinks_TakenName_ReplacesNothing)
{
    write(other, "somebody's own");
    const FailingSystem system({{"link", {EPERM}}});
    EXPECT_EQ(GiveSecondName(file, other), Naming::kNameTaken);
    EXPECT_EQ(contentOf(other), "somebody's own");
}

TEST_F(FailingFiles, GiveSecondName_CopyFails_LeavesNothing)
{
    const std::vector<FailingSystem::Plan> plans = {
        {{"open", {EACCES}}}, {{"open", {0, EACCES}}}, {{"read", {EIO}}}, {{"write", {ENOSPC}}}, {{"fsync", {EIO}}}};
    for (FailingSystem::Plan plan : plans) {
        const std::string failing = plan.begin()->first;
        plan["link"] = {EPERM};
        {
            const FailingSystem system(plan);
            EXPECT_EQ(GiveSecondName(file, other), Naming::kFailed) << failing;
            EXPECT_TRUE(system.allStruck()) << failing;
        }
        EXPECT_FALSE(fs::exists(other)) << failing;
        EXPECT_EQ(contentOf(file), text) << failing;
    }
}

TEST_F(FailingFiles, CanReadAll_InterruptedBySignals_GoesOn)
{
    const FailingSystem system({{"read", {EINTR, EINTR}}});
    EXPECT_TRUE(CanReadAll(file));
    EXPECT_TRUE(system.allStruck());
}

TEST_F(FailingFiles, CanReadAll_BrokenDiskOrALookThatFails_False)
{
    for (const FailingSystem::Plan& plan : {FailingSystem::Plan{{"read", {EIO}}}, {{"fstat", {EIO}}}}) {
        const FailingSystem system(plan);
        EXPECT_FALSE(CanReadAll(file));
        EXPECT_TRUE(system.allStruck());
    }
}

TEST_F(FailingFiles, FolderWhoseNameCannotBeSecured_IsMadeAllTheSame)
{
    for (const char* call : {"open", "openat", "fsync"}) {
        const fs::path folder = data.applicationData() / call;
        const FailingSystem system({{call, {EIO}}});
        CreateFolder(folder);
        EXPECT_TRUE(system.allStruck()) << call;
        EXPECT_TRUE(fs::is_directory(folder)) << call;
    }
}

TEST_F(FailingFiles, UserWithoutAnEntry_HasNoFolder)
{
    const Variable named("XDG_DATA_HOME", nullptr);
    const Variable home("HOME", nullptr);
    for (const int error : {ENOENT, EIO}) {
        const FailingSystem system({{"getpwuid_r", {error}}});
        Path folder;
        EXPECT_FALSE(ApplicationDataFolder(folder));
        EXPECT_TRUE(system.allStruck());
    }
}

class FailingMutex : public ::testing::Test {
protected:
    ~FailingMutex() override
    {
        mutex.close();
        const int segment = shmget(SegmentKey(name.c_str()), 0, 0);
        if (segment >= 0) {
            shmctl(segment, IPC_RMID, nullptr);
        }
    }

    /// Takes it as any call does, and lets it go.
    void use()
    {
        mutex.lock();
        mutex.unlock();
    }
    void open()
    {
        mutex.open(name.c_str(), [] { return Path("/nonexistent"); });
    }
    [[nodiscard]] fs::path lockFile() const { return data.runtimeFolder() / (name + ".lock"); }

    test::DataFolder data;
    const std::string name = "KESTA_FAILING_MUTEX_" + std::to_string(getpid());
    NamedMutex mutex;
};

TEST_F(FailingMutex, MemoryThatTheSystemRefuses_ALockFileTakesItsPlace)
{
    for (const char* call : {"shmctl", "shmat"}) {
        const FailingSystem system({{call, {EACCES}}});
        open();
        use();
        EXPECT_TRUE(system.allStruck()) << call;
        EXPECT_TRUE(fs::remove(lockFile())) << call;
        mutex.close();
    }
}

TEST_F(FailingMutex, NameSpaceThatCannotBeLookedAt_ALockFileTakesItsPlace)
{
    const FailingSystem system({{"stat", {0, EACCES}}});  // the first is that of the memory's folder
    open();
    use();
    EXPECT_TRUE(system.allStruck());
    EXPECT_TRUE(fs::exists(lockFile()));
}

TEST_F(FailingMutex, MutexThatCannotBeMadeInTheMemory_ALockFileTakesItsPlace)
{
    for (const char* call : {"pthread_mutexattr_init", "pthread_mutexattr_settype", "pthread_mutexattr_setpshared",
                             "pthread_mutexattr_setrobust", "pthread_mutex_init"}) {
        const FailingSystem system({{call, {0, ENOMEM}}});  // the first is that of this process's threads
        open();
        use();
        EXPECT_TRUE(system.allStruck()) << call;
        EXPECT_TRUE(fs::remove(lockFile())) << call;
        mutex.close();
        shmctl(shmget(SegmentKey(name.c_str()), 0, 0), IPC_RMID, nullptr);
    }
}

class FailingLockFile : public ::testing::Test {
protected:
    static Path Nowhere() { return "/nonexistent"; }

    /// Whether another opening of the file can take the lock.
    [[nodiscard]] bool isFree() const
    {
        const int opened = ::open(path().c_str(), O_RDWR | O_CLOEXEC);
        struct flock whole = {};
        whole.l_type = F_WRLCK;
        whole.l_whence = SEEK_SET;
        const bool free = fcntl(opened, F_OFD_SETLK, &whole) == 0;
        close(opened);
        return free;
    }
    [[nodiscard]] fs::path path() const { return data.runtimeFolder() / "name.lock"; }

    test::DataFolder data;
    LockFile file;
};

TEST_F(FailingLockFile, Lock_InterruptedBySignals_GoesOn)
{
    ASSERT_TRUE(file.open("name", &Nowhere));
    {
        const FailingSystem system({{"fcntl", {EINTR, EINTR}}});
        file.lock();
        EXPECT_TRUE(system.allStruck());
    }
    EXPECT_FALSE(isFree());
    file.unlock();
    EXPECT_TRUE(isFree());
}

TEST_F(FailingLockFile, Lock_FileThatCannotBeLookedAt_IsKept)
{
    ASSERT_TRUE(file.open("name", &Nowhere));
    for (const FailingSystem::Plan& plan : {FailingSystem::Plan{{"fstat", {EIO}}}, {{"stat", {EIO}}}}) {
        {
            const FailingSystem system(plan);
            file.lock();
            EXPECT_TRUE(system.allStruck());
        }
        EXPECT_FALSE(isFree());
        file.unlock();
    }
}

TEST_F(FailingLockFile, Lock_SystemWithoutLocks_DoesNotWait)
{
    ASSERT_TRUE(file.open("name", &Nowhere));
    const FailingSystem system({{"fcntl", {ENOLCK}}});
    file.lock();
    EXPECT_TRUE(isFree());
}

TEST_F(FailingLockFile, Open_FileThatCannotBeLookedAt_False)
{
    const FailingSystem system({{"fstat", {EIO}}});
    EXPECT_FALSE(file.open("name", &Nowhere));
    EXPECT_TRUE(system.allStruck());
}

TEST_F(FailingLockFile, Open_FolderWithATooLongName_False)
{
    const Variable folder("XDG_RUNTIME_DIR", ("/" + std::string(5000, 'x')).c_str());
    EXPECT_FALSE(file.open("name", &Nowhere));
}

TEST_F(FailingLockFile, Open_NoRuntimeFolder_TakesTheOther)
{
    const Variable folder("XDG_RUNTIME_DIR", nullptr);
    EXPECT_FALSE(file.open("name", &Nowhere));
    EXPECT_FALSE(file.open("name", [] { return Path(); }));
}

TEST_F(FailingLockFile, NeverOpened_LockAndUnlockDoNothing)
{
    file.lock();
    file.unlock();
    EXPECT_FALSE(file.isOpen());
}

}  // namespace
}  // namespace kesta::platform
