#include "platform/named_mutex.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>

namespace kesta::platform {
namespace {

using std::future_status;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr const char* kName = "KESTA_TEST_MUTEX";

Path NoFolder()
{
    return {};
}

class NamedMutexTest : public ::testing::Test {
protected:
    void SetUp() override { mutex.open(kName, &NoFolder); }
    void TearDown() override { mutex.close(); }

    /// Takes the mutex in another thread and lets go of it again.
    static std::future<void> useInAThread(NamedMutex& used)
    {
        return std::async(std::launch::async, [&used] {
            used.lock();
            used.unlock();
        });
    }

    NamedMutex mutex;
};

TEST_F(NamedMutexTest, SameThread_TakesItAgain)
{
    mutex.lock();
    mutex.lock();
    mutex.unlock();
    std::future<void> other = useInAThread(mutex);
    EXPECT_EQ(other.wait_for(milliseconds(200)), future_status::timeout);  // once is still held
    mutex.unlock();
    EXPECT_EQ(other.wait_for(seconds(30)), future_status::ready);
}

TEST_F(NamedMutexTest, TwoThreads_ExcludeEachOther)
{
    constexpr int kRounds = 2000;
    int counter = 0;  // not atomic: the mutex is what keeps it right
    const auto count = [&] {
        for (int i = 0; i < kRounds; ++i) {
            mutex.lock();
            const int read = counter;
            if (i % 100 == 0) {
                std::this_thread::yield();
            }
            counter = read + 1;
            mutex.unlock();
        }
    };
    std::thread first(count);
    std::thread second(count);
    first.join();
    second.join();
    EXPECT_EQ(counter, 2 * kRounds);
}

TEST_F(NamedMutexTest, OpenedTwice_IsOneMutex)
{
    NamedMutex again;
    again.open(kName, &NoFolder);
    mutex.lock();
    std::future<void> other = useInAThread(again);
    EXPECT_EQ(other.wait_for(milliseconds(200)), future_status::timeout);
    mutex.unlock();
    EXPECT_EQ(other.wait_for(seconds(30)), future_status::ready);
    again.close();
}

TEST_F(NamedMutexTest, OtherName_IsAnotherMutex)
{
    NamedMutex other;
    other.open("KESTA_TEST_OTHER_MUTEX", &NoFolder);
    mutex.lock();
    std::future<void> done = useInAThread(other);
    EXPECT_EQ(done.wait_for(seconds(30)), future_status::ready);
    mutex.unlock();
    other.close();
}

TEST_F(NamedMutexTest, HolderEndsWithoutLettingGo_TheNextTakesIt)
{
    std::thread([&] { mutex.lock(); }).join();
    std::future<void> next = useInAThread(mutex);
    ASSERT_EQ(next.wait_for(seconds(30)), future_status::ready);
    next = useInAThread(mutex);
    EXPECT_EQ(next.wait_for(seconds(30)), future_status::ready);
}

TEST_F(NamedMutexTest, ClosedAndOpenedAgain_Works)
{
    mutex.close();
    mutex.close();
    mutex.open(kName, &NoFolder);
    std::future<void> done = useInAThread(mutex);
    EXPECT_EQ(done.wait_for(seconds(30)), future_status::ready);
}

TEST(NamedMutexClosed, LockAndUnlock_DoNothing)
{
    NamedMutex never;
    never.lock();
    std::future<void> other = std::async(std::launch::async, [&] { never.lock(); });
    EXPECT_EQ(other.wait_for(seconds(30)), future_status::ready);
    never.unlock();
}

}  // namespace
}  // namespace kesta::platform
