// A sync of contacts and calendars whose system calls fail, and one that dies at each of them in turn.
#include <cerrno>
#include <csignal>
#include <fstream>

#include "fault_environment.h"
#include "pim_fixture.h"

namespace kesta::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PimFaultsTest : public PimTest {
protected:
    static Environment failing(int code, const std::string& path, const std::string& call)
    {
        return Faults(
            {{"KESTA_FAULT_ERRNO", std::to_string(code)}, {"KESTA_FAULT_PATH", path}, {"KESTA_FAULT_CALL", call}});
    }
    [[nodiscard]] std::vector<std::string> arguments() const
    {
        return syncArguments({"--contacts", pc("Friends.vcf"), "--calendar", pc("cal.ics")});
    }
    /// Entries to add, to update, to remove and to leave; a calendar to add and one to remove; one that is not given.
    void givenWork()
    {
        givenFile("other.vcf", CardText("o", "Other"));
        ASSERT_EQ(syncContacts({"other.vcf"}).exitCode, 0);
        givenFile("Friends.vcf", CardsText({{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}}));
        givenFile("cal.ics", CalendarText("Work", {{"1", "Meeting"}}) + CalendarText("Gone", {}));
        ASSERT_EQ(client(arguments()).exitCode, 0);
        givenFile("Friends.vcf", CardsText({{"1", "Anne"}, {"2", "Bob"}, {"4", "Dan"}}));
        givenFile("cal.ics", CalendarText("Work", {{"1", "Meeting"}}) + CalendarText("New", {{"2", "Walk"}}));
    }
    void keepState()
    {
        fs::remove_all(work() / "kept");
        fs::create_directories(work() / "kept");
        fs::copy(phone(), work() / "kept" / "phone", fs::copy_options::recursive);
        fs::copy(data().applicationData() / "NORVIK", work() / "kept" / "NORVIK", fs::copy_options::recursive);
    }
    void restoreState()
    {
        fs::remove_all(phone());
        fs::remove_all(data().applicationData() / "NORVIK");
        fs::copy(work() / "kept" / "phone", phone(), fs::copy_options::recursive);
        fs::copy(work() / "kept" / "NORVIK", data().applicationData() / "NORVIK", fs::copy_options::recursive);
    }
    void expectDone()
    {
        EXPECT_EQ(contactsIn("Contacts/Friends.vcf"), (Entries{{"1", "Anne"}, {"2", "Bob"}, {"4", "Dan"}}));
        EXPECT_EQ(eventsIn("Calendar/Work.ics"), (Entries{{"1", "Meeting"}}));
        EXPECT_EQ(eventsIn("Calendar/New.ics"), (Entries{{"2", "Walk"}}));
        EXPECT_THAT(phonePaths(),
                    ElementsAre("Calendar/New.ics", "Calendar/Work.ics", "Contacts/Friends.vcf", "Contacts/other.vcf"));
        expectDatabaseInOrder({{"1", "Anne"}, {"2", "Bob"}, {"4", "Dan"}, {"o", "Other"}},
                              {{"1", "Meeting"}, {"2", "Walk"}});
    }
};

TEST_F(PimFaultsTest, KilledAtEachCall_TheNextRunEndsInOrder)
{
    givenWork();
    keepState();
    const std::string counted = (work() / "count").string();
    ASSERT_EQ(client(arguments(), Faults({{"KESTA_FAULT_COUNT_FILE", counted}})).exitCode, 0);
    expectDone();
    long calls = 0;
    std::ifstream(counted) >> calls;
    ASSERT_GT(calls, 100) << "the calls are not seen";
    for (long call = 1; call <= calls; ++call) {
        SCOPED_TRACE("killed at call " + std::to_string(call) + " of " + std::to_string(calls));
        restoreState();
        const Ended killed = client(arguments(), Faults({{"KESTA_FAULT_KILL_AT", std::to_string(call)}}));
        ASSERT_EQ(killed.exitCode, -SIGKILL) << killed.out << killed.err;
        const Ended run = client(arguments());
        ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
        expectDone();
        ASSERT_FALSE(HasFailure());
    }
}

TEST_F(PimFaultsTest, ChangedBetweenTheKillAndTheNextRun_EndsInOrder)
{
    givenFile("Friends.vcf", CardText("1", "Ann"));
    (void)client({"status"});  // The database itself is made before.
    keepState();
    const std::string counted = (work() / "count").string();
    ASSERT_EQ(syncContacts({"Friends.vcf"}).exitCode, 0);
    restoreState();
    ASSERT_EQ(client(syncArguments({"--contacts", pc("Friends.vcf")}), Faults({{"KESTA_FAULT_COUNT_FILE", counted}}))
                  .exitCode,
              0);
    long calls = 0;
    std::ifstream(counted) >> calls;
    for (long call = 1; call <= calls; ++call) {
        SCOPED_TRACE("killed at call " + std::to_string(call) + " of " + std::to_string(calls));
        restoreState();
        givenFile("Friends.vcf", CardText("1", "Ann"));
        ASSERT_EQ(client(syncArguments({"--contacts", pc("Friends.vcf")}),
                         Faults({{"KESTA_FAULT_KILL_AT", std::to_string(call)}}))
                      .exitCode,
                  -SIGKILL);
        givenFile("Friends.vcf", CardsText({{"1", "Anne"}, {"2", "Bob"}}));
        const Ended run = syncContacts({"Friends.vcf"});
        ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
        EXPECT_THAT(phonePaths(), ElementsAre("Contacts/Friends.vcf"));
        EXPECT_EQ(contactsIn("Contacts/Friends.vcf"), (Entries{{"1", "Anne"}, {"2", "Bob"}}));
        expectDatabaseInOrder({{"1", "Anne"}, {"2", "Bob"}}, {});
        ASSERT_FALSE(HasFailure());
    }
}

