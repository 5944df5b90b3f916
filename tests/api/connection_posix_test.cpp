// Where the database lies, and what keeps it from being made or replaced, on systems with Unix permissions.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "api/given.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

namespace fs = std::filesystem;

class PosixConnection : public ::testing::Test {
protected:
    DataFolder data;
    Sql sql{data.databasePath()};
};

/// Permissions mean nothing to root, who is nobody in particular as long as this lives.
class OrdinaryUser {
public:
    explicit OrdinaryUser(const fs::path& root)
    {
        if (geteuid() != 0) {
            return;
        }
        for (const auto& entry : fs::recursive_directory_iterator(root)) {
            give(entry.path());
        }
        give(root);
        if (seteuid(kNobody) != 0) {
            throw std::runtime_error("the user cannot be changed");
        }
    }
    ~OrdinaryUser() { (void)!seteuid(getuid()); }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    static constexpr uid_t kNobody = 65534;
    static void give(const fs::path& path)
    {
        if (lchown(path.c_str(), kNobody, static_cast<gid_t>(-1)) != 0) {
            throw std::runtime_error(path.string());
        }
    }
};

TEST_F(PosixConnection, Load_OtherVersionInAFolderThatCannotBeWritten_IsLeftAloneWith8398)
{
    {
        const Library lib(data);
    }
    sql.exec("INSERT INTO tPhone ([IMEI]) VALUES ('351111'); UPDATE tVersion SET [Version] = 1");
    const OrdinaryUser user(data.runtimeFolder().parent_path());
    ASSERT_EQ(chmod(data.databaseFolder().c_str(), 0555), 0);
    TraceLog trace(data.runtimeFolder());
    const Library lib(data);
    EXPECT_THAT(trace.take(), ElementsAre("Memory NEW.", "Enter DB_Open().", "Exit DB_Open() with 8398."));
    EXPECT_EQ(sql.text("SELECT [IMEI] FROM tPhone"), "351111");
    ASSERT_EQ(chmod(data.databaseFolder().c_str(), 0755), 0);
    EXPECT_EQ(lib.DB_Open(), 0);
    EXPECT_EQ(sql.text("SELECT [Version] FROM tVersion"), "5005");
}

TEST_F(PosixConnection, Load_FileThatCannotBeRead_IsLeftAlone)
{
    {
        const Library lib(data);
    }
    sql.exec("INSERT INTO tPhone ([IMEI]) VALUES ('351111')");
    const OrdinaryUser user(data.runtimeFolder().parent_path());
    ASSERT_EQ(chmod(data.databasePath().c_str(), 0200), 0);
    TraceLog trace(data.runtimeFolder());
    const Library lib(data);
    EXPECT_THAT(trace.take(), ElementsAre("Memory NEW.", "Enter DB_Open().", "Exit DB_Open() with 8398."));
    ASSERT_EQ(chmod(data.databasePath().c_str(), 0600), 0);
    EXPECT_EQ(sql.text("SELECT [IMEI] FROM tPhone"), "351111");
}

