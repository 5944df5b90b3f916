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

TEST_F(Files, CanReadAll_FilesOnly)
{
    EXPECT_FALSE(CanReadAll(file));
    EXPECT_FALSE(CanReadAll(folder));
    makeFile();
    EXPECT_TRUE(CanReadAll(file));
    std::ofstream(file, std::ios::binary) << std::string(200'000, 'x');
    EXPECT_TRUE(CanReadAll(file));
}

TEST_F(Files, GiveSecondName_IsTheSameContentAndReplacesNothing)
{
    makeFile();
    const Path second = folder / "second";
    EXPECT_EQ(GiveSecondName(file, second), Naming::kDone);
    EXPECT_TRUE(fs::equivalent(file, second));
    std::ofstream(folder / "third") << "other";
    EXPECT_EQ(GiveSecondName(file, folder / "third"), Naming::kNameTaken);
    EXPECT_EQ(fs::file_size(folder / "third"), 5u);
    EXPECT_EQ(GiveSecondName(folder / "missing", folder / "fourth"), Naming::kFailed);
    EXPECT_FALSE(fs::exists(folder / "fourth"));
}

TEST_F(Files, MoveIntoPlace_ReplacesNothing)
{
    makeFile();
    const Path target = folder / "target";
    EXPECT_EQ(MoveIntoPlace(folder / "missing", target), Naming::kFailed);
    EXPECT_EQ(MoveIntoPlace(file, target), Naming::kDone);
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(fs::file_size(target), 7u);
    makeFile();
    std::ofstream(target) << "other";
    EXPECT_EQ(MoveIntoPlace(file, target), Naming::kNameTaken);
    EXPECT_EQ(fs::file_size(target), 5u);
    EXPECT_TRUE(fs::exists(file));
}

TEST_F(Files, CreatePrivateFile_LeavesWhatIsThere)
{
    makeFile();
    CreatePrivateFile(file);
    EXPECT_EQ(fs::file_size(file), 7u);
    CreatePrivateFile(folder / "missing" / "file");
    EXPECT_FALSE(fs::exists(folder / "missing"));
    FlushFolder(folder);
    FlushFolder(folder / "missing");
}

TEST_F(Files, Find_TellsWhatIsThere)
{
    EXPECT_EQ(Find(folder / "missing" / "file"), Presence::kAbsent);
    EXPECT_EQ(Find(folder / std::string(300, 'n')), Presence::kAbsent);
    EXPECT_EQ(Find(folder), Presence::kPresent);
}

TEST_F(Files, Exists_FilesAndFolders)
{
    EXPECT_TRUE(Exists(folder));
    EXPECT_FALSE(Exists(file));
    makeFile();
    EXPECT_TRUE(Exists(file));
}

TEST_F(Files, IsWritable_FollowsTheReadOnlyAttribute_ForEveryUser)
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
