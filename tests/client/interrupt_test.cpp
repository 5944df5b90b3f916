// Ctrl-C, and what a terminal shows.
#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

#include "client_fixture.h"

namespace kesta::test {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

using InterruptTest = ClientTest;

TEST_F(InterruptTest, InterruptedRun_EndsProperly)
{
    for (int i = 0; i < 400; ++i) {
        givenFile("Rock/" + std::to_string(i), std::string(20'000, 'x'));
    }
    ClientProcess client(work(), syncArguments({"--music", pc("Rock")}));
    ASSERT_TRUE(client.waitForOutput("copied "));
    client.interrupt();
    const Ended run = client.wait();
    EXPECT_EQ(run.exitCode, 130);
    EXPECT_THAT(run.out, HasSubstr("Stopped: interrupted"));
    EXPECT_THAT(run.out, HasSubstr("not reached"));
    expectInOrder();
    EXPECT_EQ(database().text("SELECT [ErrCode] FROM tPhone"), "130");
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_EQ(phonePaths().size(), 400u);
    expectInOrder();
}

TEST_F(InterruptTest, LargeFile_IsNotFinishedFirst)
{
    givenFile("Rock/large", "");
    fs::resize_file(pc("Rock/large"), 3'000'000'000);
    ClientProcess client(work(), syncArguments({"--music", pc("Rock")}));
    for (int i = 0; i < 2000 && !fs::exists(phone("Music/Rock/.kesta-part")); ++i) {
        usleep(1000);
    }
    ASSERT_TRUE(fs::exists(phone("Music/Rock/.kesta-part")));
    client.interrupt();
    EXPECT_EQ(client.wait().exitCode, 130);
    EXPECT_FALSE(fs::exists(phone("Music/Rock")));
    expectInOrder();
}

// As another program's transaction does, for as long as it lives.
class LockedDatabase {
public:
    explicit LockedDatabase(const fs::path& file) : descriptor_(open(file.c_str(), O_RDWR | O_CLOEXEC))
    {
        constexpr off_t kSharedLocks = 0x40000002;
        constexpr off_t kHowMany = 510;
        struct flock lock {};
        lock.l_type = F_WRLCK;
        lock.l_whence = SEEK_SET;
        lock.l_start = kSharedLocks;
        lock.l_len = kHowMany;
        EXPECT_EQ(fcntl(descriptor_, F_SETLK, &lock), 0);
    }
    LockedDatabase(const LockedDatabase&) = delete;
    LockedDatabase& operator=(const LockedDatabase&) = delete;
    ~LockedDatabase() { (void)close(descriptor_); }

private:
    int descriptor_;
};

TEST_F(InterruptTest, CallThatWaitsForAnotherProgram_SaysSoAndCanBeEnded)
{
    givenFile("Rock/a.mp3", "a");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    const LockedDatabase locked(data().databasePath());
    ClientProcess client(work(), syncArguments({"--music", pc("Rock"), "--json"}));
    ASSERT_TRUE(client.waitForOutput("kesta: waiting: another program"));
    client.interrupt();
    const Ended run = client.wait();
    EXPECT_EQ(run.exitCode, 130);
    EXPECT_THAT(run.err, HasSubstr("kesta: interrupted\n"));
}

// Runs the client on a terminal of its own and returns what came there.
std::string OnTerminal(const std::vector<std::string>& arguments)
{
    std::vector<std::string> texts{KESTA_CLIENT};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    int terminal = -1;
    winsize size{24, 100, 0, 0};
    const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) {
        std::vector<char*> pointers;
        for (std::string& text : texts) {
            pointers.push_back(text.data());
        }
        pointers.push_back(nullptr);
        (void)execv(KESTA_CLIENT, pointers.data());
        _exit(127);
    }
    std::string shown;
    std::array<char, 4096> buffer;
    for (ssize_t got; (got = read(terminal, buffer.data(), buffer.size())) > 0;) {
        shown.append(buffer.data(), static_cast<size_t>(got));
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    (void)close(terminal);
    return shown;
}

TEST_F(InterruptTest, Terminal_ShowsABarInsteadOfLines)
{
    for (int i = 0; i < 30; ++i) {
        givenFile("Rock/" + std::to_string(i), std::string(100'000, 'x'));
    }
    const std::string text = OnTerminal(syncArguments({"--music", pc("Rock")}));
    EXPECT_THAT(text, ContainsRegex("\r\\[\\.+\\] 0/30 files"));
    EXPECT_THAT(text, ContainsRegex("\\[#+\\] 30/30 files  3.0 MB/3.0 MB"));
    EXPECT_THAT(text, Not(HasSubstr("copied    ")));
    EXPECT_THAT(text, HasSubstr("Summary: 30 copied"));
}

}  // namespace
}  // namespace kesta::test
