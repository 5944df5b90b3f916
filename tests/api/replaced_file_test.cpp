// What becomes of a file that is thrown away, and how a new one comes to be.
#include <algorithm>
#include <chrono>
#include <fstream>
#include <sstream>

#include "api/given.h"

namespace kesta::test {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

namespace fs = std::filesystem;

std::string Bytes(const fs::path& file)
{
    std::ostringstream bytes;
    bytes << std::ifstream(file, std::ios::binary).rdbuf();
    return bytes.str();
}

/// The names with every digit behind "replaced-" as 0.
std::vector<std::string> ShapesOf(std::vector<std::string> names)
{
    constexpr std::string_view kReplaced = "replaced-";
    for (std::string& name : names) {
        const size_t found = name.find(kReplaced);
        if (found != std::string::npos) {
            std::replace_if(
                name.begin() + static_cast<ptrdiff_t>(found + kReplaced.size()), name.end(),
                [](char c) { return c >= '0' && c <= '9'; }, '0');
        }
    }
    return names;
}

class ReplacedFile : public ::testing::Test {
protected:
    void givenFile(const std::string& bytes, const std::string& suffix = "") const
    {
        fs::create_directories(data.databaseFolder());
        std::ofstream(file(suffix), std::ios::binary) << bytes;
    }
    [[nodiscard]] fs::path file(const std::string& suffix) const
    {
        fs::path named = data.databasePath();
        return named += suffix;
    }

    /// Loads the library, which is to find or make a database, and unloads it.
    void load() const
    {
        const Library lib(data);
        EXPECT_EQ(lib.DB_Open(), 0);
    }

    /// The names beside the database, in their order.
    [[nodiscard]] std::vector<std::string> names() const
    {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(data.databaseFolder())) {
            found.push_back(reinterpret_cast<const char*>(entry.path().filename().u8string().c_str()));
        }
        std::sort(found.begin(), found.end());
        return found;
    }

    DataFolder data;
    Sql sql{data.databasePath()};
};

TEST_F(ReplacedFile, AnotherVersion_KeepsASecondName)
{
    load();
    sql.exec("INSERT INTO tPhone ([IMEI]) VALUES ('351111'); UPDATE tVersion SET [Version] = 5006");
    const std::string before = Bytes(data.databasePath());
    load();
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tPhone"), "0");
    ASSERT_THAT(ShapesOf(names()), ElementsAre("KESTA_DB.s3db", "KESTA_DB.s3db.replaced-00000000-000000"));
    EXPECT_EQ(Bytes(data.databaseFolder() / names()[1]), before);
}

TEST_F(ReplacedFile, DamagedFile_KeepsASecondName)
{
    const std::string noDatabase(5000, 'z');
    givenFile(noDatabase);
    load();
    ASSERT_THAT(names(), SizeIs(2));
    EXPECT_EQ(Bytes(data.databaseFolder() / names()[1]), noDatabase);
}

TEST_F(ReplacedFile, ItsJournals_AreKeptWithIt)
{
    const std::string journal("\0no journal that is to be played back", 36);
    givenFile(std::string(5000, 'z'));
    givenFile(journal, "-journal");
    load();
    ASSERT_THAT(ShapesOf(names()), ElementsAre("KESTA_DB.s3db", "KESTA_DB.s3db.replaced-00000000-000000",
                                               "KESTA_DB.s3db.replaced-00000000-000000-journal"));
    EXPECT_EQ(Bytes(data.databaseFolder() / names()[2]), journal);
    EXPECT_EQ(names()[2], names()[1] + "-journal");
}

TEST_F(ReplacedFile, SeveralInOneSecond_HaveNamesOfTheirOwn)
{
    for (const char* content : {"first", "second", "third"}) {
        givenFile(content);
        load();
    }
    ASSERT_THAT(names(), SizeIs(4));
    EXPECT_EQ(Bytes(data.databaseFolder() / names()[1]), "first");
    EXPECT_EQ(Bytes(data.databaseFolder() / names()[2]), "second");
    EXPECT_EQ(Bytes(data.databaseFolder() / names()[3]), "third");
}

TEST_F(ReplacedFile, NewestThree_Stay_AndWhatIsNotOursToo)
{
    const std::vector<std::string> others = {
        ".replaced-", ".replaced-20200101-00000", ".replaced-20200101-000000-other", ".replaced-2020010a-000000",
        "-copy",      ".replaced-20200101x000000"};
    givenFile("none");
    for (const char* stamp : {"19991231-235959", "20200101-000000", "20200102-000000", "20200103-000000"}) {
        givenFile(stamp, ".replaced-" + std::string(stamp));
    }
    givenFile("journal", ".replaced-20200101-000000-journal");
    givenFile("log", ".replaced-20200102-000000-wal");
    givenFile("log", ".replaced-20200103-000000-wal");
    for (const std::string& other : others) {
        givenFile(other, other);
    }
    load();
    for (const std::string& other : others) {
        EXPECT_EQ(Bytes(file(other)), other);
    }
    EXPECT_FALSE(fs::exists(file(".replaced-19991231-235959")));
    EXPECT_FALSE(fs::exists(file(".replaced-20200101-000000")));
    EXPECT_FALSE(fs::exists(file(".replaced-20200101-000000-journal")));
    EXPECT_TRUE(fs::exists(file(".replaced-20200102-000000")));
    EXPECT_TRUE(fs::exists(file(".replaced-20200102-000000-wal")));
    EXPECT_TRUE(fs::exists(file(".replaced-20200103-000000")));
    EXPECT_TRUE(fs::exists(file(".replaced-20200103-000000-wal")));
    EXPECT_THAT(names(), SizeIs(1 + others.size() + 5));
}

/// A journal that has lost its database belongs to nothing; SQLite would play it back into the new one.
TEST_F(ReplacedFile, JournalWithoutAFile_IsNotTakenForTheNewFiles)
{
    givenFile("\xD9\xD5\x05\xF9\x20\xA1\x63\xD7 of another database", "-journal");
    givenFile("log", "-wal");
    givenFile("index", "-shm");
    load();
    EXPECT_THAT(names(), ElementsAre("KESTA_DB.s3db"));
    EXPECT_EQ(sql.text("PRAGMA integrity_check"), "ok");
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tLibMainFolder"), "7");
}

TEST_F(ReplacedFile, UnfinishedFileOfAnEarlierStart_IsMadeAnew)
{
    fs::create_directories(data.databaseFolder());
    std::ofstream(data.databaseFolder() / "KESTA_DB.part", std::ios::binary) << "half a database";
    std::ofstream(data.databaseFolder() / "KESTA_DB.part-journal", std::ios::binary) << "and its journal";
    load();
    EXPECT_THAT(names(), ElementsAre("KESTA_DB.s3db"));
    EXPECT_EQ(sql.text("SELECT COUNT(*) FROM tLibMainFolder"), "7");
}

/// What cannot be cleared away keeps nobody from making a database.
TEST_F(ReplacedFile, UnfinishedNameTakenByAFolder_IsMadeInPlace)
{
    fs::create_directories(data.databaseFolder() / "KESTA_DB.part");
    load();
    EXPECT_THAT(names(), ElementsAre("KESTA_DB.part", "KESTA_DB.s3db"));
    EXPECT_EQ(sql.text("SELECT [Version] FROM tVersion"), "5005");
}

}  // namespace
}  // namespace kesta::test
