// What is decided here alone: where data lies, who may see it, who reads the trace.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "platform/files.h"
#include "platform/services.h"
#include "support/data_folder.h"
#include "support/posix/variable.h"
#include "support/text.h"
#include "support/trace_source.h"

namespace kesta::platform {
namespace {

namespace fs = std::filesystem;

using test::Variable;

mode_t ModeOf(const fs::path& path)
{
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

class PosixFolders : public ::testing::Test {
protected:
    void SetUp() override { umask_ = umask(0); }
    void TearDown() override { umask(umask_); }

    test::DataFolder data;

private:
    mode_t umask_ = 0;
};

TEST_F(PosixFolders, CreateFolder_IsPrivateToTheUser)
{
    CreateFolder(data.applicationData() / "made");
    EXPECT_EQ(ModeOf(data.applicationData() / "made"), 0700u);
}

TEST_F(PosixFolders, NamedFolderMissing_IsMadeWithEveryoneAboveIt)
{
    const fs::path named = data.applicationData() / "a" / "b";
    const Variable folder("XDG_DATA_HOME", named.c_str());
    Path found;
    ASSERT_TRUE(ApplicationDataFolder(found));
    EXPECT_EQ(found, named);
    EXPECT_EQ(ModeOf(named), 0700u);
    EXPECT_EQ(ModeOf(named.parent_path()), 0700u);
}

TEST_F(PosixFolders, NamedFolderWithSlashAtItsEnd_IsTheSame)
{
    const Variable folder("XDG_DATA_HOME", (data.applicationData().string() + "/").c_str());
    Path found;
    ASSERT_TRUE(ApplicationDataFolder(found));
    EXPECT_EQ(found, data.applicationData());
}

TEST_F(PosixFolders, NamedFolderCannotBeMade_False)
{
    const fs::path nowhere = data.applicationData() / "link";
    fs::create_directory_symlink(data.applicationData() / "gone", nowhere);
    const fs::path itself = data.applicationData() / "loop";
    fs::create_directory_symlink(itself, itself);
    const fs::path tooLong = data.applicationData() / std::string(300, 'x');
    for (const fs::path& named : {fs::path("/dev/null"), fs::path("/dev/null/data"), nowhere, itself, tooLong}) {
        const Variable folder("XDG_DATA_HOME", named.c_str());
        Path found;
        EXPECT_FALSE(ApplicationDataFolder(found)) << named;
    }
}

TEST_F(PosixFolders, HomeIsNoFullPath_ThatOfTheUsersEntryIsTaken)
{
    const Variable named("XDG_DATA_HOME", nullptr);
    const Variable home("HOME", "relative");
    Path found;
    ASSERT_TRUE(ApplicationDataFolder(found));
    EXPECT_TRUE(found.is_absolute()) << found;
    EXPECT_FALSE(fs::exists("relative"));
}

TEST_F(PosixFolders, FileInAFolderThatMayNotBeEntered_IsOutOfReach)
{
    const fs::path closed = data.applicationData() / "closed";
    fs::create_directory(closed);
    ASSERT_EQ(chmod(closed.c_str(), 0), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const bool isSomebody = geteuid() != 0 || setresuid(65534, 65534, 65534) == 0;
        _exit(isSomebody && Find(closed / "file") == Presence::kOutOfReach ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    chmod(closed.c_str(), 0700);
}

TEST_F(PosixFolders, PipeInTheFilesPlace_CannotBeRead)
{
    const fs::path pipe = data.applicationData() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(CanReadAll(pipe));
    EXPECT_TRUE(CanReadAll("/proc/self/exe"));
}

class HomeFolder : public PosixFolders, public ::testing::WithParamInterface<const char*> {};

TEST_P(HomeFolder, NoAbsoluteFolderNamed_LiesBelowHome)
{
    const Variable named("XDG_DATA_HOME", GetParam());
    const Variable home("HOME", data.runtimeFolder().c_str());
    Path found;
    ASSERT_TRUE(ApplicationDataFolder(found));
    EXPECT_EQ(found, data.runtimeFolder() / ".local" / "share");
    EXPECT_EQ(ModeOf(found), 0700u);
}

INSTANTIATE_TEST_SUITE_P(MissingEmptyOrRelative, HomeFolder, ::testing::Values(nullptr, "", "relative/folder"));

TEST_F(PosixFolders, NoHomeEither_TheUsersEntryTellsIt)
{
    const passwd* user = getpwuid(geteuid());
    ASSERT_NE(user, nullptr);
    const fs::path expected = fs::path(user->pw_dir) / ".local" / "share";
    const bool hadFolder = fs::exists(expected);
    const bool hadParent = fs::exists(expected.parent_path());
    const Variable named("XDG_DATA_HOME", nullptr);
    const Variable home("HOME", nullptr);
    Path found;
    EXPECT_TRUE(ApplicationDataFolder(found));
    EXPECT_EQ(found, expected);
    EXPECT_TRUE(fs::is_directory(expected));
    // The user's own folders are left as they were.
    if (!hadFolder) {
        fs::remove(expected);
    }
    if (!hadParent) {
        fs::remove(expected.parent_path());
    }
}

TEST(PosixFiles, GiveSecondName_AcrossFileSystems_IsAPrivateCopy)
{
    const test::DataFolder data;
    std::string folder = "/var/tmp/kesta-test-XXXXXX";
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    const fs::path there = fs::path(folder) / "second name";
    const fs::path file = data.applicationData() / "file";
    {
        std::ofstream(file) << std::string(200'000, 'x');
    }
    ASSERT_EQ(GiveSecondName(file, there), Naming::kDone);
    EXPECT_EQ(fs::file_size(there), 200'000u);
    EXPECT_EQ(ModeOf(there), 0600u);
    EXPECT_EQ(GiveSecondName(file, there), Naming::kNameTaken);
    EXPECT_EQ(fs::file_size(there), 200'000u);
    fs::remove(there);
    EXPECT_EQ(GiveSecondName(data.applicationData() / "missing", there), Naming::kFailed);
    EXPECT_FALSE(fs::exists(there));
    fs::remove_all(folder);
}

TEST(PosixFiles, Find_LinkToItself_IsNothing)
{
    const test::DataFolder data;
    const fs::path link = data.applicationData() / "link";
    fs::create_symlink(link, link);
    EXPECT_EQ(Find(link), Presence::kAbsent);
}

TEST(PosixTrace, NoViewer_NobodyReads)
{
    const test::DataFolder data;
    OpenTrace();
    EXPECT_FALSE(services.traceIsRead());
    CloseTrace();
    EXPECT_FALSE(services.traceIsRead());
}

TEST(PosixTrace, FileInTheViewersPlace_NobodyReads)
{
    const test::DataFolder data;
    // What lies there takes datagrams all the same: the name leads to a viewer's socket.
    const auto source = test::TraceSource::open(data.runtimeFolder());
    fs::rename(data.runtimeFolder() / "kesta_db.trace", data.runtimeFolder() / "elsewhere");
    fs::create_symlink(data.runtimeFolder() / "elsewhere", data.runtimeFolder() / "kesta_db.trace");
    OpenTrace();
    EXPECT_FALSE(services.traceIsRead());
    CloseTrace();
}

TEST(PosixTrace, FolderWithATooLongName_NobodyReads)
{
    const test::DataFolder data;
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const std::string start = (data.runtimeFolder() / "x").string();
    const std::string folder = start + std::string(sizeof address.sun_path, 'x');
    ASSERT_LT(start.size(), sizeof address.sun_path - 1);
    // A socket under as much of the path as an address has room for.
    folder.copy(address.sun_path, sizeof address.sun_path - 1);
    const int viewer = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(viewer, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    const Variable runtime("XDG_RUNTIME_DIR", folder.c_str());
    OpenTrace();
    EXPECT_FALSE(services.traceIsRead());
    CloseTrace();
    close(viewer);
}

TEST(PosixTrace, ProgramThatIsStarted_DoesNotGetTheSocket)
{
    const test::DataFolder data;
    OpenTrace();
    int sockets = 0;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (fs::read_symlink(entry.path(), gone).string().starts_with("socket:")) {
            ++sockets;
            EXPECT_NE(fcntl(std::stoi(entry.path().filename()), F_GETFD) & FD_CLOEXEC, 0) << entry.path();
        }
    }
    EXPECT_GT(sockets, 0);
    CloseTrace();
}

TEST(PosixTrace, MemoryLines_ViewerThatComes_IsSeenAtTheNextCallOrSoonInALongOne)
{
    const test::DataFolder data;
    OpenTrace();
    BeginTracedCall();
    EXPECT_FALSE(services.memoryIsRead());
    auto source = test::TraceSource::open(data.runtimeFolder());
    services.sleep(150);  // a viewer is looked for every 100 ms
    int asked = 1;
    while (asked < 1000 && !services.memoryIsRead()) {
        ++asked;
    }
    EXPECT_EQ(asked, 16);
    source.reset();
    services.sleep(150);
    EXPECT_FALSE(services.memoryIsRead());
    source = test::TraceSource::open(data.runtimeFolder());
    services.sleep(150);
    EXPECT_FALSE(services.memoryIsRead());
    BeginTracedCall();
    EXPECT_TRUE(services.memoryIsRead());
    CloseTrace();
}

TEST(PosixTrace, LineOfTheLongestStatement_ArrivesWholeAndInUtf8)
{
    const test::DataFolder data;
    const auto source = test::TraceSource::open(data.runtimeFolder());
    OpenTrace();
    ASSERT_TRUE(services.traceIsRead());
    std::string line;
    for (int i = 0; i < 41000; ++i) {
        line += "\u4E2D";
    }
    const test::Text text(line);
    BeginTracedCall();
    services.writeTraceLine(text, text.length());
    CloseTrace();
    const std::vector<std::string> lines = source->take();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(lines[0] == line) << lines[0].size();
}

TEST(PosixTrace, StandardStreamsClosed_StayClosed)
{
    const test::DataFolder data;
    static std::unique_ptr<test::TraceSource> source;  // static: the child ends without giving it back
    source = test::TraceSource::open(data.runtimeFolder());
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            close(file);
        }
        OpenTrace();
        int taken = 0;
        for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            if (fcntl(file, F_GETFD) >= 0) {
                ++taken;
            }
        }
        services.writeTraceLine(test::W("seen"), 4);
        _exit(services.traceIsRead() ? taken : 99);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(source->take(), std::vector<std::string>{"seen"});
    source.reset();
}

TEST(PosixTrace, RuntimeFolderTooLongForASocket_NobodyReads)
{
    const test::DataFolder data;
    const Variable folder("XDG_RUNTIME_DIR", ("/" + std::string(200, 'x')).c_str());
    OpenTrace();
    EXPECT_FALSE(services.traceIsRead());
    CloseTrace();
}

/// A socket at that path, which nobody reads.
int BoundSocket(const fs::path& path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    path.native().copy(address.sun_path, sizeof address.sun_path - 1);
    const int file = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    EXPECT_EQ(bind(file, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0) << path;
    return file;
}

TEST(PosixTrace, SocketThatNobodyListensTo_NobodyReads)
{
    const test::DataFolder data;
    close(BoundSocket(data.runtimeFolder() / "kesta_db.trace"));
    OpenTrace();
    EXPECT_FALSE(services.traceIsRead());
    CloseTrace();
}

TEST(PosixTrace, EmptyRuntimeFolder_IsAsNoneGiven)
{
    const test::DataFolder data;
    const std::string path = "/tmp/kesta_db-" + std::to_string(geteuid()) + ".trace";
    if (access(path.c_str(), F_OK) == 0) {
        GTEST_SKIP() << "somebody watches the trace of this user: " << path;
    }
    const Variable folder("XDG_RUNTIME_DIR", "");
    OpenTrace();
    EXPECT_FALSE(services.traceIsRead());
    CloseTrace();
    const int viewer = BoundSocket(path);
    OpenTrace();
    EXPECT_TRUE(services.traceIsRead());
    CloseTrace();
    close(viewer);
    unlink(path.c_str());
}

TEST(PosixTrace, NoFileToBeHad_NobodyReads)
{
    const test::DataFolder data;
    const int viewer = BoundSocket(data.runtimeFolder() / "kesta_db.trace");
    rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none = {0, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    OpenTrace();
    EXPECT_FALSE(services.traceIsRead());
    CloseTrace();
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    close(viewer);
}

volatile sig_atomic_t interruptions = 0;

TEST(PosixServices, Sleep_InterruptedBySignals_GoesOn)
{
    struct sigaction noted = {};
    struct sigaction before = {};
    noted.sa_handler = [](int) { interruptions = interruptions + 1; };
    ASSERT_EQ(sigaction(SIGALRM, &noted, &before), 0);
    const itimerval often = {{0, 5000}, {0, 5000}};
    const itimerval never = {};
    setitimer(ITIMER_REAL, &often, nullptr);
    services.sleep(100);
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &before, nullptr);
    EXPECT_GT(interruptions, 1);  // the first did not end it
}

}  // namespace
}  // namespace kesta::platform