TEST_F(PosixConnection, Load_NewFolders_ArePrivateToTheUser)
{
    const mode_t before = umask(0);
    {
        const Library lib(data);
    }
    umask(before);
    for (fs::path folder = data.databaseFolder(); folder != data.applicationData(); folder = folder.parent_path()) {
        struct stat status = {};
        ASSERT_EQ(stat(folder.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0700u) << folder;
    }
}

TEST_F(PosixConnection, Load_OtherVersionThatCannotBeRemoved_KeepsNoSecondName)
{
    {
        const Library lib(data);
    }
    sql.exec("UPDATE tVersion SET [Version] = 1");
    const OrdinaryUser user(data.runtimeFolder().parent_path());
    ASSERT_EQ(chmod(data.databaseFolder().c_str(), 0555), 0);
    const Library lib(data);
    ASSERT_EQ(chmod(data.databaseFolder().c_str(), 0755), 0);
    EXPECT_EQ(std::distance(fs::directory_iterator(data.databaseFolder()), fs::directory_iterator()), 1);
}

TEST_F(PosixConnection, Load_NewFile_IsPrivateToTheUserInAFolderThatIsNot)
{
    fs::create_directories(data.databaseFolder());
    ASSERT_EQ(chmod(data.databaseFolder().c_str(), 0777), 0);
    const mode_t before = umask(0);
    {
        const Library lib(data);
    }
    umask(before);
    struct stat status = {};
    ASSERT_EQ(stat(data.databasePath().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(PosixConnection, Load_LinkToAFileYetToBeMade_MakesItThere)
{
    fs::create_directories(data.databaseFolder());
    fs::create_directories(data.applicationData() / "elsewhere");
    fs::create_symlink("../../../elsewhere/link", data.databasePath());
    fs::create_symlink("file", data.applicationData() / "elsewhere/link");
    {
        const Library lib(data);
        EXPECT_EQ(lib.DB_Open(), 0);
    }
    EXPECT_TRUE(fs::is_symlink(data.databasePath()));
    EXPECT_TRUE(fs::is_regular_file(data.applicationData() / "elsewhere/file"));
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tLibMainFolder"), "7");
}

TEST_F(PosixConnection, Load_LinkToAFileOfAnotherVersion_ReplacesTheLink)
{
    const fs::path elsewhere = data.applicationData() / "elsewhere";
    {
        const Library lib(data);
    }
    sql.exec("UPDATE tVersion SET [Version] = 1");
    fs::rename(data.databasePath(), elsewhere);
    fs::create_symlink(elsewhere, data.databasePath());
    {
        const Library lib(data);
        EXPECT_EQ(lib.DB_Open(), 0);
    }
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(data.databasePath())));
    EXPECT_EQ(Sql(elsewhere).text("SELECT [Version] FROM tVersion"), "1");
}

/// SQLite opens no path of more than 511 bytes; the buffer has room for 1040.
TEST_F(PosixConnection, Load_PathLongerThanSqliteOpens_FailsAndLeavesNoFile)
{
    fs::path deep = data.applicationData();
    while (deep.native().size() < 600) {
        deep /= std::string(100, 'd');
    }
    fs::create_directories(deep);
    setenv("XDG_DATA_HOME", deep.c_str(), 1);
    const Library lib(data);
    EXPECT_EQ(lib.DB_Open(), 1);
    EXPECT_EQ(lib.DB_Open(), 1);
    EXPECT_TRUE(fs::is_empty(deep / "NORVIK/NORVIK Sync/Database"));
}

TEST_F(PosixConnection, Load_SpecialFilesInThePlace_AreLeftAlone)
{
    fs::create_directories(data.databaseFolder());
    ASSERT_EQ(mkfifo(data.databasePath().c_str(), 0600), 0);
    const Library lib(data);
    EXPECT_EQ(lib.DB_Open(), 8398);
    EXPECT_TRUE(fs::is_fifo(data.databasePath()));
}

TEST_F(PosixConnection, Load_PipeInTheJournalsPlace_NeitherHangsNorCostsTheFile)
{
    {
        const Library lib(data);
    }
    sql.exec("INSERT INTO tPhone ([IMEI]) VALUES ('351111')");
    const std::string journal = data.databasePath().string() + "-journal";
    ASSERT_EQ(mkfifo(journal.c_str(), 0600), 0);
    const Library lib(data);
    EXPECT_EQ(lib.DB_Open(), 8398);
    fs::remove(journal);
    EXPECT_EQ(lib.DB_Open(), 0);
    EXPECT_EQ(sql.text("SELECT [IMEI] FROM tPhone"), "351111");
}

TEST_F(PosixConnection, Load_NoApplicationDataFolder_GivesAConnectionWithoutTables)
{
    setenv("XDG_DATA_HOME", "/proc/nope", 1);
    TraceLog trace(data.runtimeFolder());
    const Library lib(data);
    EXPECT_THAT(trace.take(), ElementsAre("Memory NEW.", "Enter DB_Open().", "Exit DB_Open() with 0."));
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("1"), W("")), -1);
    PhoneList list = {};
    EXPECT_EQ(lib.DB_LIB_GetAllPhones(&list), 1);
    EXPECT_THAT(
        trace.take(),
        ElementsAre("Enter DB_LIB_PhoneDetected(IMEI: 1, Name: ).", "Error in DB_LIB_PhoneDetected(), position 1.",
                    "Exit DB_LIB_PhoneDetected() with PhoneID = -1.", "Enter DB_LIB_GetAllPhones().",
                    "Error in DB_LIB_GetAllPhones(), position 1.", "Exit DB_LIB_GetAllPhones() with 1."));
    EXPECT_TRUE(fs::is_empty(data.applicationData()));
}

TEST_F(PosixConnection, Load_RelativeDataHome_IsIgnoredForTheHomeFolder)
{
    const std::string home = std::getenv("HOME") != nullptr ? std::getenv("HOME") : "";
    setenv("XDG_DATA_HOME", "here", 1);
    setenv("HOME", data.applicationData().c_str(), 1);
    {
        const Library lib(data);
    }
    setenv("HOME", home.c_str(), 1);
    EXPECT_TRUE(fs::exists(data.applicationData() / ".local/share/NORVIK/NORVIK Sync/Database/KESTA_DB.s3db"));
}

TEST_F(PosixConnection, Load_PathLongerThanItsBuffer_FailsToCreate)
{
    fs::path deep = data.applicationData();
    while (deep.native().size() < 1040) {
        deep /= std::string(100, 'd');
    }
    setenv("XDG_DATA_HOME", deep.c_str(), 1);
    TraceLog trace(data.runtimeFolder());
    const Library lib(data);
    EXPECT_THAT(trace.take(), ElementsAre("Memory NEW.", "Enter DB_Open().",
                                          "Error in DB_INTERNAL_Create(), position 1.", "Exit DB_Open() with 1."));
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("1"), W("")), -1);
}

}  // namespace
}  // namespace kesta::test
