// A database that is made or replaced on a disk that refuses to rename or to delete.
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "kesta_db/kesta_db.h"
#include "unit/failing_system.h"
#include "unit/module_under_test.h"

namespace kesta {
namespace {

namespace fs = std::filesystem;

using test::FailingSystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int32_t kFileInTheWay = 8398;

class FailingCreation : public ModuleUnderTest {
protected:
    FailingCreation()
    {
        TheModule().DbConnection.close();
        TheModule().noteOpen();
    }

    /// What lies beside the database.
    [[nodiscard]] std::vector<std::string> others() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(data.databaseFolder())) {
            if (entry.path() != data.databasePath()) {
                names.push_back(entry.path().filename().string());
            }
        }
        return names;
    }
    [[nodiscard]] std::string mainFolders() const
    {
        return test::Sql(data.databasePath()).text("SELECT COUNT(*) FROM tLibMainFolder");
    }
    void makeItAnotherVersions() const { test::Sql(data.databasePath()).exec("UPDATE tVersion SET [Version] = 5"); }
};

TEST_F(FailingCreation, NameTakenMeanwhile_TheFileIsInTheWay)
{
    fs::remove(data.databasePath());
    {
        const FailingSystem system({{"renameat2", {EEXIST}}});
        EXPECT_EQ(DB_Open(), kFileInTheWay);
        EXPECT_TRUE(system.allStruck());
    }
    EXPECT_THAT(others(), IsEmpty());
    EXPECT_EQ(DB_Open(), 0);
    EXPECT_EQ(mainFolders(), "7");
}

TEST_F(FailingCreation, DiskThatDoesNotRename_TheFileIsMadeInItsPlace)
{
    fs::remove(data.databasePath());
    const FailingSystem system({{"renameat2", {EIO}}});
    EXPECT_EQ(DB_Open(), 0);
    EXPECT_TRUE(system.allStruck());
    EXPECT_THAT(others(), IsEmpty());
    EXPECT_EQ(mainFolders(), "7");
}

TEST_F(FailingCreation, LeftoverThatCannotBeDeleted_TheFileIsMadeInItsPlace)
{
    fs::remove(data.databasePath());
    const fs::path journal = data.databasePath().string() + "-journal";
    std::ofstream(journal) << "left by an earlier file";
    {
        const FailingSystem system({{"unlink", {EIO}}});
        EXPECT_EQ(DB_Open(), 0);
        EXPECT_TRUE(system.allStruck());
    }
    EXPECT_EQ(mainFolders(), "7");
}

TEST_F(FailingCreation, FileOfAnotherVersionThatCannotBeDeleted_StaysAloneAndWhole)
{
    makeItAnotherVersions();
    {
        const FailingSystem system({{"unlink", {EIO}}});
        EXPECT_EQ(DB_Open(), kFileInTheWay);
        EXPECT_TRUE(system.allStruck());
    }
    EXPECT_THAT(others(), IsEmpty());  // the second name that it was given is gone again
    EXPECT_EQ(test::Sql(data.databasePath()).text("SELECT [Version] FROM tVersion"), "5");
}

TEST_F(FailingCreation, FileOfAnotherVersionThatCannotBeKeptNorDeleted_StaysAloneAndWhole)
{
    makeItAnotherVersions();
    {
        const FailingSystem system({{"link", {EPERM}}, {"write", {ENOSPC}}, {"unlink", {0, EIO}}});
        EXPECT_EQ(DB_Open(), kFileInTheWay);
        EXPECT_TRUE(system.allStruck());
    }
    EXPECT_THAT(others(), IsEmpty());
    EXPECT_EQ(test::Sql(data.databasePath()).text("SELECT [Version] FROM tVersion"), "5");
}

TEST_F(FailingCreation, FileOfAnotherVersionThatCannotBeKept_IsReplacedAllTheSame)
{
    makeItAnotherVersions();
    const FailingSystem system({{"link", {EPERM}}, {"write", {ENOSPC}}});
    EXPECT_EQ(DB_Open(), 0);
    EXPECT_TRUE(system.allStruck());
    EXPECT_THAT(others(), IsEmpty());
    EXPECT_EQ(mainFolders(), "7");
}

}  // namespace
}  // namespace kesta
