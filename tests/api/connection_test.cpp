// Loading and unloading, DB_Open and DB_Close, and which files are opened, thrown away or left alone.
#include <fstream>
#include <sstream>

#include "api/given.h"
#include "support/helper_process.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;

namespace fs = std::filesystem;

std::string Bytes(const fs::path& file)
{
    std::ostringstream bytes;
    bytes << std::ifstream(file, std::ios::binary).rdbuf();
    return bytes.str();
}

/// A data folder with a file in the database's place; the library is loaded by the test.
class Connection : public ::testing::Test {
protected:
    void givenFile(const std::string& bytes)
    {
        fs::create_directories(data.databaseFolder());
        std::ofstream(data.databasePath(), std::ios::binary) << bytes;
        ASSERT_EQ(Bytes(data.databasePath()), bytes);
    }

    /// A database made by the library, then changed.
    void givenDatabase(const std::string& change)
    {
        {
            const Library lib(data);
        }
        sql.exec(change);
        trace.take();
    }

    /// Loads the library and expects a database as new, of which nothing old is left.
    void expectCreatedAfresh()
    {
        const Library lib(data);
        EXPECT_THAT(trace.take(), ElementsAre("Memory NEW.", "Enter DB_Open().", "Exit DB_Open() with 0."));
        EXPECT_EQ(sql.text("SELECT * FROM tVersion"), "5005");
        EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tPhone"), "0");
        EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tLibMainFolder"), "7");
        EXPECT_EQ(sql.text("SELECT COUNT(*) FROM sqlite_master WHERE name = 'old'"), "0");
    }

    DataFolder data;
    TraceLog trace{data.runtimeFolder()};
    Sql sql{data.databasePath()};
};

TEST_F(Connection, Load_NoFile_CreatesFoldersAndDatabase)
{
    const Library lib(data);
    EXPECT_TRUE(fs::is_regular_file(data.databasePath()));
    EXPECT_THAT(trace.take(), ElementsAre("Memory NEW.", "Enter DB_Open().", "Exit DB_Open() with 0."));
    EXPECT_EQ(lib.DB_Open(), 0);
}

TEST_F(Connection, Load_OnlySomeOfTheFolders_CreatesTheOthers)
{
    fs::create_directories(data.applicationData() / "NORVIK");
    const Library lib(data);
    EXPECT_TRUE(fs::is_regular_file(data.databasePath()));
}

TEST_F(Connection, Unload_AfterUse_ReleasesTheBufferThatLoadingTook)
{
    {
        const Library lib(data);
    }
    const std::vector<std::string> lines = trace.take(Addresses::kKept);
    ASSERT_EQ(lines.size(), 4u);
    ASSERT_THAT(lines.front(), ::testing::EndsWith(" NEW."));
    const std::string address = lines.front().substr(0, lines.front().size() - 5);
    EXPECT_EQ(lines.back(), address + " DELETE.");
}

TEST_F(Connection, Load_FileOfThisVersion_KeepsItsRows)
{
    givenDatabase("INSERT INTO tPhone ([IMEI]) VALUES ('351111')");
    const std::string before = Bytes(data.databasePath());
    const Library lib(data);
    EXPECT_THAT(trace.take(), ElementsAre("Memory NEW.", "Enter DB_Open().", "Exit DB_Open() with 0."));
    EXPECT_EQ(Bytes(data.databasePath()), before);
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("351111"), W("")), 1);
}

TEST_F(Connection, Load_FirstOfSeveralVersions_Counts)
{
    givenDatabase("INSERT INTO tPhone ([IMEI]) VALUES ('351111'); INSERT INTO tVersion VALUES (1)");
    const Library lib(data);
    EXPECT_EQ(sql.text("SELECT [IMEI] FROM tPhone"), "351111");
}

