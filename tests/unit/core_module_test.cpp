// The module as a whole: what it starts is what other processes know, and what it ends is gone.
#include "core/module.h"

#include <future>

#include "platform/named_mutex.h"
#include "unit/module_under_test.h"

namespace kesta {
namespace {

using ModuleLife = ModuleUnderTest;

platform::Path NoFolder()
{
    return {};
}

/// What another program of the same user has open. Programs with another version of the library wait by this name.
class OtherProgramsLock {
public:
    OtherProgramsLock() { mutex_.open("NORVIK_KESTA_DB_ACCESS_MUTEX", &NoFolder); }
    ~OtherProgramsLock() { mutex_.close(); }
    OtherProgramsLock(const OtherProgramsLock&) = delete;
    OtherProgramsLock& operator=(const OtherProgramsLock&) = delete;

    /// Takes it in a thread and lets go of it again.
    std::future<void> use()
    {
        return std::async(std::launch::async, [this] {
            mutex_.lock();
            mutex_.unlock();
        });
    }

private:
    platform::NamedMutex mutex_;
};

TEST_F(ModuleLife, AccessLock_IsTheOneOfThisName)
{
    OtherProgramsLock other;
    TheModule().DbAccessLock.lock();
    std::future<void> use = other.use();
    EXPECT_EQ(use.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout);
    TheModule().DbAccessLock.unlock();
    EXPECT_EQ(use.wait_for(std::chrono::seconds(30)), std::future_status::ready);
}

TEST_F(ModuleLife, End_AccessLock_IsClosed)
{
    OtherProgramsLock other;
    TheModule().end();
    TheModule().DbAccessLock.lock();  // does nothing any more
    std::future<void> use = other.use();
    EXPECT_EQ(use.wait_for(std::chrono::seconds(30)), std::future_status::ready);
    TheModule().DbAccessLock.unlock();
}

TEST_F(ModuleLife, End_DatabaseOpen_DoesNotCountAsOpen)
{
    ASSERT_TRUE(TheModule().isOpen());
    TheModule().end();
    EXPECT_FALSE(TheModule().isOpen());
    TheModule().start();
    EXPECT_TRUE(TheModule().isOpen());
}

}  // namespace
}  // namespace kesta
