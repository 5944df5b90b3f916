// Backups: the archive of a phone's contents, and its record where the database has a table for it.
#include <algorithm>
#include <random>
#include <regex>

#include "client_fixture.h"
#include "os/files.h"
#include "stages/backup/zip_check.h"
#include "stages/backup/zip_writer.h"

namespace kesta::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr const char* kTable =
    "CREATE TABLE tBackups ([bcID] INTEGER PRIMARY KEY AUTOINCREMENT, [phoneID] INTEGER, [Path] TEXT, [PhonePath] "
    "TEXT, [Size] NUMERIC, [ModifiedTime] DATETIME)";

uint32_t Crc(const std::string& text)
{
    uint32_t crc = 0xFFFFFFFF;
    for (const char c : text) {
        crc ^= static_cast<uint8_t>(c);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320u : 0);
        }
    }
    return ~crc;
}

class SyncBackupTest : public ClientTest {
protected:
    SyncBackupTest() { fs::create_directories(folder()); }
    [[nodiscard]] fs::path folder() const { return work() / "backups"; }
    Ended backUp(std::vector<std::string> more = {})
    {
        more.insert(more.begin(), {"--name", "Anna's phone", "--backup", Utf8(folder())});
        return sync(more);
    }
    void givenOnPhone(const std::string& place, const std::string& contents)
    {
        fs::create_directories(Path(phone(place)).parent_path());
        std::ofstream(Path(phone(place)), std::ios::binary) << contents;
    }
    [[nodiscard]] std::vector<std::string> archives() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder())) {
            names.push_back(Utf8(entry.path().filename()));
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    [[nodiscard]] std::string path(const std::string& archive) const { return Utf8(folder() / Path(archive)); }
    /// The archive holds these folders, what is on the phone now, and nothing else.
    void expectWhole(const std::string& archive, const std::vector<std::string>& emptyFolders = {}) const
    {
        std::vector<ZipEntry> expected;
        for (const std::string& name : emptyFolders) {
            expected.push_back({name + '/', 0, 0});
        }
        for (const auto& [place, contents] : phoneFiles()) {
            expected.push_back({place, contents.size(), Crc(contents)});
        }
        const os::Status status = CheckZip(path(archive), expected, [](size_t) { return true; });
        EXPECT_TRUE(status.ok()) << status.text();
    }
};

TEST_F(SyncBackupTest, HoldsAllOfThePhone_ButNotTheClientsOwnFiles)
{
    givenFile("Rock/a.mp3", "music");
    givenOnPhone("DCIM/\u65e5\u672c \u00e4.jpg", std::string(300'000, 'j'));
    givenOnPhone("notes.txt", std::string(1'000'000, 'n'));
    givenOnPhone("empty.txt", "");
    fs::create_directories(Path(phone("Empty/Inside")));
    const Ended run = backUp({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("4 files, 1.3 MB"));
    ASSERT_THAT(archives(), SizeIs(1));
    EXPECT_TRUE(std::regex_match(archives()[0], std::regex("Anna's phone-351111-\\d{4}-\\d\\d-\\d\\d-\\d{6}\\.zip")))
        << archives()[0];
    expectWhole(archives()[0], {"Empty/Inside"});
    EXPECT_LT(fs::file_size(Path(path(archives()[0]))), 400'000u) << "text is compressed";
}

TEST_F(SyncBackupTest, ComesAfterTheOtherSteps)
{
    givenFile("Extra/a.mp3", "music");
    givenFile("lists/One.m3u8", "../Extra/a.mp3\n");
    givenFile("bookmarks.html", "<DL><DT><A HREF=\"https://a.example/\">A</A></DL>");
    EXPECT_EQ(backUp({"--playlists", pc("lists"), "--bookmarks", pc("bookmarks.html")}).exitCode, 0);
    EXPECT_THAT(phonePaths(), SizeIs(3));
    ASSERT_THAT(archives(), SizeIs(1));
    expectWhole(archives()[0]);
}

TEST_F(SyncBackupTest, DatabaseWithoutTheTable_IsNoFailure)
{
    givenOnPhone("a.txt", "a");
    const Ended run = backUp();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, HasSubstr("the database has no table for backups; the archive itself is complete"));
    EXPECT_THAT(archives(), SizeIs(1));
}

TEST_F(SyncBackupTest, DatabaseWithTheTable_RecordsEachBackup)
{
    givenOnPhone("a.txt", "a");
    ASSERT_EQ(client({"status"}).exitCode, 0);
    database().exec(kTable);
    const Ended run = backUp();
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, Not(HasSubstr("no table")));
    ASSERT_THAT(archives(), SizeIs(1));
    const std::string archive = path(archives()[0]);
    EXPECT_EQ(
        database().text("SELECT [bcID], [Path], [PhonePath], [Size] FROM tBackups"),
        "1|" + Utf8(fs::path(Path(archive)).make_preferred()) + "|/|" + std::to_string(fs::file_size(Path(archive))));
    EXPECT_EQ(database().text("SELECT ABS(strftime('%s', [ModifiedTime]) - strftime('%s', 'now', 'localtime')) < 600 "
                              "FROM tBackups"),
              "1");
    EXPECT_EQ(backUp().exitCode, 0);
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tBackups"), "2");
}

TEST_F(SyncBackupTest, DatabaseThatRefusesTheRecord_IsSaid)
{
    ASSERT_EQ(client({"status"}).exitCode, 0);
    database().exec(kTable);
    database().exec("CREATE TRIGGER refuse BEFORE INSERT ON tBackups BEGIN SELECT RAISE(ABORT, 'no'); END");
    const Ended run = backUp();
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("it is complete, but cannot be recorded in the database"));
    EXPECT_THAT(archives(), SizeIs(1));
}

TEST_F(SyncBackupTest, TwoInOneSecond_HaveTheirOwnNames)
{
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(backUp().exitCode, 0);
    }
    EXPECT_THAT(archives(), SizeIs(3));
}