TEST_F(Connection, Load_AnyOtherVersion_ThrowsTheFileAway)
{
    for (const char* version : {"5004", "5006", "0", "-1", "'abc'", "4294972302.5"}) {
        SCOPED_TRACE(version);
        givenDatabase(
            "CREATE TABLE old(a); INSERT INTO tPhone ([IMEI]) VALUES ('351111'); UPDATE tVersion SET [Version] = " +
            std::string(version));
        expectCreatedAfresh();
        trace.take();
    }
}

TEST_F(Connection, Load_NoVersionRow_ThrowsTheFileAway)
{
    givenDatabase("CREATE TABLE old(a); DELETE FROM tVersion");
    expectCreatedAfresh();
}

TEST_F(Connection, Load_NoVersionTable_ThrowsTheFileAway)
{
    givenDatabase("CREATE TABLE old(a); DROP TABLE tVersion");
    expectCreatedAfresh();
}

TEST_F(Connection, Load_VersionColumnOfAnotherName_ThrowsTheFileAway)
{
    givenDatabase("CREATE TABLE old(a); ALTER TABLE tVersion RENAME COLUMN [Version] TO [Other]");
    expectCreatedAfresh();
}

TEST_F(Connection, Load_NoDatabaseAtAll_ThrowsTheFileAway)
{
    for (const std::string& bytes : {std::string(), std::string("x"), std::string("no database"),
                                     std::string(5000, 'z'), std::string(4096, '\0')}) {
        SCOPED_TRACE(bytes.size());
        givenFile(bytes);
        expectCreatedAfresh();
        trace.take();
    }
}

TEST_F(Connection, Load_DatabaseCutShort_ThrowsTheFileAway)
{
    givenDatabase("CREATE TABLE old(a)");
    // By hand: the C++ library of 32-bit MinGW cannot resize a file.
    std::string start(5000, '\0');
    std::ifstream(data.databasePath(), std::ios::binary).read(start.data(), static_cast<std::streamsize>(start.size()));
    std::ofstream(data.databasePath(), std::ios::binary) << start;
    expectCreatedAfresh();
}

TEST_F(Connection, Load_ReadOnlyFile_IsLeftAloneWith19)
{
    givenDatabase("UPDATE tVersion SET [Version] = 1");  // even of the wrong version
    const std::string before = Bytes(data.databasePath());
    fs::permissions(data.databasePath(), fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    const Library lib(data);
    EXPECT_THAT(trace.take(), ElementsAre("Memory NEW.", "Enter DB_Open().", "Error in DB_Open(), position 1.",
                                          "Exit DB_Open() with 19."));
    EXPECT_EQ(Bytes(data.databasePath()), before);
    EXPECT_EQ(lib.DB_Open(), 19);
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W("")), -1);

    fs::permissions(data.databasePath(), fs::perms::owner_write, fs::perm_options::add);
    EXPECT_EQ(lib.DB_Open(), 0);
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W("")), 1);
}

TEST_F(Connection, Load_FolderInTheFilesPlace_IsLeftAloneWith8398)
{
    fs::create_directories(data.databasePath() / "within");
    const Library lib(data);
    EXPECT_THAT(trace.take(), ElementsAre("Memory NEW.", "Enter DB_Open().", "Exit DB_Open() with 8398."));
    EXPECT_TRUE(fs::is_directory(data.databasePath() / "within"));
}

TEST_F(Connection, Load_FileInAFoldersPlace_FailsToCreate)
{
    fs::create_directories(data.databaseFolder().parent_path());
    std::ofstream(data.databaseFolder()) << "in the way";
    const Library lib(data);
    EXPECT_THAT(trace.take(), ElementsAre("Memory NEW.", "Enter DB_Open().",
                                          "Error in DB_INTERNAL_Create(), position 1.", "Exit DB_Open() with 1."));
    EXPECT_EQ(Bytes(data.databaseFolder()), "in the way");
    fs::remove(data.databaseFolder());
    EXPECT_EQ(lib.DB_Open(), 0);
    EXPECT_EQ(sql.text("SELECT * FROM tVersion"), "5005");
}

