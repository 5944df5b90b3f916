// The phone's log of contacts and calendars is appended to: of an entry the last row counts.
#include <fstream>
#include <sstream>

#include "pim_fixture.h"

#if !defined(_WIN32)
#include "fault_environment.h"
#endif

namespace kesta::test {
namespace {

using testing::HasSubstr;

class PimLogTest : public PimTest {
protected:
    /// Cards "1" to "count", but for one; the one that is named has another name than before.
    void givenCards(int count, int changed = 0, int leftOut = 0)
    {
        std::string text;
        for (int i = 1; i <= count; ++i) {
            if (i != leftOut) {
                text += CardText(std::to_string(i), (i == changed ? "Changed " : "Person ") + std::to_string(i));
            }
        }
        givenFile("Friends.vcf", text);
    }
    [[nodiscard]] std::string storedRows() const { return database().text("SELECT COUNT(*) FROM tPimLogItem"); }
    [[nodiscard]] nlohmann::json shownLog()
    {
        const Ended run = client({"files", "--imei", kImei, "--category", "log", "--json"});
        EXPECT_EQ(run.exitCode, 0) << run.err;
        return nlohmann::json::parse(run.out, nullptr, false);
    }
};

TEST_F(PimLogTest, ChangedEntry_AppendsItsRowAlone)
{
    givenCards(10);
    ASSERT_EQ(syncContacts({"Friends.vcf"}).exitCode, 0);
    EXPECT_EQ(storedRows(), "10");
    const std::string before = database().text("SELECT * FROM tPimLogItem ORDER BY ptID");
    givenCards(10, 3);
    EXPECT_THAT(syncContacts({"Friends.vcf"}).out, HasSubstr("0 added, 1 updated, 0 removed, 9 unchanged"));
    EXPECT_EQ(storedRows(), "11");
    EXPECT_EQ(database().text("SELECT * FROM tPimLogItem WHERE ptID <= 10 ORDER BY ptID"), before);
    EXPECT_EQ(shownLog()["contacts"]["entries"].size(), 10u);
    EXPECT_THAT(syncContacts({"Friends.vcf"}).out, HasSubstr("0 added, 0 updated, 0 removed, 10 unchanged"));
    EXPECT_EQ(storedRows(), "11");
}

TEST_F(PimLogTest, RemovedEntry_IsGoneByItsLastRow)
{
    givenCards(10);
    ASSERT_EQ(syncContacts({"Friends.vcf"}).exitCode, 0);
    givenCards(10, 0, 4);
    EXPECT_THAT(syncContacts({"Friends.vcf"}).out, HasSubstr("0 added, 0 updated, 1 removed, 9 unchanged"));
    // That it is gone, and when the file was written unless that was in the same second.
    EXPECT_THAT(storedRows(), testing::AnyOf("11", "12"));
    EXPECT_EQ(shownLog()["contacts"]["entries"].size(), 9u);
    EXPECT_EQ(contactsIn("Contacts/Friends.vcf").size(), 9u);
    const Ended status = client({"status", "--imei", kImei});
    EXPECT_THAT(status.out, HasSubstr("9 entries"));
    EXPECT_THAT(syncContacts({"Friends.vcf"}).out, HasSubstr("0 added, 0 updated, 0 removed, 9 unchanged"));
    givenCards(10);
    EXPECT_THAT(syncContacts({"Friends.vcf"}).out, HasSubstr("1 added, 0 updated, 0 removed, 9 unchanged"));
    EXPECT_EQ(shownLog()["contacts"]["entries"].size(), 10u);
}

TEST_F(PimLogTest, LogThatIsMoreThanHalfStale_IsWrittenAnew)
{
    givenCards(4);
    ASSERT_EQ(syncContacts({"Friends.vcf"}).exitCode, 0);
    for (int changed = 1; changed <= 4; ++changed) {
        givenCards(4, changed);
        ASSERT_EQ(syncContacts({"Friends.vcf"}).exitCode, 0);
    }
    // Each card that is changed lets the one before have its old name again: 5, 7, then 9 would be too many, and 6.
    EXPECT_EQ(storedRows(), "6");
    EXPECT_EQ(shownLog()["contacts"]["entries"].size(), 4u);
    EXPECT_EQ(shownLog()["contacts"]["profile"], "kesta 1 contacts");
}

#if !defined(_WIN32)
TEST_F(PimLogTest, OneChangedCard_TakesFewFlushes)
{
    givenCards(300);
    ASSERT_EQ(syncContacts({"Friends.vcf"}).exitCode, 0);
    givenCards(300, 150);
    const fs::path flushes = work() / "flushes";
    const std::vector<std::string> arguments = syncArguments({"--contacts", pc("Friends.vcf")});
    ASSERT_EQ(client(arguments, Faults({{"KESTA_FAULT_FLUSH_FILE", flushes.string()}})).exitCode, 0);
    std::ifstream file(flushes);
    std::ostringstream read;
    read << file.rdbuf();
    const std::string all = read.str();
    EXPECT_GT(std::count(all.begin(), all.end(), '\n'), 5) << "the flushes are not seen";
    EXPECT_LE(std::count(all.begin(), all.end(), '\n'), 20) << all;
}
#endif

}  // namespace
}  // namespace kesta::test