TEST_F(PimFaultsTest, FullPhone_KeepsTheFileThatIsThere)
{
    givenWork();
    const Ended run = client(arguments(), failing(ENOSPC, "Contacts/.kesta-part", "write"));
    EXPECT_EQ(run.exitCode, 5);
    EXPECT_THAT(run.out, HasSubstr("Contacts/Friends.vcf: it cannot be written to the phone"));
    EXPECT_EQ(contactsIn("Contacts/Friends.vcf"), (Entries{{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}}));
    EXPECT_THAT(ownFiles(), IsEmpty());
    EXPECT_EQ(client(arguments()).exitCode, 0);
    expectDone();
}

TEST_F(PimFaultsTest, FileThatCannotBeWritten_IsReportedAndTheRestGoesOn)
{
    givenWork();
    // Neither renamed nor written there.
    const Ended run = client(
        arguments(), Faults({{"KESTA_FAULT_ERRNO", std::to_string(EIO)}, {"KESTA_FAULT_PATH", "Calendar/New.ics"}}));
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("Calendar/New.ics: it cannot be written to the phone"));
    EXPECT_EQ(contactsIn("Contacts/Friends.vcf").size(), 3u);
    EXPECT_EQ(client(arguments()).exitCode, 0);
    expectDone();
}

TEST_F(PimFaultsTest, FileThatCannotBeRemoved_StaysInTheLog)
{
    givenFile("Friends.vcf", CardText("1", "Ann"));
    (void)syncContacts({"Friends.vcf"});
    givenFile("Friends.vcf", "");
    const Ended run = client(syncArguments({"--contacts", pc("Friends.vcf"), "--force"}),
                             failing(EIO, "Contacts/Friends.vcf", "unlink"));
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("Contacts/Friends.vcf: it cannot be removed from the phone"));
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPimLogItem"), "1");
    EXPECT_EQ(syncContacts({"Friends.vcf"}, {"--force"}).exitCode, 0);
    EXPECT_THAT(phonePaths(), IsEmpty());
    expectDatabaseInOrder({}, {});
}

TEST_F(PimFaultsTest, JournalThatCannotBeWritten_StopsBeforeThePhoneChanges)
{
    givenWork();
    const auto before = phoneFiles();
    const Ended run = client(arguments(), failing(EACCES, "pim of", "open"));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.out, HasSubstr("the journal of contacts and calendars cannot be written"));
    EXPECT_EQ(phoneFiles(), before);
    EXPECT_EQ(client(arguments()).exitCode, 0);
    expectDone();
}

TEST_F(PimFaultsTest, DamagedJournal_IsReportedOnce)
{
    givenWork();
    std::ofstream(journal()) << "{\"imei\": 1";
    const Ended run = client(arguments());
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("the journal of contacts and calendars: it is damaged"));
    expectDone();
    std::ofstream(journal()) << "[]";
    EXPECT_EQ(client(arguments()).exitCode, 3) << "also when there is nothing else to do";
    EXPECT_EQ(client(arguments()).exitCode, 0);
}

TEST_F(PimFaultsTest, LinkInThePlaceOfThePhonesFolder_LeadsNobodyBackToThePc)
{
    givenFile("Friends.vcf", CardText("1", "Ann"));
    fs::create_directories(pc("elsewhere"));
    fs::create_directory_symlink(pc("elsewhere"), phone("Contacts"));
    const Ended run = syncContacts({"Friends.vcf"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("'Contacts' on the phone is no folder"));
    EXPECT_TRUE(fs::is_empty(pc("elsewhere")));
}

TEST_F(PimFaultsTest, OneChangedCardOfMany_WaitsForTheDiskAFewTimes)
{
    Entries contacts;
    for (int i = 0; i < 500; ++i) {
        contacts["u" + std::to_string(i)] = "Name " + std::to_string(i);
    }
    givenFile("Friends.vcf", CardsText(contacts));
    ASSERT_EQ(syncContacts({"Friends.vcf"}).exitCode, 0);
    contacts["u77"] = "Another name";
    givenFile("Friends.vcf", CardsText(contacts));
    const fs::path flushes = work() / "flushes";
    const Ended run = client(syncArguments({"--contacts", pc("Friends.vcf")}),
                             Faults({{"KESTA_FAULT_FLUSH_FILE", flushes.string()}}));
    ASSERT_EQ(run.exitCode, 0) << run.out << run.err;
    std::ifstream file(flushes);
    int count = 0;
    for (std::string line; std::getline(file, line);) {
        ++count;
    }
    EXPECT_GT(count, 4) << "the flushes are not seen";
    EXPECT_LE(count, 20);
    expectDatabaseInOrder(contacts, {});
}

}  // namespace
}  // namespace kesta::test