TEST_F(Connection, Load_FileLockedByAnother_IsLeftAloneWith8398)
{
    for (const char* version : {"5005", "1"}) {  // it may be valid: that cannot be told
        givenDatabase(std::string("DELETE FROM tPhone; INSERT INTO tPhone ([IMEI]) VALUES ('351111'); "
                                  "UPDATE tVersion SET [Version] = ") +
                      version);
        HelperProcess other;
        ASSERT_EQ(other.ask({"lock", "EXCLUSIVE", data.databasePath().string()}), "ok");
        const Library lib(data);
        EXPECT_THAT(trace.take(), ElementsAre("Memory NEW.", "Enter DB_Open().", "Exit DB_Open() with 8398."));
        ASSERT_EQ(other.ask({"unlock"}), "ok");
        EXPECT_EQ(sql.text("SELECT [IMEI] FROM tPhone"), "351111");
    }
}

TEST_F(Connection, Load_FileReadByAnother_IsOpened)
{
    givenDatabase("INSERT INTO tPhone ([IMEI]) VALUES ('351111')");
    HelperProcess other;
    ASSERT_EQ(other.ask({"lock", "IMMEDIATE", data.databasePath().string()}), "ok");
    const Library lib(data);
    EXPECT_EQ(lib.DB_Open(), 0);
    ASSERT_EQ(other.ask({"unlock"}), "ok");
}

TEST_F(Connection, Open_OpenAlready_TouchesNothing)
{
    const Library lib(data);
    sql.exec("UPDATE tVersion SET [Version] = 1");
    const std::string before = Bytes(data.databasePath());
    trace.take();
    EXPECT_EQ(lib.DB_Open(), 0);
    EXPECT_EQ(lib.DB_Open(), 0);
    EXPECT_THAT(trace.take(), ElementsAre("Enter DB_Open().", "Exit DB_Open() with 0.", "Enter DB_Open().",
                                          "Exit DB_Open() with 0."));
    EXPECT_EQ(Bytes(data.databasePath()), before);
}

TEST_F(Connection, Close_WheneverCalled_ChangesNothingAndTracesNothing)
{
    const Library lib(data);
    trace.take();
    EXPECT_EQ(lib.DB_Close(), 0);
    EXPECT_EQ(lib.DB_Close(), 0);
    EXPECT_THAT(trace.take(), ElementsAre());
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W("")), 1);
    EXPECT_EQ(lib.DB_Open(), 0);
    EXPECT_EQ(lib.DB_Close(), 0);
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W("")), 1);
}

TEST_F(Connection, Close_DatabaseNotOpen_IsZeroToo)
{
    fs::create_directories(data.databasePath());
    const Library lib(data);
    EXPECT_EQ(lib.DB_Close(), 0);
    EXPECT_EQ(lib.DB_Open(), 8398);
}

TEST_F(Connection, Load_Again_FindsWhatWasWritten)
{
    Library lib(data);
    ASSERT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W(kName)), 1);
    lib.unload();
    lib.load();
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W(kImei), W("")), 1);
    EXPECT_EQ(lib.DB_LIB_PhoneDetected(W("352222"), W("")), 2);
}

TEST_F(Connection, Exec_StatementsThatReachElsewhere_AreRefused)
{
    const Library lib(data);
    // The IMEI stands in its statements as it is; what it smuggles in can neither attach a file nor write the schema.
    const std::string elsewhere = (data.databaseFolder() / "elsewhere.db").generic_string();
    EXPECT_EQ(lib.DB_LIB_SetSDType(W("'; ATTACH '" + elsewhere + "' AS other; --"), 1, 2), 1);
    EXPECT_FALSE(fs::exists(data.databaseFolder() / "elsewhere.db"));
    EXPECT_EQ(lib.DB_LIB_SetSDType(W("'; PRAGMA writable_schema = ON; DELETE FROM sqlite_master; --"), 1, 2), 1);
    EXPECT_EQ(sql.text("SELECT * FROM tVersion"), "5005");
}

}  // namespace
}  // namespace kesta::test
