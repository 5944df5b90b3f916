// A phone, a database and state files that an earlier client has left: this one goes on with them.
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <unistd.h>

#include <sstream>

#include "client_fixture.h"

namespace kesta::test {
namespace {

using testing::HasSubstr;

// One test at a time uses the folder, also when several builds are tested at once.
class FolderLock {
public:
    explicit FolderLock(const std::string& folder)
        : descriptor_(open((folder + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666))
    {
        if (descriptor_ < 0 || flock(descriptor_, LOCK_EX) != 0) {
            throw std::runtime_error("the test's folder cannot be locked");
        }
    }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;
    ~FolderLock() { (void)close(descriptor_); }

private:
    int descriptor_;
};

constexpr const char* kRoot = "/tmp/kesta-compatibility";  // as in compatibility/make.py: the paths are recorded

class CompatibilityTest : public ClientTest {
protected:
    CompatibilityTest()
    {
        fs::remove_all(kRoot);
        fs::create_directories(kRoot);
        const fs::path made = KESTA_COMPATIBILITY;
        for (const char* part : {"pc", "phone"}) {
            fs::copy(made / part, fs::path(kRoot) / part, fs::copy_options::recursive);
        }
        std::ifstream times(made / "times.txt");
        int64_t time = 0;
        for (std::string path; times >> time && std::getline(times >> std::ws, path);) {
            setTime(path, time);
        }
        fs::create_directories(data().databaseFolder());
        std::ofstream(data().databasePath()).close();
        std::ostringstream statements;
        statements << std::ifstream(made / "database.sql").rdbuf();
        database().exec(statements.str());
        fs::create_directories(note("").parent_path().parent_path());
        fs::copy(made / "client", note(""));
    }
    ~CompatibilityTest() override
    {
        std::error_code ignored;
        fs::remove_all(kRoot, ignored);
    }
    CompatibilityTest(const CompatibilityTest&) = delete;
    CompatibilityTest& operator=(const CompatibilityTest&) = delete;

