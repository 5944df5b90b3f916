// Killed at random moments and started again.
#include <random>
#include <thread>

#include "client_fixture.h"

namespace kesta::test {
namespace {

class SyncKillTest : public ClientTest {
protected:
    static std::string name(int number) { return "Rock/" + std::to_string(number % 7) + "/f" + std::to_string(number); }
};

TEST_F(SyncKillTest, AtRandomMoments_EndsInOrder)
{
    constexpr int kRounds = 25;
    constexpr int kFiles = 60;
    std::mt19937 random(20260131);
    for (int i = 0; i < kFiles; ++i) {
        givenFile(name(i), "contents of " + std::to_string(i));
    }
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(sync({"--music", pc("Rock"), "--force"}).exitCode, 0);
    auto longest = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - before);

    int next = kFiles, cutShort = 0;
    for (int round = 0; round < kRounds; ++round) {
        // Some new, some changed, some gone: about as much work as the first time.
        for (int i = 0; i < 20; ++i) {
            givenFile(name(next++), "new in round " + std::to_string(round));
        }
        for (int i = next - 40; i < next - 25; ++i) {
            if (fs::exists(Path(pc(name(i))))) {
                changeFile(name(i), "changed in round " + std::to_string(round));
            }
        }
        for (int i = next - 80; i < next - 60; ++i) {
            (void)fs::remove(Path(pc(name(i))));
        }
        for (int i = next - 60; i < next - 50; ++i) {
            if (fs::exists(Path(pc(name(i))))) {
                fs::rename(Path(pc(name(i))), Path(pc(name(i) + " moved in round " + std::to_string(round))));
            }
        }
        ClientProcess client(work(), syncArguments({"--music", pc("Rock"), "--force"}));
        std::this_thread::sleep_for(std::chrono::microseconds(random() % static_cast<unsigned>(longest.count())));
        if (client.hasEnded()) {
            longest = longest * 2 / 3 + std::chrono::microseconds(1);  // The machine has become faster meanwhile.
        } else {
            ++cutShort;
        }
        client.kill();
        (void)client.wait();
        if (round % 3 != 2) {
            continue;  // Now and then a killed run follows another one.
        }
        const Ended run = sync({"--music", pc("Rock"), "--force"});
        ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
        expectInOrder();
        ASSERT_FALSE(HasFailure()) << "in round " << round;
    }
    EXPECT_GT(cutShort, 0) << "the test itself came too late";
    EXPECT_EQ(sync({"--music", pc("Rock"), "--force"}).exitCode, 0);
    expectInOrder();
}

}  // namespace
}  // namespace kesta::test
