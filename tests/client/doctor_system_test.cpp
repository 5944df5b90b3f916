// What kesta doctor finds of the system: permissions, the trace's socket, and who holds the library's mutex.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

#include "client_fixture.h"
#include "platform/posix/shared_mutex.h"

namespace kesta::test {
namespace {

using testing::HasSubstr;

class DoctorSystemTest : public ClientTest {
protected:
    nlohmann::json findingOf(const std::string& check, const std::vector<std::string>& options = {})
    {
        std::vector<std::string> arguments{"doctor", "--json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const auto json = nlohmann::json::parse(client(arguments).out);
        for (const auto& finding : json.at("findings")) {
            if (finding.at("check") == check) {
                return finding;
            }
        }
        return nullptr;
    }
    [[nodiscard]] fs::path socketPath() const { return data().runtimeFolder() / "kesta_db.trace"; }
};

/// The library's mutex, held by this process as by a program that is in a call.
class HeldMutex {
public:
    HeldMutex() : shared_(platform::AttachSegment(platform::SegmentKey("NORVIK_KESTA_DB_ACCESS_MUTEX")))
    {
        EXPECT_EQ(pthread_mutex_lock(&shared_->mutex), 0);
    }
    HeldMutex(const HeldMutex&) = delete;
    HeldMutex& operator=(const HeldMutex&) = delete;
    ~HeldMutex()
    {
        release();
        platform::DetachSegment(shared_);
    }
    void release()
    {
        if (isHeld_) {
            EXPECT_EQ(pthread_mutex_unlock(&shared_->mutex), 0);
        }
        isHeld_ = false;
    }

private:
    platform::SharedMutex* shared_;
    bool isHeld_ = true;
};

TEST_F(DoctorSystemTest, DatabaseThatOthersMayRead_IsClosedToThem)
{
    ASSERT_EQ(client({"status"}).exitCode, 0);
    const std::string file = data().databasePath().string();
    ASSERT_EQ(chmod(file.c_str(), 0644), 0);
    EXPECT_THAT(findingOf("permissions").at("text").get<std::string>(), HasSubstr("other users"));
    EXPECT_EQ(findingOf("permissions", {"--fix"}).at("fixed"), true);
    struct stat info {};
    ASSERT_EQ(stat(file.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
}

TEST_F(DoctorSystemTest, SocketOfAKilledViewer_IsRemoved)
{
    const int socket = ::socket(AF_UNIX, SOCK_DGRAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socketPath().c_str(), sizeof address.sun_path - 1);
    ASSERT_EQ(bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_THAT(findingOf("trace_socket").at("text").get<std::string>(), HasSubstr("a viewer reads the trace"));
    close(socket);
    EXPECT_THAT(findingOf("trace_socket").at("text").get<std::string>(), HasSubstr("has been killed"));
    EXPECT_EQ(findingOf("trace_socket", {"--fix"}).at("fixed"), true);
    EXPECT_FALSE(fs::exists(socketPath()));
}

TEST_F(DoctorSystemTest, FileInTheSocketsPlace_IsLeftAlone)
{
    std::ofstream(socketPath()) << "mine";
    EXPECT_THAT(findingOf("trace_socket").at("text").get<std::string>(), HasSubstr("is not a socket of yours"));
    EXPECT_EQ(findingOf("trace_socket", {"--fix"}).at("fixable"), false);
    EXPECT_TRUE(fs::exists(socketPath()));
}

TEST_F(DoctorSystemTest, ProgramThatStaysInACall_IsNamed)
{
    ASSERT_EQ(client({"status"}).exitCode, 0);  // The first program makes the mutex.
    const HeldMutex held;
    const std::string self = "[" + std::to_string(getpid()) + "]";
    const Ended run = client({"doctor"});
    EXPECT_EQ(run.exitCode, 8);
    EXPECT_THAT(run.out, HasSubstr(self + " is in a call to the library and does not come to its end"));
    EXPECT_THAT(findingOf("mutex").at("text").get<std::string>(), HasSubstr(self));
}

TEST_F(DoctorSystemTest, NobodyInACall_TheMutexIsFree)
{
    ASSERT_EQ(client({"status"}).exitCode, 0);
    EXPECT_THAT(nlohmann::json::parse(client({"doctor", "--json"}).out).at("checks"),
                testing::Contains(nlohmann::json{{"check", "mutex"}, {"state", "ok"}}));
}

TEST_F(DoctorSystemTest, CommandThatWaitsForAnotherProgram_SaysForWhich)
{
    ASSERT_EQ(client({"status"}).exitCode, 0);
    HeldMutex held;
    ClientProcess waiting(work(), {"status"});
    ASSERT_TRUE(waiting.waitForOutput("kesta: waiting for ")) << waiting.outputSoFar();
    held.release();
    const Ended run = waiting.wait();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.err, HasSubstr("[" + std::to_string(getpid()) + "], which is in a call to the library"));
    EXPECT_THAT(run.out, HasSubstr("No phone has been synced yet"));
}

}  // namespace
}  // namespace kesta::test