    static fs::path at(const std::string& path) { return fs::path(kRoot) / path; }
    static void setTime(const std::string& path, int64_t seconds)
    {
        const std::chrono::sys_seconds time{std::chrono::seconds(seconds)};
        fs::last_write_time(at(path), std::chrono::file_clock::from_sys(time));
    }
    static void put(const std::string& path, const std::string& contents)
    {
        fs::create_directories(at(path).parent_path());
        std::ofstream(at(path), std::ios::binary) << contents;
    }
    static std::string read(const std::string& path)
    {
        std::ostringstream text;
        text << std::ifstream(at(path), std::ios::binary).rdbuf();
        return text.str();
    }
    /// The phone's files with their contents, but for the client's own.
    static std::map<std::string, std::string> filesOnPhone()
    {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator(at("phone"))) {
            const std::string path = Utf8(entry.path().lexically_relative(at("phone")));
            if (entry.is_regular_file() && !path.starts_with(".kesta-")) {
                files[path] = read("phone/" + path);
            }
        }
        return files;
    }
    /// Every row in which the phone or a file is recorded.
    [[nodiscard]] std::string rows() const
    {
        std::string rows;
        for (const char* table : {"tMFile", "tIFile", "tPFile", "tPFilename", "tPFolder", "tBFile", "tPimFolder",
                                  "tPimFolderLink", "tPimItem", "tPimLog", "tPimLogItem"}) {
            rows +=
                fmt::format("{}:\n{}\n", table, database().text(fmt::format("SELECT * FROM {} ORDER BY rowid", table)));
        }
        return rows;
    }
    Ended syncAgain(std::vector<std::string> more = {})
    {
        std::vector<std::string> arguments{"sync",
                                           "--phone",
                                           at("phone"),
                                           "--music",
                                           at("pc/Rock"),
                                           "--music",
                                           at("pc/More/Rock"),
                                           "--images",
                                           at("pc/Pictures"),
                                           "--playlists",
                                           at("pc/Lists"),
                                           "--bookmarks",
                                           at("pc/bookmarks.html"),
                                           "--contacts",
                                           at("pc/friends.vcf"),
                                           "--calendar",
                                           at("pc/home.ics")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return client(arguments, {{"TZ", "UTC"}});
    }

private:
    FolderLock lock_{kRoot};
};

TEST_F(CompatibilityTest, NothingToDo_NothingIsCopiedOrRecordedTwice)
{
    const auto files = filesOnPhone();
    const std::string before = rows();
    const Ended run = syncAgain();
    EXPECT_EQ(run.exitCode, 4) << run.out << run.err;  // the bookmarks' removal still waits
    EXPECT_THAT(run.out, HasSubstr("Ann's phone"));
    EXPECT_THAT(run.out, HasSubstr("0 copied, 0 updated, 0 removed, 6 unchanged, 0 failed"));
    EXPECT_THAT(run.out, HasSubstr("Playlists: 0 added, 0 updated, 0 removed, 2 unchanged"));
    EXPECT_THAT(run.out, HasSubstr("Contacts: 0 added, 0 updated, 0 removed, 3 unchanged"));
    EXPECT_THAT(run.out, HasSubstr("Calendar: 0 added, 0 updated, 0 removed, 2 unchanged"));
    EXPECT_EQ(filesOnPhone(), files);
    EXPECT_EQ(rows(), before);
}

TEST_F(CompatibilityTest, ChangesOnThePc_GoToTheSamePlaces)
{
    const auto before = filesOnPhone();
    put("pc/More/Rock/a.mp3", "sung anew");
    setTime("pc/More/Rock/a.mp3", 1'700'000'100);
    put("pc/Loose/x.mp3", "sung anew, too");
    put("pc/friends.vcf", "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:1\r\nFN:Ann Other\r\nEND:VCARD\r\n" +
                              read("pc/friends.vcf").substr(read("pc/friends.vcf").find("BEGIN", 1)));
    const Ended run = syncAgain({"--force"});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    const auto after = filesOnPhone();
    ASSERT_EQ(after.size(), before.size());
    for (const auto& [path, contents] : before) {
        EXPECT_TRUE(after.contains(path)) << path;
    }
    EXPECT_THAT(after.at("Contacts/friends.vcf"), HasSubstr("Ann Other"));
    EXPECT_THAT(after.at("Playlists/Media/Loose/x.mp3"), "sung anew, too");
    EXPECT_EQ(database().text("SELECT [Path] FROM tBFile"), "http://site1.example/");
    EXPECT_FALSE(fs::exists(note("351111.held-back.json")));
    EXPECT_FALSE(fs::exists(note("351111.deferred.json")));
}

// What a client that was killed leaves: a file without a record, and a card file that was being replaced.
TEST_F(CompatibilityTest, RunThatWasCutShort_IsTakenUp)
{
    put("pc/Rock/new.mp3", "new");
    put("phone/Music/Rock/new.mp3", "new, but copied only in part");
    put("phone/.kesta-journal", "Music/Rock/new.mp3\n");
    put("pc/work.vcf", "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:9\r\nFN:Di Example\r\nEND:VCARD\r\n");
    put("phone/Contacts/work.vcf", "an earlier state of that file");
    std::ofstream(note("pim of 351111.json")) << R"({"imei":"351111","places":["Contacts/work.vcf"]})";
    const auto before = filesOnPhone();
    const Ended run = syncAgain({"--force", "--contacts", at("pc/work.vcf")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("cut short"));
    const auto after = filesOnPhone();
    EXPECT_EQ(after.size(), before.size());
    EXPECT_EQ(after.at("Music/Rock/new.mp3"), "new");
    EXPECT_THAT(after.at("Contacts/work.vcf"), HasSubstr("Di Example"));
    EXPECT_FALSE(fs::exists(at("phone/.kesta-journal")));
    EXPECT_FALSE(fs::exists(note("pim of 351111.json")));
}

}  // namespace
}  // namespace kesta::test
