// Many files: they are copied ahead of their records, in batches.
#include <numeric>

#include "client_fixture.h"

#if !defined(_WIN32)
#include "fault_environment.h"
#endif

namespace kesta::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class CopyAheadTest : public ClientTest {
protected:
    static std::string name(int number) { return std::to_string(number / 50) + "/f" + std::to_string(1000 + number); }
    void givenFiles(int count)
    {
        for (int i = 0; i < count; ++i) {
            givenFile("Rock/" + name(i), "song " + std::to_string(i));
        }
    }
    [[nodiscard]] static std::string phoneName(int number) { return "Music/Rock/" + name(number); }
    void givenOnPhone(const std::string& path, const std::string& contents)
    {
        fs::create_directories(Path(phone(path)).parent_path());
        std::ofstream(Path(phone(path)), std::ios::binary) << contents;
    }
};

TEST_F(CopyAheadTest, ManyFiles_ArriveAndAreRecordedInTheirOrder)
{
    givenFiles(200);
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("200 copied, 0 updated, 0 removed, 0 unchanged, 0 failed"));
    expectInOrder();
    // As they are told, so they are recorded.
    std::vector<std::string> told;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) {
        if (const auto begin = line.find("Music/Rock/"); line.starts_with("copied") && begin != std::string::npos) {
            line.erase(line.find_last_not_of('\r') + 1);
            told.push_back(line.substr(begin));
        }
    }
    ASSERT_EQ(told.size(), 200u);
    const std::string rows =
        std::accumulate(told.begin(), told.end(), std::string(),
                        [](const auto& all, const auto& one) { return all.empty() ? one : all + '\n' + one; });
    EXPECT_EQ(database().text("SELECT PhonePath FROM tMFile ORDER BY rowid"), rows);
}

TEST_F(CopyAheadTest, RecordThatIsRefused_StopsTheRunAndLeavesNothingUnrecorded)
{
    givenFiles(100);
    meet();
    database().exec(
        "CREATE TRIGGER no BEFORE INSERT ON tMFile WHEN (SELECT COUNT(*) FROM tMFile) >= 10 BEGIN SELECT RAISE(ABORT, "
        "'no'); END");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 8) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("10 copied"));
    expectInOrder();
    EXPECT_EQ(phonePaths().size(), 10u);
    database().exec("DROP TRIGGER no");
    EXPECT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_EQ(phonePaths().size(), 100u);
    expectInOrder();
}

TEST_F(CopyAheadTest, FilesOfAKilledRun_AreFoundByItsNotes)
{
    givenFiles(3);
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    givenFile("Rock/0/last", "last");
    // So a run leaves the phone that is killed before it has recorded what it has placed.
    givenOnPhone(".kesta-journal",
                 phoneName(3) + '\n' + phoneName(4) + '\n' + phoneName(5) + '\n' + phoneName(6) + '\n');
    givenOnPhone(".kesta-placed-1", "6 " + phoneName(3) + "\n6 " + phoneName(4) + "\n6 " + phoneName(5) + "\n");
    givenOnPhone(phoneName(3), "song 3");
    givenOnPhone(phoneName(4), "song 4");
    givenOnPhone(phoneName(5), "the user's own");
    givenOnPhone("Music/Rock/0/.kesta-part-7", "half of a song");
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("of it removed"));
    const auto files = phoneFiles();
    EXPECT_FALSE(files.contains(phoneName(3)));
    EXPECT_FALSE(files.contains(phoneName(4)));
    EXPECT_THAT(files, Contains(testing::Pair(phoneName(5), "the user's own")));
    EXPECT_THAT(ownFiles(), IsEmpty());
}

TEST_F(CopyAheadTest, JournalThatWasCutShort_NamesNoFile)
{
    givenFiles(2);
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    givenOnPhone(".kesta-journal", "Music/Rock/0/mine.mp3 but longer\nMusic/Rock/0/mine");
    givenOnPhone("Music/Rock/0/mine", "the user's own");
    ASSERT_EQ(sync({"--music", pc("Rock")}).exitCode, 0);
    EXPECT_THAT(phoneFiles(), Contains(testing::Pair("Music/Rock/0/mine", "the user's own")));
    EXPECT_THAT(ownFiles(), IsEmpty());
}

#if !defined(_WIN32)
TEST_F(CopyAheadTest, FileThatCannotBeRead_IsReportedInItsTurn)
{
    givenFiles(100);
    fs::permissions(pc("Rock/" + name(40)), fs::perms::none);
    const Ended run = sync({"--music", pc("Rock")});
    EXPECT_EQ(run.exitCode, 3) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("99 copied"));
    EXPECT_THAT(run.out, HasSubstr(name(40) + ": it cannot be read"));
    expectInOrder();
}

TEST_F(CopyAheadTest, Phone_IsFlushedOnceForManyFiles)
{
    givenFiles(200);
    meet();
    const fs::path flushes = work() / "flushes";
    ASSERT_EQ(
        client(syncArguments({"--music", pc("Rock")}), Faults({{"KESTA_FAULT_FLUSH_FILE", flushes.string()}})).exitCode,
        0);
    std::ifstream file(flushes);
    int ofPhone = 0;
    for (std::string line; std::getline(file, line);) {
        ofPhone += line.starts_with(phone()) ? 1 : 0;
    }
    EXPECT_GT(ofPhone, 0) << "the flushes are not seen";
    EXPECT_LT(ofPhone, 40);
    expectInOrder();
}

// The first ones must not be lost for one that cannot be placed.
TEST_F(CopyAheadTest, FileThatCannotBePlaced_KeepsNoOtherFromThePhone)
{
    givenFiles(100);
    const Ended run = sync({"--music", pc("Rock")},
                           Faults({{"KESTA_FAULT_ERRNO", std::to_string(EIO)}, {"KESTA_FAULT_PATH", phoneName(50)}}));
    EXPECT_EQ(run.exitCode, 3) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("99 copied"));
    EXPECT_THAT(phonePaths(), Not(Contains(phoneName(50))));
    expectInOrder();
}
#endif

}  // namespace
}  // namespace kesta::test
