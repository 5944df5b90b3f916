// Playlists, bookmarks and backups when system calls fail, and when the process dies at each of them in turn.
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fstream>

#include "client_fixture.h"
#include "fault_environment.h"

namespace kesta::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class FamiliesFaultsTest : public ClientTest {
protected:
    static Environment failing(const std::string& call, int code, const std::string& path, int skip = 0)
    {
        return Faults({{"KESTA_FAULT_ERRNO", std::to_string(code)},
                       {"KESTA_FAULT_CALL", call},
                       {"KESTA_FAULT_PATH", path},
                       {"KESTA_FAULT_SKIP", std::to_string(skip)}});
    }

    [[nodiscard]] std::vector<fs::path> kept() const { return {work() / "phone", data().applicationData() / "NORVIK"}; }
    [[nodiscard]] fs::path keptAt(const fs::path& folder) const { return work() / "kept" / folder.filename(); }
    void keep() const
    {
        for (const fs::path& folder : kept()) {
            fs::create_directories(keptAt(folder));
            fs::copy(folder, keptAt(folder), fs::copy_options::recursive);
        }
    }
    void restore() const
    {
        for (const fs::path& folder : kept()) {
            fs::remove_all(folder);
            fs::copy(keptAt(folder), folder, fs::copy_options::recursive);
        }
    }
    [[nodiscard]] std::string rows() const
    {
        return database().text("SELECT [Path], [Digest], [IdInPhone], [Flag], [Count] FROM tPFolder ORDER BY 1") +
               '\n' + database().text("SELECT [Path], [BasePath], [PhonePath], [ModifiedTime] FROM tPFile ORDER BY 1") +
               '\n' + database().text("SELECT [Listname], [Filename] FROM tPFilename ORDER BY 1, 2") + '\n' +
               database().text("SELECT [Title], [Path], [PhoneMID], [Id], [Flag] FROM tBFile ORDER BY 2");
    }

    /// Carries the same work out undisturbed, and killed at each call that changes something and then again: what comes
    /// of it must be the same.
    void expectSameAfterAnyKill(const std::vector<std::string>& arguments)
    {
        keep();
        const std::string counted = (work() / "count").string();
        const Ended undisturbed = sync(arguments, Faults({{"KESTA_FAULT_COUNT_FILE", counted}}));
        ASSERT_EQ(undisturbed.exitCode, 0) << undisturbed.out << undisturbed.err;
        const auto wantedFiles = phoneFiles();
        const std::string wantedRows = rows();
        long calls = 0;
        std::ifstream(counted) >> calls;
        ASSERT_GT(calls, 40) << "the calls are not seen";
        for (long call = 1; call <= calls; ++call) {
            SCOPED_TRACE("killed at call " + std::to_string(call) + " of " + std::to_string(calls));
            restore();
            const Ended killed = sync(arguments, Faults({{"KESTA_FAULT_KILL_AT", std::to_string(call)}}));
            ASSERT_EQ(killed.exitCode, -SIGKILL) << killed.out << killed.err;
            const Ended run = sync(arguments);
            ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
            EXPECT_EQ(phoneFiles(), wantedFiles);
            EXPECT_EQ(rows(), wantedRows);
            EXPECT_THAT(ownFiles(), IsEmpty());
            ASSERT_FALSE(HasFailure()) << killed.out << run.out;
        }
    }

    void givenBookmarks(const std::string& names)
    {
        std::string text = "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<DL><p>\n";
        for (const char name : names) {
            text += std::string("<DT><A HREF=\"https://") + name + ".example/\">" + name + "</A>\n";
        }
        givenFile("bookmarks.html", text + "</DL><p>\n");
    }
};

TEST_F(FamiliesFaultsTest, FirstPlaylists_KilledAtEachCall_EndTheSame)
{
    givenFile("Extra/a", "a");
    givenFile("lists/One.m3u8", "../Extra/a\n");
    ASSERT_EQ(meet().exitCode, 0);
    expectSameAfterAnyKill({"--playlists", pc("lists")});
}

TEST_F(FamiliesFaultsTest, ChangedPlaylists_KilledAtEachCall_EndTheSame)
{
    for (const char* name : {"a", "b", "c"}) {
        givenFile(std::string("Extra/") + name, name);
    }
    givenFile("lists/Gone.m3u8", "../Extra/a\n../Extra/b\n");
    givenFile("lists/Stays.m3u8", "../Extra/b\n");
    ASSERT_EQ(sync({"--playlists", pc("lists")}).exitCode, 0);
    removeFile("lists/Gone.m3u8");
    changeFile("lists/Stays.m3u8", "../Extra/b\n../Extra/c\n");
    expectSameAfterAnyKill({"--playlists", pc("lists")});
}

TEST_F(FamiliesFaultsTest, FirstBookmarks_KilledAtEachCall_EndTheSame)
{
    givenBookmarks("abc");
    ASSERT_EQ(meet().exitCode, 0);
    expectSameAfterAnyKill({"--bookmarks", pc("bookmarks.html")});
}

