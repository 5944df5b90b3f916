// Sizes, the bar, tables and the closing summary.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "report/progress.h"
#include "report/summary.h"
#include "report/table.h"

namespace kesta {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(WordsTest, FormatSize_UsesTheUnitThatFits)
{
    const std::pair<uint64_t, const char*> table[] = {{0, "0 B"},
                                                      {999, "999 B"},
                                                      {1000, "1.0 kB"},
                                                      {999'949, "999.9 kB"},
                                                      {999'950, "1.0 MB"},
                                                      {1'500'000'000, "1.5 GB"},
                                                      {~uint64_t{0}, "18.4 EB"}};
    for (const auto& [bytes, text] : table) {
        EXPECT_EQ(FormatSize(bytes), text);
    }
}

TEST(WordsTest, BarText_ShowsFilesBytesRateAndTimeLeft)
{
    EXPECT_EQ(BarText(0, 4, 0, 1000, 0, 0.0, 60), "[" + std::string(30, '.') + "] 0/4 files  0 B/1.0 kB");
    EXPECT_EQ(BarText(1, 4, 500, 1000, 500, 1.0, 55), "[##......] 1/4 files  500 B/1.0 kB  500 B/s  0:03 left");
    EXPECT_THAT(BarText(1, 4, 1'500'000, 100'000'000, 1'500'000, 60.0, 100), HasSubstr("  50:00 left"));
    // Small files: their number tells, not their bytes.
    EXPECT_THAT(BarText(100, 10'000, 100, 1'000'000'000, 100, 1.0, 100), HasSubstr("  1:59 left"));
    EXPECT_THAT(BarText(5'000, 10'000, 0, 0, 0, 60.0, 100), HasSubstr("  1:00 left"));
    EXPECT_THAT(BarText(2, 4, 0, 0, 0, 1.0, 100), HasSubstr("[" + std::string(15, '#') + std::string(15, '.') + "]"));
    for (size_t width = 1; width < 100; ++width) {
        EXPECT_LE(BarText(100, 400, 500, 100'000, 500, 2.0, width).size(), width);
    }
}

TEST(WordsTest, Table_AlignsByColumnsOnTheTerminal)
{
    Table table({"Name", ">Count"});
    table.add({"\u65e5\u672c", "7"});
    table.add({"abcdef\x1b", "1234567"});
    EXPECT_EQ(table.text("  "),
              "  Name            Count\n"
              "  \u65e5\u672c                7\n"
              "  abcdef\\u001b  1234567\n");
}

TEST(WordsTest, Summary_TellsTheMostImportantReason)
{
    Summary summary;
    EXPECT_EQ(summary.exitCode(), ExitCode::kSuccess);
    summary.files.deferred = 3;
    EXPECT_EQ(summary.exitCode(), ExitCode::kDeferred);
    summary.fail("/pc/a\n", "broken");
    EXPECT_EQ(summary.exitCode(), ExitCode::kIncomplete);
    summary.stopWith(ExitCode::kPhoneFull, "the phone is full");
    summary.stopWith(ExitCode::kInterrupted, "interrupted");
    EXPECT_EQ(summary.exitCode(), ExitCode::kPhoneFull);
    const std::string text = Describe(summary, false, 1.5);
    EXPECT_THAT(text, HasSubstr("/pc/a\\u000a: broken"));
    EXPECT_THAT(text, HasSubstr("Deferred: 3 files"));
    EXPECT_THAT(text, HasSubstr("Stopped: the phone is full"));
    EXPECT_THAT(text, HasSubstr("0 copied, 0 updated, 0 removed, 0 unchanged, 1 failed (0 B in 1.5 s)"));
}

TEST(WordsTest, Summary_ListsFailuresUpToALimit)
{
    Summary summary;
    for (int i = 0; i < 60; ++i) {
        summary.fail("file" + std::to_string(i), "broken");
    }
    const std::string text = Describe(summary, true, 0);
    EXPECT_THAT(text, HasSubstr("file49: broken"));
    EXPECT_THAT(text, Not(HasSubstr("file50: broken")));
    EXPECT_THAT(text, HasSubstr("and 10 more"));
}

}  // namespace
}  // namespace kesta
