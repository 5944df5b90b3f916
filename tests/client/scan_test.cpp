// Reading a folder of the PC.
#include "stages/media/scan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

namespace kesta {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ScanTest : public testing::Test {
protected:
    ScanTest()
        : folder_(fs::canonical(fs::temp_directory_path()) / ("kesta-scan-" + std::to_string(std::random_device()())))
    {
        fs::create_directories(folder_ / "b" / "c");
        write("b/c/2");
        write("a");
        write("b/1");
    }
    ~ScanTest() override
    {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    void write(const std::string& name) const { std::ofstream(folder_ / name) << name; }
    [[nodiscard]] FolderScan scan(const ScanOptions& options = {}) const
    {
        return ScanFolder(folder_.string(), options);
    }

    fs::path folder_;
};

TEST_F(ScanTest, Folder_IsReadToItsEnd)
{
    const FolderScan found = scan();
    EXPECT_TRUE(found.found);
    EXPECT_TRUE(found.complete);
    EXPECT_THAT(found.problems, IsEmpty());
    std::vector<std::string> names;
    for (const ScannedFile& file : found.files) {
        names.push_back(file.relative);
        EXPECT_EQ(file.size, file.relative.size());
        EXPECT_EQ(fs::path(file.path), (folder_ / file.relative).make_preferred());
        EXPECT_TRUE(file.localTime);
    }
    EXPECT_THAT(names, ElementsAre("a", "b/1", "b/c/2"));
    EXPECT_EQ(found.totalSize, 9u);
}

TEST_F(ScanTest, MissingFolder_IsNeitherFoundNorComplete)
{
    const FolderScan found = ScanFolder((folder_ / "missing").string(), {});
    EXPECT_FALSE(found.found);
    EXPECT_FALSE(found.complete);
    EXPECT_THAT(found.problems, SizeIs(1));
}

TEST_F(ScanTest, FileInTheFoldersPlace_IsNotRead)
{
    const FolderScan found = ScanFolder((folder_ / "a").string(), {});
    EXPECT_FALSE(found.found);
    EXPECT_FALSE(found.complete);
    EXPECT_THAT(found.problems, SizeIs(1));
}

TEST_F(ScanTest, StoppedScan_IsNotComplete)
{
    ScanOptions options;
    int folders = 0;
    options.keepGoing = [&](size_t) { return ++folders < 2; };
    EXPECT_FALSE(scan(options).complete);
}

TEST_F(ScanTest, PhonesFolder_IsSkipped)
{
    os::FileInfo info;
    ASSERT_TRUE(os::ReadInfo((folder_ / "b").string(), info).ok());
    ScanOptions options;
    options.phone = info.id;
    EXPECT_THAT(scan(options).files, SizeIs(1));
}

#if !defined(_WIN32)
TEST_F(ScanTest, LinkToItself_DoubtsOnlyWhatLiesBehindIt)
{
    fs::create_symlink("loop", folder_ / "loop");
    const FolderScan found = scan();
    EXPECT_TRUE(found.complete);
    ASSERT_THAT(found.problems, SizeIs(1));
    EXPECT_EQ(found.problems[0].path, (folder_ / "loop").string());
    EXPECT_THAT(found.files, SizeIs(3));
}
#endif

}  // namespace
}  // namespace kesta
