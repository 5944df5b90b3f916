#include "platform/services.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "support/data_folder.h"
#include "support/text.h"
#include "support/trace_source.h"

namespace kesta::platform {
namespace {

using std::chrono::milliseconds;
using ::testing::ElementsAre;

TEST(Services, Now_IsThePresent)
{
    EXPECT_LE(std::abs(services.now() - std::time(nullptr)), 2);
}

TEST(Services, Sleep_LastsAtLeastThatLong)
{
    const auto start = std::chrono::steady_clock::now();
    services.sleep(60);
    const auto slept = std::chrono::steady_clock::now() - start;
    EXPECT_GE(slept, milliseconds(50));  // the system's timer may be a tick early
    EXPECT_LT(slept, std::chrono::seconds(10));
}

class DebugOutput : public ::testing::Test {
protected:
    void SetUp() override { OpenTrace(); }
    void TearDown() override { CloseTrace(); }

    static void write(const test::Text& line)
    {
        BeginTracedCall();
        ASSERT_TRUE(services.traceIsRead());
        services.writeTraceLine(line, line.length());
    }

    test::DataFolder data;
    std::unique_ptr<test::TraceSource> source = test::TraceSource::open(data.runtimeFolder());
};

TEST_F(DebugOutput, Line_ArrivesAsWritten)
{
    write(test::W("one\n"));
    write(test::W("two, without an end"));
    EXPECT_THAT(source->take(), ElementsAre("one\n", "two, without an end"));
}

TEST_F(DebugOutput, LongLine_ArrivesWhole)
{
    const std::string line(32000, 'x');  // some systems cut what is longer than 32,766
    write(test::W(line));
    const std::vector<std::string> lines = source->take();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(lines[0] == line) << lines[0].size();
}

TEST_F(DebugOutput, OpenedAgain_Works)
{
    CloseTrace();
    OpenTrace();
    write(test::W("again\n"));
    EXPECT_THAT(source->take(), ElementsAre("again\n"));
}

}  // namespace
}  // namespace kesta::platform