TEST_F(FamiliesFaultsTest, ChangedBookmarks_KilledAtEachCall_EndTheSame)
{
    givenBookmarks("abc");
    ASSERT_EQ(sync({"--bookmarks", pc("bookmarks.html")}).exitCode, 0);
    givenBookmarks("bcd");
    expectSameAfterAnyKill({"--bookmarks", pc("bookmarks.html")});
}

TEST_F(FamiliesFaultsTest, Backup_KilledAtEachCall_LeavesWholeArchivesOnly)
{
    fs::create_directories(work() / "backups");
    fs::create_directories(Path(phone("DCIM")));
    std::ofstream(Path(phone("DCIM/a.jpg"))) << std::string(300'000, 'j');
    const std::vector<std::string> arguments{"--backup", Utf8(work() / "backups")};
    ASSERT_EQ(meet().exitCode, 0);
    const std::string counted = (work() / "count").string();
    ASSERT_EQ(sync(arguments, Faults({{"KESTA_FAULT_COUNT_FILE", counted}})).exitCode, 0);
    const auto whole = fs::file_size(fs::directory_iterator(work() / "backups")->path());
    long calls = 0;
    std::ifstream(counted) >> calls;
    ASSERT_GT(calls, 10) << "the calls are not seen";
    for (long call = 1; call <= calls; ++call) {
        SCOPED_TRACE("killed at call " + std::to_string(call));
        (void)sync(arguments, Faults({{"KESTA_FAULT_KILL_AT", std::to_string(call)}}));
        ASSERT_EQ(sync(arguments).exitCode, 0);
        for (const auto& entry : fs::directory_iterator(work() / "backups")) {
            EXPECT_EQ(entry.path().extension(), ".zip");
            EXPECT_EQ(entry.file_size(), whole);
        }
        ASSERT_FALSE(HasFailure());
    }
}

TEST_F(FamiliesFaultsTest, BackupOnAFullDisk_LeavesNoArchive)
{
    fs::create_directories(work() / "backups");
    std::ofstream(Path(phone("a.jpg"))) << std::string(2'000'000, 'j');
    const std::vector<std::string> arguments{"--backup", Utf8(work() / "backups")};
    for (const int skip : {0, 3, 7}) {
        const Ended run = sync(arguments, failing("write", ENOSPC, ".zip.part", skip));
        EXPECT_EQ(run.exitCode, 3) << run.out;
        EXPECT_THAT(run.out, HasSubstr("no space is left in its folder"));
        EXPECT_TRUE(fs::is_empty(work() / "backups"));
    }
}

TEST_F(FamiliesFaultsTest, InterruptedBackup_LeavesNoArchive)
{
    fs::create_directories(work() / "backups");
    std::ofstream(Path(phone("a.jpg"))).close();
    fs::resize_file(Path(phone("a.jpg")), 3'000'000'000);
    ClientProcess client(work(), syncArguments({"--backup", Utf8(work() / "backups")}));
    for (int i = 0; i < 2000 && fs::is_empty(work() / "backups"); ++i) {
        usleep(1000);
    }
    ASSERT_FALSE(fs::is_empty(work() / "backups"));
    client.interrupt();
    const Ended run = client.wait();
    EXPECT_EQ(run.exitCode, 130) << run.out;
    EXPECT_TRUE(fs::is_empty(work() / "backups"));
    EXPECT_EQ(database().text("SELECT [ErrCode] FROM tPhone"), "130");
}

TEST_F(FamiliesFaultsTest, InterruptedPlaylists_AreCaughtUpWith)
{
    std::string list;
    for (int i = 0; i < 300; ++i) {
        givenFile("Extra/" + std::to_string(i), std::string(20'000, 'x'));
        list += "../Extra/" + std::to_string(i) + '\n';
    }
    givenFile("lists/One.m3u8", list);
    ClientProcess client(work(), syncArguments({"--playlists", pc("lists")}));
    ASSERT_TRUE(client.waitForOutput("copied "));
    client.interrupt();
    EXPECT_EQ(client.wait().exitCode, 130);
    EXPECT_FALSE(phoneFiles().contains("Playlists/One.m3u8"));
    EXPECT_EQ(std::to_string(phonePaths().size()), database().text("SELECT COUNT(*) FROM tPFile"));
    EXPECT_EQ(sync({"--playlists", pc("lists")}).exitCode, 0);
    EXPECT_THAT(phonePaths(), SizeIs(301));
    EXPECT_THAT(ownFiles(), IsEmpty());
}

TEST_F(FamiliesFaultsTest, FileThatCannotBeReadToItsEnd_IsNotInTheBackup)
{
    fs::create_directories(work() / "backups");
    std::ofstream(Path(phone("a.jpg"))) << std::string(2'000'000, 'j');
    std::ofstream(Path(phone("bad.jpg"))) << std::string(2'000'000, 'b');
    const Ended run = sync({"--backup", Utf8(work() / "backups")}, failing("read", EIO, "bad.jpg", 2));
    EXPECT_EQ(run.exitCode, 3) << run.out;
    EXPECT_THAT(run.out, HasSubstr("bad.jpg: it is not in the backup: Input/output error"));
    EXPECT_THAT(run.out, HasSubstr(": 1 file, "));
    const auto size = fs::file_size(fs::directory_iterator(work() / "backups")->path());
    EXPECT_GT(size, 2'000'000u);
    EXPECT_LT(size, 2'100'000u);
}

TEST_F(FamiliesFaultsTest, ListOrMusicThatCannotBeWritten_IsReported_TheRestGoesOn)
{
    for (const char* name : {"a", "b"}) {
        givenFile(std::string("Extra/") + name, name);
    }
    givenFile("lists/One.m3u8", "../Extra/a\n../Extra/b\n");
    givenFile("lists/Two.m3u8", "../Extra/a\n");
    // Neither renamed nor written there.
    const auto refused = [](const char* path) {
        return Faults({{"KESTA_FAULT_ERRNO", std::to_string(EIO)}, {"KESTA_FAULT_PATH", path}});
    };
    const Ended music = sync({"--playlists", pc("lists")}, refused("Media/Extra/b"));
    EXPECT_EQ(music.exitCode, 3) << music.out;
    EXPECT_EQ(phoneFiles().at("Playlists/One.m3u8"), "#EXTM3U\n#PLAYLIST:One\nMedia/Extra/a\n");
    const Ended list = sync({"--playlists", pc("lists")}, refused("Playlists/One.m3u8"));
    EXPECT_EQ(list.exitCode, 3) << list.out;
    EXPECT_THAT(list.out, HasSubstr("One.m3u8: it cannot be written to the phone"));
    EXPECT_EQ(phoneFiles().at("Playlists/One.m3u8"), "#EXTM3U\n#PLAYLIST:One\nMedia/Extra/a\n");
    EXPECT_EQ(sync({"--playlists", pc("lists")}).exitCode, 0);
    EXPECT_EQ(phoneFiles().at("Playlists/One.m3u8"), "#EXTM3U\n#PLAYLIST:One\nMedia/Extra/a\nMedia/Extra/b\n");
    EXPECT_THAT(ownFiles(), IsEmpty());
}

TEST_F(FamiliesFaultsTest, FullPhone_StopsTheRunAndLeavesNoParts)
{
    givenFile("lists/One.m3u8", "http://radio.example/\n");
    givenBookmarks("ab");
    ASSERT_EQ(meet().exitCode, 0);
    const Ended list = sync({"--playlists", pc("lists")}, failing("write", ENOSPC, "Playlists/.kesta-part"));
    EXPECT_EQ(list.exitCode, 5) << list.out;
    const Ended bookmarks =
        sync({"--bookmarks", pc("bookmarks.html")}, failing("write", ENOSPC, "Bookmarks/.kesta-part"));
    EXPECT_EQ(bookmarks.exitCode, 5) << bookmarks.out;
    EXPECT_THAT(phonePaths(), IsEmpty());
    EXPECT_THAT(ownFiles(), IsEmpty());
    EXPECT_EQ(sync({"--playlists", pc("lists"), "--bookmarks", pc("bookmarks.html")}).exitCode, 0);
    EXPECT_THAT(phonePaths(), SizeIs(2));
}

TEST_F(FamiliesFaultsTest, DatabaseThatCannotBeWritten_StopsTheRun)
{
    givenFile("Extra/a", "a");
    givenFile("lists/One.m3u8", "../Extra/a\n");
    givenBookmarks("ab");
    ASSERT_EQ(meet().exitCode, 0);
    for (int skip = 0; skip < 40; skip += 3) {
        const Ended run = sync({"--playlists", pc("lists"), "--bookmarks", pc("bookmarks.html")},
                               failing("pwrite", ENOSPC, "KESTA_DB.s3db-journal", skip));
        EXPECT_TRUE(run.exitCode == 8 || run.exitCode == 0) << run.exitCode << run.out << run.err;
        ASSERT_EQ(sync({"--playlists", pc("lists"), "--bookmarks", pc("bookmarks.html")}).exitCode, 0);
        EXPECT_THAT(phonePaths(), SizeIs(3)) << "after " << skip << ": " << run.out;
        EXPECT_THAT(ownFiles(), IsEmpty());
        removeFile("lists/One.m3u8");
        givenBookmarks("");
        ASSERT_EQ(sync({"--playlists", pc("lists"), "--bookmarks", pc("bookmarks.html"), "--force"}).exitCode, 0);
        EXPECT_THAT(phonePaths(), IsEmpty());
        givenFile("lists/One.m3u8", "../Extra/a\n");
        givenBookmarks("ab");
    }
}

}  // namespace
}  // namespace kesta::test