TEST_F(SyncBackupTest, FolderThatCannotTakeIt_IsRefused)
{
    givenOnPhone("a.txt", "a");
    fs::remove(folder());
    const Ended missing = backUp();
    EXPECT_EQ(missing.exitCode, 3);
    EXPECT_THAT(missing.out, HasSubstr("the folder for backups cannot be used"));
    fs::create_directories(Path(phone("backups")));
    const Ended onPhone = sync({"--backup", phone("backups")});
    EXPECT_EQ(onPhone.exitCode, 3);
    EXPECT_THAT(onPhone.out, HasSubstr("it lies on the phone itself"));
    EXPECT_TRUE(fs::is_empty(Path(phone("backups"))));
}

TEST_F(SyncBackupTest, DryRun_WritesNothing)
{
    givenOnPhone("a.txt", "a");
    const Ended run = backUp({"--dry-run"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.out, AllOf(HasSubstr("backup    "), HasSubstr(": 1 file, 1 B")));
    EXPECT_THAT(archives(), IsEmpty());
}

TEST_F(SyncBackupTest, PartsOfAKilledRun_AreRemovedByTheNext)
{
    std::ofstream(folder() / "Anna's phone-351111-2020-01-01-000000.zip.part") << "half";
    std::ofstream(folder() / "Ben's phone-4711-2020-01-01-000000.zip.part") << "another phone's";
    EXPECT_EQ(backUp().exitCode, 0);
    ASSERT_THAT(archives(), SizeIs(2));
    EXPECT_EQ(archives()[1], "Ben's phone-4711-2020-01-01-000000.zip.part");
}

class ZipTest : public testing::Test {
protected:
    ZipTest() { fs::create_directories(folder_); }
    ~ZipTest() override { fs::remove_all(folder_); }
    [[nodiscard]] std::string path() const { return Utf8(folder_ / "a.zip"); }
    std::vector<ZipEntry> givenArchive()
    {
        ZipWriter zip;
        EXPECT_TRUE(zip.create(path()).ok());
        EXPECT_TRUE(zip.addFolder("empty", {1'700'000'000, 0}).ok());
        for (const char* name : {"stored.mp3", "packed.txt"}) {
            const std::string contents(10'000, name[0]);
            EXPECT_TRUE(zip.beginFile(name, {1'700'000'000, 0}, contents.size()).ok());
            EXPECT_TRUE(zip.write(std::as_bytes(std::span(contents))).ok());
            EXPECT_TRUE(zip.endFile().ok());
        }
        EXPECT_TRUE(zip.finish().ok());
        return zip.entries();
    }
    os::Status check(const std::vector<ZipEntry>& expected) const
    {
        return CheckZip(path(), expected, [](size_t) { return true; });
    }

    fs::path folder_ = fs::temp_directory_path() / ("kesta-zip-" + std::to_string(std::random_device()()));
};

TEST_F(ZipTest, WhatWasWritten_IsReadBack)
{
    const auto entries = givenArchive();
    ASSERT_THAT(entries, SizeIs(3));
    EXPECT_EQ(entries[1].crc, Crc(std::string(10'000, 's')));
    EXPECT_TRUE(check(entries).ok());
}

TEST_F(ZipTest, AnyDifference_IsFound)
{
    const auto entries = givenArchive();
    auto other = entries;
    other.pop_back();
    EXPECT_FALSE(check(other).ok()) << "one too many";
    other = entries;
    other.push_back({"more", 0, 0});
    EXPECT_FALSE(check(other).ok()) << "one is missing";
    for (const auto change :
         {+[](ZipEntry& e) { e.crc ^= 1; }, +[](ZipEntry& e) { ++e.size; }, +[](ZipEntry& e) { e.name = "x"; }}) {
        other = entries;
        change(other[2]);
        EXPECT_FALSE(check(other).ok());
    }
}

TEST_F(ZipTest, DamagedContents_AreFound)
{
    const auto entries = givenArchive();
    std::fstream file(folder_ / "a.zip", std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(5000);  // within the stored file
    file.put('X');
    file.close();
    const os::Status status = check(entries);
    EXPECT_FALSE(status.ok());
    EXPECT_THAT(status.text(), HasSubstr("stored.mp3"));
}

TEST_F(ZipTest, ArchiveThatIsThere_IsNotOverwritten)
{
    givenArchive();
    ZipWriter zip;
    EXPECT_EQ(zip.create(path()).failure(), os::Failure::kExists);
}

}  // namespace
}  // namespace kesta::test
