// Copying one file: the source may change or go, the place may be taken.
#include "phone/copy_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

namespace kesta {
namespace {

namespace fs = std::filesystem;

class CopyTest : public testing::Test {
protected:
    CopyTest()
        : folder_(fs::canonical(fs::temp_directory_path()) / ("kesta-copy-" + std::to_string(std::random_device()())))
    {
        fs::create_directories(folder_);
        request_.source = (folder_ / "source").string();
        request_.target = (folder_ / "target").string();
    }
    ~CopyTest() override
    {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    static void write(const std::string& path, const std::string& text)
    {
        std::ofstream(path, std::ios::binary) << text;
    }
    static std::string read(const std::string& path)
    {
        std::ostringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }
    [[nodiscard]] bool temporaryIsLeft() const { return fs::exists(folder_ / ".kesta-part"); }

    fs::path folder_;
    CopyRequest request_;
};

TEST_F(CopyTest, File_ArrivesWithContentsAndTime)
{
    write(request_.source, std::string(3'000'000, 'x') + "end");
    const auto time = fs::last_write_time(request_.source) - std::chrono::hours(1000);
    fs::last_write_time(request_.source, time);
    size_t bytes = 0;
    request_.onBytes = [&](size_t count) {
        bytes += count;
        return true;
    };
    const CopyResult result = CopySafely(request_);
    EXPECT_EQ(result.outcome, CopyOutcome::kDone) << result.reason;
    EXPECT_EQ(result.source.size, 3'000'003u);
    EXPECT_TRUE(result.timeKept);
    EXPECT_EQ(bytes, 3'000'003u);
    EXPECT_EQ(read(request_.target), read(request_.source));
    EXPECT_LT(std::chrono::abs(fs::last_write_time(request_.target) - time), std::chrono::seconds(1));
    EXPECT_FALSE(temporaryIsLeft());
}

TEST_F(CopyTest, SourceThatChangesOnce_IsCopiedAsItIsThen)
{
    write(request_.source, "before");
    int changes = 0, restarts = 0;
    request_.onRestart = [&] { ++restarts; };
    request_.onBytes = [&](size_t) {
        if (changes++ == 0) {
            std::ofstream(request_.source, std::ios::app) << " and after";
        }
        return true;
    };
    const CopyResult result = CopySafely(request_);
    EXPECT_EQ(result.outcome, CopyOutcome::kDone) << result.reason;
    EXPECT_EQ(restarts, 1);
    EXPECT_EQ(read(request_.target), "before and after");
    EXPECT_EQ(result.source.size, 16u);
}

TEST_F(CopyTest, SourceThatKeepsChanging_IsGivenUp)
{
    write(request_.source, "before");
    request_.onBytes = [&](size_t) {
        std::ofstream(request_.source, std::ios::app) << "!";
        return true;
    };
    const CopyResult result = CopySafely(request_);
    EXPECT_EQ(result.outcome, CopyOutcome::kSourceChanging);
    EXPECT_THAT(result.reason, testing::HasSubstr("changed while it was copied"));
    EXPECT_FALSE(fs::exists(request_.target));
    EXPECT_FALSE(temporaryIsLeft());
}

TEST_F(CopyTest, MissingSource_IsGone)
{
    EXPECT_EQ(CopySafely(request_).outcome, CopyOutcome::kSourceGone);
    EXPECT_FALSE(temporaryIsLeft());
}

TEST_F(CopyTest, FolderInTheSourcesPlace_IsNoFile)
{
    fs::create_directory(request_.source);
    EXPECT_EQ(CopySafely(request_).outcome, CopyOutcome::kSourceFailed);
    EXPECT_FALSE(fs::exists(request_.target));
}

TEST_F(CopyTest, Interruption_LeavesTheOldFile)
{
    write(request_.source, "new");
    write(request_.target, "old");
    request_.mayReplace = true;
    request_.onBytes = [](size_t) { return false; };
    EXPECT_EQ(CopySafely(request_).outcome, CopyOutcome::kInterrupted);
    EXPECT_EQ(read(request_.target), "old");
    EXPECT_FALSE(temporaryIsLeft());
}

TEST_F(CopyTest, TakenPlace_IsReplacedOnlyWhenAllowed)
{
    write(request_.source, "new");
    write(request_.target, "old");
    EXPECT_EQ(CopySafely(request_).outcome, CopyOutcome::kPlaceTaken);
    EXPECT_EQ(read(request_.target), "old");
    EXPECT_FALSE(temporaryIsLeft());
    request_.mayReplace = true;
    EXPECT_EQ(CopySafely(request_).outcome, CopyOutcome::kDone);
    EXPECT_EQ(read(request_.target), "new");
}

TEST_F(CopyTest, LeftoverOfAKilledRun_IsReplaced)
{
    write(request_.source, "new");
    write((folder_ / ".kesta-part").string(), "half of something");
    EXPECT_EQ(CopySafely(request_).outcome, CopyOutcome::kDone);
    EXPECT_EQ(read(request_.target), "new");
    EXPECT_FALSE(temporaryIsLeft());
}

TEST_F(CopyTest, MissingTargetFolder_IsThePhonesFailure)
{
    write(request_.source, "new");
    request_.target = (folder_ / "nowhere" / "target").string();
    EXPECT_EQ(CopySafely(request_).outcome, CopyOutcome::kPhoneFailed);
}

}  // namespace
}  // namespace kesta
