#include "platform/files.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "support/data_folder.h"

namespace kesta::platform {
namespace {

namespace fs = std::filesystem;

class Files : public ::testing::Test {
protected:
    void SetUp() override
    {
        // The folder that the library makes, which is cleared away with the data folder.
        folder = data.applicationData() / "NORVIK";
        fs::create_directory(folder);
        file = folder / u8"Zo\u00EB 'n' \U0001F600.s3db";
    }

    void makeFile() const
    {
        std::ofstream out(file);
        out << "content";
        ASSERT_TRUE(out.flush().good());
    }

    test::DataFolder data;
    fs::path folder;
    fs::path file;
};

TEST_F(Files, ApplicationDataFolder_IsTheUsers)
{
    Path found;
    ASSERT_TRUE(ApplicationDataFolder(found));
    EXPECT_EQ(found, data.applicationData());
}

TEST_F(Files, CreateFolder_MakesOne_AndASecondTimeDoesNothing)
{
    CreateFolder(folder / "NORVIK Sync");
    EXPECT_TRUE(fs::is_directory(folder / "NORVIK Sync"));
    makeFile();
    CreateFolder(folder);
    EXPECT_TRUE(fs::exists(file));
}

TEST_F(Files, CreateFolder_WithoutParent_LeavesNone)
{
    CreateFolder(folder / "missing" / "child");
    EXPECT_FALSE(fs::exists(folder / "missing"));
}

TEST_F(Files, Exists_FilesAndFolders)
{
    EXPECT_TRUE(Exists(folder));
    EXPECT_FALSE(Exists(file));
    makeFile();
    EXPECT_TRUE(Exists(file));
}

TEST_F(Files, IsWritable_FollowsTheReadOnlyMark_ForEveryUser)
{
    makeFile();
    EXPECT_TRUE(IsWritable(file));
    fs::permissions(file, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    EXPECT_FALSE(IsWritable(file));
    fs::permissions(file, fs::perms::owner_write, fs::perm_options::add);
    EXPECT_TRUE(IsWritable(file));
}

TEST_F(Files, RemoveFile_TellsWhetherItIsGone)
{
    makeFile();
    EXPECT_TRUE(RemoveFile(file));
    EXPECT_FALSE(fs::exists(file));
    EXPECT_FALSE(RemoveFile(file));
    EXPECT_FALSE(RemoveFile(folder));  // a folder is no file
    EXPECT_TRUE(fs::exists(folder));
}

TEST_F(Files, PathToUtf8_TerminatesWithinTheRoom)
{
    const std::u8string expected = Path(file).u8string();
    std::string out(expected.size() + 2, '#');
    ASSERT_TRUE(PathToUtf8(file, out.data(), expected.size()));
    EXPECT_EQ(out, std::string(expected.begin(), expected.end()) + '\0' + '#');
    EXPECT_FALSE(PathToUtf8(file, out.data(), expected.size() - 1));
}

TEST_F(Files, PathToUtf8_NoPath_IsTheEmptyText)
{
    char out[2] = {'#', '#'};
    ASSERT_TRUE(PathToUtf8(Path(), out, 1));
    EXPECT_EQ(out[0], '\0');
}

}  // namespace
}  // namespace kesta::platform
