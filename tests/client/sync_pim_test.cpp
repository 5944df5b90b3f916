// Contacts and calendars, from the files of the PC to those of the phone.
#include <sstream>

#include "pim_fixture.h"

namespace kesta::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using SyncPimTest = PimTest;

TEST_F(SyncPimTest, NewChangedGoneAndUnchangedContacts)
{
    givenFile("Friends.vcf", CardsText({{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}}));
    const Ended first = syncContacts({"Friends.vcf"});
    EXPECT_EQ(first.exitCode, 0) << first.out << first.err;
    EXPECT_THAT(first.out, HasSubstr("Contacts: 3 added, 0 updated, 0 removed, 0 unchanged"));
    EXPECT_EQ(contactsIn("Contacts/Friends.vcf"), (Entries{{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}}));
    expectDatabaseInOrder({{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}}, {});

    const auto written = fs::last_write_time(Path(phone("Contacts/Friends.vcf")));
    const std::string rows = database().text("SELECT * FROM tPimLogItem");
    const Ended second = syncContacts({"Friends.vcf"});
    EXPECT_EQ(second.exitCode, 0);
    EXPECT_THAT(second.out, HasSubstr("Contacts: 0 added, 0 updated, 0 removed, 3 unchanged"));
    EXPECT_EQ(fs::last_write_time(Path(phone("Contacts/Friends.vcf"))), written);
    EXPECT_EQ(database().text("SELECT * FROM tPimLogItem"), rows);

    givenFile("Friends.vcf", CardsText({{"1", "Ann"}, {"2", "Bobby"}, {"4", "Dan"}}));
    const Ended third = syncContacts({"Friends.vcf"});
    EXPECT_EQ(third.exitCode, 0) << third.out;
    EXPECT_THAT(third.out, HasSubstr("Contacts: 1 added, 1 updated, 1 removed, 1 unchanged"));
    EXPECT_EQ(contactsIn("Contacts/Friends.vcf"), (Entries{{"1", "Ann"}, {"2", "Bobby"}, {"4", "Dan"}}));
    expectDatabaseInOrder({{"1", "Ann"}, {"2", "Bobby"}, {"4", "Dan"}}, {});
}

TEST_F(SyncPimTest, UnchangedEntries_AreNotWrittenToTheStore)
{
    givenFile("Friends.vcf", CardsText({{"1", "Ann"}, {"2", "Bob"}}));
    (void)syncContacts({"Friends.vcf"});
    database().exec(
        "CREATE TABLE changes (what TEXT); CREATE TRIGGER a AFTER UPDATE ON tPimItem BEGIN INSERT INTO changes "
        "VALUES (OLD.PimID); END; CREATE TRIGGER b AFTER INSERT ON tPimItem BEGIN INSERT INTO changes VALUES "
        "(NEW.PimID); END; CREATE TRIGGER c AFTER DELETE ON tPimItem BEGIN INSERT INTO changes VALUES "
        "(OLD.PimID); END");
    // Another time stamp, another folding, another order are no change.
    givenFile("Friends.vcf",
              "BEGIN:VCARD\nVERSION:3.0\nUID:2\nREV:20260101T000000Z\nFN:Bo\n b\nEND:VCARD\n" + CardText("1", "Ann"));
    const Ended same = syncContacts({"Friends.vcf"});
    EXPECT_THAT(same.out, HasSubstr("Contacts: 0 added, 0 updated, 0 removed, 2 unchanged"));
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM changes"), "0");
    givenFile("Friends.vcf", CardsText({{"1", "Anne"}, {"2", "Bob"}}));
    (void)syncContacts({"Friends.vcf"});
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM changes"), "1");
}

TEST_F(SyncPimTest, CalendarsOfOneFile_BecomeFilesOfTheirOwn)
{
    givenFile("all.ics", CalendarText("Work", {{"1", "Meeting"}, {"2", "Review"}}) +
                             CalendarText("Home, sweet home", {{"1", "Dinner"}}) + CalendarText("", {{"7", "Walk"}}));
    const Ended run = syncCalendars({"all.ics"});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("Calendar: 4 added, 0 updated, 0 removed, 0 unchanged"));
    EXPECT_THAT(phonePaths(), ElementsAre("Calendar/Home, sweet home.ics", "Calendar/Work.ics", "Calendar/all.ics"));
    EXPECT_EQ(eventsIn("Calendar/Work.ics"), (Entries{{"1", "Meeting"}, {"2", "Review"}}));
    EXPECT_THAT(phoneText("Calendar/Home, sweet home.ics"), HasSubstr("X-WR-CALNAME:Home\\, sweet home\r\n"));
    EXPECT_EQ(database().text("SELECT Path FROM tPimFolder ORDER BY Path"),
              "Calendar\nCalendar/Home, sweet home\nCalendar/Work\nCalendar/all");

    // A calendar that is gone is all of its entries at once.
    givenFile("all.ics", CalendarText("Work", {{"1", "Meeting"}, {"2", "Review"}}) + CalendarText("", {{"7", "Walk"}}));
    const Ended held = syncCalendars({"all.ics"});
    EXPECT_EQ(held.exitCode, 4);
    EXPECT_THAT(held.out, HasSubstr("Deferred: 1 calendar item"));
    EXPECT_THAT(phonePaths(), testing::SizeIs(3));
    const Ended forced = syncCalendars({"all.ics"}, {"--force"});
    EXPECT_EQ(forced.exitCode, 0);
    EXPECT_THAT(forced.out, HasSubstr("Calendar: 0 added, 0 updated, 1 removed, 3 unchanged"));
    EXPECT_THAT(phonePaths(), ElementsAre("Calendar/Work.ics", "Calendar/all.ics"));
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPimFolder"), "3");
    expectDatabaseInOrder({}, {{"1", "Meeting"}, {"2", "Review"}, {"7", "Walk"}});
}

TEST_F(SyncPimTest, SeveralFilesAndVersions_InOneRun)
{
    givenFile("a/Friends.vcf",
              "BEGIN:VCARD\nVERSION:2.1\nN;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:B=F6hm;Jo\n"
              "UID:old\nEND:VCARD\n");
    givenFile("b/friends.vcf", "BEGIN:VCARD\r\nVERSION:4.0\r\nUID:urn:uuid:1\r\nFN:Eve\r\nEND:VCARD");
    givenFile("\u4E2D\u6587 o'clock.ics", CalendarText("", {{"it's", "Tea"}}));
    const Ended run = sync({"--contacts", pc("a/Friends.vcf"), pc("b/friends.vcf"), "--calendar",
                            pc("\u4E2D\u6587 o'clock.ics"), "--contacts", pc("a/Friends.vcf")});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("Contacts: 2 added"));
    EXPECT_THAT(run.out, HasSubstr("Calendar: 1 added"));
    EXPECT_THAT(phonePaths(), ElementsAre("Calendar/\u4E2D\u6587 o'clock.ics", "Contacts/Friends.vcf",
                                          StartsWith("Contacts/friends~")));
    EXPECT_EQ(contactsIn("Contacts/Friends.vcf"), (Entries{{"old", "Jo B\u00F6hm"}}));
    EXPECT_EQ(eventsIn("Calendar/\u4E2D\u6587 o'clock.ics"), (Entries{{"it's", "Tea"}}));
    const Ended again =
        sync({"--contacts", pc("a/Friends.vcf"), pc("b/friends.vcf"), "--calendar", pc("\u4E2D\u6587 o'clock.ics")});
    EXPECT_THAT(again.out, HasSubstr("Contacts: 0 added, 0 updated, 0 removed, 2 unchanged"));
    EXPECT_THAT(again.out, HasSubstr("Calendar: 0 added, 0 updated, 0 removed, 1 unchanged"));
    // Not given is not gone.
    EXPECT_EQ(syncContacts({"a/Friends.vcf"}, {"--force"}).exitCode, 0);
    EXPECT_THAT(phonePaths(), testing::SizeIs(3));
}

TEST_F(SyncPimTest, OddUidsAndLargeEntries_AreKeptWhole)
{
    const std::string longUid(100'000, 'u');
    const std::string photo(3'000'000, 'p');
    givenFile("odd.vcf", CardText(longUid, "Long") + CardText("o'b\"r;ien", "Quote") + CardText("1", "Twin") +
                             CardText("1", "Other twin") +
                             "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:9\r\nFN:Photo\r\nPHOTO:" + photo + "\r\nEND:VCARD\r\n");
    const Ended run = syncContacts({"odd.vcf"});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_THAT(run.out, HasSubstr("Contacts: 5 added"));
    std::ostringstream source;
    source << std::ifstream(Path(pc("odd.vcf")), std::ios::binary).rdbuf();
    EXPECT_EQ(phoneText("Contacts/odd.vcf"), source.str());
    EXPECT_EQ(database().text("SELECT MAX(LENGTH(Data)) > 3000000, MAX(LENGTH(PimID)) <= 200 FROM tPimItem"), "1|1");
    EXPECT_THAT(syncContacts({"odd.vcf"}).out, HasSubstr("0 added, 0 updated, 0 removed, 5 unchanged"));
}

TEST_F(SyncPimTest, MoreThanHalfOfAFolder_NeedsForce)
{
    givenFile("Friends.vcf", CardsText({{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}, {"4", "Dan"}}));
    (void)syncContacts({"Friends.vcf"});
    givenFile("Friends.vcf", CardsText({{"1", "Anne"}, {"5", "Eve"}}));
    const Ended held = syncContacts({"Friends.vcf"});
    EXPECT_EQ(held.exitCode, 4);
    EXPECT_THAT(held.out, HasSubstr("Deferred: 3 contacts"));
    EXPECT_THAT(held.out, HasSubstr("Contacts: 1 added, 1 updated, 0 removed, 0 unchanged"));
    EXPECT_EQ(contactsIn("Contacts/Friends.vcf").size(), 5u);
    // An empty file is an address book without entries.
    givenFile("Friends.vcf", "");
    EXPECT_EQ(syncContacts({"Friends.vcf"}).exitCode, 4);
    EXPECT_EQ(contactsIn("Contacts/Friends.vcf").size(), 5u);
    const Ended forced = syncContacts({"Friends.vcf"}, {"--force"});
    EXPECT_EQ(forced.exitCode, 0);
    EXPECT_THAT(forced.out, HasSubstr("Contacts: 0 added, 0 updated, 5 removed, 0 unchanged"));
    EXPECT_THAT(phonePaths(), IsEmpty());
    expectDatabaseInOrder({}, {});
    EXPECT_EQ(database().text("SELECT Path FROM tPimFolder"), "Contacts");
    givenFile("Friends.vcf", CardText("1", "Ann"));
    EXPECT_EQ(syncContacts({"Friends.vcf"}).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Contacts/Friends.vcf"));
}

TEST_F(SyncPimTest, MissingOrDamagedFile_RemovesNothing)
{
    givenFile("Friends.vcf", CardsText({{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}}));
    givenFile("cal.ics", CalendarText("Work", {{"1", "Meeting"}}));
    const std::vector<std::string> arguments{"--contacts", pc("Friends.vcf"), "--calendar", pc("cal.ics")};
    (void)sync(arguments);
    std::vector<std::string> forced = arguments;
    forced.emplace_back("--force");

    givenFile("Friends.vcf", CardsText({{"1", "Anne"}, {"4", "Dan"}}) + "BEGIN:VCARD\r\nUID:2\r\n");
    removeFile("cal.ics");
    const Ended run = sync(forced);
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("Friends.vcf: line 11: the card has no end; nothing of it is removed"));
    EXPECT_THAT(run.out, HasSubstr("cal.ics: it cannot be read"));
    EXPECT_THAT(run.out, HasSubstr("Contacts: 1 added, 1 updated, 0 removed, 2 unchanged"));
    EXPECT_EQ(contactsIn("Contacts/Friends.vcf"), (Entries{{"1", "Anne"}, {"2", "Bob"}, {"3", "Cay"}, {"4", "Dan"}}));
    EXPECT_EQ(eventsIn("Calendar/Work.ics"), (Entries{{"1", "Meeting"}}));
    EXPECT_EQ(database().text("SELECT ErrCode FROM tPhone"), "3");

    fs::create_directories(Path(pc("cal.ics")));
    givenFile("Friends.vcf", "this is no address book\n");
    EXPECT_EQ(sync(forced).exitCode, 3);
    EXPECT_EQ(contactsIn("Contacts/Friends.vcf").size(), 4u);
    givenFile("Friends.vcf", CardsText({{"1", "Anne"}, {"2", "Bob"}, {"3", "Cay"}}));
    fs::remove(Path(pc("cal.ics")));
    givenFile("cal.ics", CalendarText("Work", {{"1", "Meeting"}}));
    EXPECT_EQ(sync(arguments).exitCode, 0);
    expectDatabaseInOrder({{"1", "Anne"}, {"2", "Bob"}, {"3", "Cay"}}, {{"1", "Meeting"}});
}

TEST_F(SyncPimTest, DryRun_ChangesNothing)
{
    givenFile("Friends.vcf", CardsText({{"1", "Ann"}, {"2", "Bob"}}));
    const Ended unknown = syncContacts({"Friends.vcf"}, {"--dry-run"});
    EXPECT_EQ(unknown.exitCode, 0) << unknown.out << unknown.err;
    EXPECT_THAT(unknown.out, HasSubstr("write     Contacts/Friends.vcf"));
    EXPECT_THAT(unknown.out, HasSubstr("Contacts: 2 added"));
    EXPECT_THAT(phonePaths(), IsEmpty());
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPimFolder"), "0");
    (void)syncContacts({"Friends.vcf"});
    const std::string before =
        database().text("SELECT PimID, Data FROM tPimItem") + database().text("SELECT * FROM tPimLogItem");
    const auto files = phoneFiles();
    givenFile("Friends.vcf", CardsText({{"1", "Anne"}, {"3", "Cay"}}));
    const Ended known = syncContacts({"Friends.vcf"}, {"--dry-run", "--force"});
    EXPECT_EQ(known.exitCode, 0);
    EXPECT_THAT(known.out, HasSubstr("Contacts: 1 added, 1 updated, 1 removed, 0 unchanged"));
    EXPECT_THAT(known.out, HasSubstr("            update    Anne\n"));
    EXPECT_THAT(known.out, HasSubstr("            add       Cay\n"));
    EXPECT_THAT(known.out, HasSubstr("            remove    Bob\n"));
    givenFile("Friends.vcf", "");
    const Ended all = syncContacts({"Friends.vcf"}, {"--dry-run", "--force"});
    EXPECT_THAT(all.out, HasSubstr("remove    Contacts/Friends.vcf"));
    EXPECT_THAT(syncContacts({"Friends.vcf"}, {"--dry-run"}).exitCode, 4);
    EXPECT_EQ(database().text("SELECT PimID, Data FROM tPimItem") + database().text("SELECT * FROM tPimLogItem"),
              before);
    EXPECT_EQ(phoneFiles(), files);
}

TEST_F(SyncPimTest, FileOnThePhoneMissingOrChanged_IsWrittenAgain)
{
    givenFile("Friends.vcf", CardsText({{"1", "Ann"}, {"2", "Bob"}}));
    (void)syncContacts({"Friends.vcf"});
    const std::string text = phoneText("Contacts/Friends.vcf");
    fs::remove(Path(phone("Contacts/Friends.vcf")));
    const Ended missing = syncContacts({"Friends.vcf"});
    EXPECT_THAT(missing.out, HasSubstr("Contacts: 0 added, 2 updated, 0 removed, 0 unchanged"));
    EXPECT_EQ(phoneText("Contacts/Friends.vcf"), text);
    std::ofstream(Path(phone("Contacts/Friends.vcf")), std::ios::binary) << "edited on the phone";
    EXPECT_EQ(syncContacts({"Friends.vcf"}).exitCode, 0);
    EXPECT_EQ(phoneText("Contacts/Friends.vcf"), text);
    fs::last_write_time(Path(phone("Contacts/Friends.vcf")), fs::file_time_type::clock::now() - std::chrono::hours(5));
    EXPECT_THAT(syncContacts({"Friends.vcf"}).out, HasSubstr("recorded  Contacts/Friends.vcf"));
    EXPECT_THAT(syncContacts({"Friends.vcf"}).out, Not(HasSubstr("recorded")));
    expectDatabaseInOrder({{"1", "Ann"}, {"2", "Bob"}}, {});
}

TEST_F(SyncPimTest, WhatSomebodyElsePutThere_Stays)
{
    fs::create_directories(Path(phone("Contacts")));
    std::ofstream(Path(phone("Contacts/Friends.vcf")), std::ios::binary) << CardText("x", "Somebody");
    givenFile("Friends.vcf", CardText("1", "Ann"));
    EXPECT_EQ(syncContacts({"Friends.vcf"}).exitCode, 0);
    EXPECT_EQ(phoneText("Contacts/Friends.vcf"), CardText("x", "Somebody"));
    EXPECT_THAT(phonePaths(), ElementsAre("Contacts/Friends.vcf", StartsWith("Contacts/Friends~")));
    givenFile("Friends.vcf", "");
    EXPECT_EQ(syncContacts({"Friends.vcf"}, {"--force"}).exitCode, 0);
    EXPECT_THAT(phonePaths(), ElementsAre("Contacts/Friends.vcf"));
}

TEST_F(SyncPimTest, TwoPhones_ShareTheStoreAndKeepTheirOwnLogs)
{
    givenFile("Friends.vcf", CardsText({{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}}));
    givenFile("Work.vcf", CardsText({{"8", "Boss"}}));
    const std::string second = Utf8(work() / "second");
    fs::create_directories(work() / "second");
    const auto syncSecond = [&](std::vector<std::string> more) {
        more.insert(more.begin(), {"sync", "--phone", second, "--imei", "352222"});
        return client(more);
    };
    (void)syncContacts({"Friends.vcf", "Work.vcf"});
    const Ended joined = syncSecond({"--contacts", pc("Friends.vcf")});
    EXPECT_EQ(joined.exitCode, 0) << joined.out;
    EXPECT_THAT(joined.out, HasSubstr("Contacts: 3 added, 0 updated, 0 removed, 0 unchanged"));
    EXPECT_FALSE(fs::exists(work() / "second" / "Contacts" / "Work.vcf")) << "what is not given goes to no phone";
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPimItem"), "4");
    expectDatabaseInOrder({{"1", "Ann"}, {"2", "Bob"}, {"3", "Cay"}}, {}, "352222");

    // What the first phone's run takes out of the store is news to the second phone.
    givenFile("Friends.vcf", CardsText({{"1", "Anne"}, {"2", "Bob"}}));
    EXPECT_THAT(syncContacts({"Friends.vcf"}).out, HasSubstr("0 added, 1 updated, 1 removed, 1 unchanged"));
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPimItem"), "3");
    EXPECT_THAT(syncSecond({"--contacts", pc("Friends.vcf")}).out,
                HasSubstr("Contacts: 0 added, 1 updated, 1 removed, 1 unchanged"));
    expectDatabaseInOrder({{"1", "Anne"}, {"2", "Bob"}}, {}, "352222");
    expectDatabaseInOrder({{"1", "Anne"}, {"2", "Bob"}, {"8", "Boss"}}, {});

    // Consent for one phone is not consent for the other.
    givenFile("Friends.vcf", "");
    EXPECT_EQ(syncContacts({"Friends.vcf"}, {"--force"}).exitCode, 0);
    const Ended held = syncSecond({"--contacts", pc("Friends.vcf")});
    EXPECT_EQ(held.exitCode, 4);
    EXPECT_TRUE(fs::exists(work() / "second" / "Contacts" / "Friends.vcf"));
    EXPECT_EQ(syncSecond({"--contacts", pc("Friends.vcf"), "--force"}).exitCode, 0);
    EXPECT_FALSE(fs::exists(work() / "second" / "Contacts" / "Friends.vcf"));
    EXPECT_EQ(database().text("SELECT COUNT(*) FROM tPimLogItem"), "1");
}

TEST_F(SyncPimTest, DatabaseThatRefuses_StopTheRunAndTheNextOneMakesItGood)
{
    givenFile("Friends.vcf", CardsText({{"1", "Ann"}, {"2", "Bob"}}));
    (void)syncContacts({"Friends.vcf"});
    givenFile("Friends.vcf", CardsText({{"1", "Anne"}, {"3", "Cay"}}));
    const std::pair<const char*, const char*> refusals[] = {
        {"BEFORE INSERT ON tPimItem", "DB_PIM_AddItem failed"},
        {"BEFORE UPDATE ON tPimItem", "DB_PIM_UpdateItem failed"},
        {"BEFORE DELETE ON tPimItem", "DB_PIM_DeleteItem failed"},
        {"BEFORE DELETE ON tPimLogItem", "DB_PIMLOG_ClearAll failed"},
        {"BEFORE INSERT ON tPimLogItem", "DB_PIMLOG_SaveLog failed"},
    };
    for (const auto& [event, text] : refusals) {
        SCOPED_TRACE(event);
        database().exec(std::string("CREATE TRIGGER no ") + event + " BEGIN SELECT RAISE(ABORT, 'no'); END");
        const Ended run = syncContacts({"Friends.vcf"});
        EXPECT_EQ(run.exitCode, 8);
        EXPECT_THAT(run.out, HasSubstr(text));
        database().exec("DROP TRIGGER no");
    }
    EXPECT_EQ(syncContacts({"Friends.vcf"}).exitCode, 0);
    EXPECT_EQ(contactsIn("Contacts/Friends.vcf"), (Entries{{"1", "Anne"}, {"3", "Cay"}}));
    expectDatabaseInOrder({{"1", "Anne"}, {"3", "Cay"}}, {});
}

TEST_F(SyncPimTest, StoreThatLostAFolder_IsPutRight)
{
    givenFile("Friends.vcf", CardsText({{"1", "Ann"}, {"2", "Bob"}}));
    (void)syncContacts({"Friends.vcf"});
    database().exec("DELETE FROM tPimFolder WHERE Path = 'Contacts/Friends'");
    EXPECT_EQ(syncContacts({"Friends.vcf"}).exitCode, 0);
    expectDatabaseInOrder({{"1", "Ann"}, {"2", "Bob"}}, {});
    // Items are added by path, and another program's folder may come first.
    database().exec(
        "DELETE FROM tPimItem; DELETE FROM tPimFolder WHERE Path = 'Contacts/Friends'; "
        "INSERT INTO tPimFolder (parentID, PimID, Path, Type) VALUES (-2, 'other', 'Contacts/Friends', 7)");
    const Ended run = syncContacts({"Friends.vcf"});
    EXPECT_EQ(run.exitCode, 8);
    EXPECT_THAT(run.out, HasSubstr("'Contacts/Friends' holds 0 entries instead of 2"));
    EXPECT_EQ(contactsIn("Contacts/Friends.vcf").size(), 2u);
}

TEST_F(SyncPimTest, LogOfAnotherProgram_IsLeftAlone)
{
    givenFile("Friends.vcf", CardText("1", "Ann"));
    givenFile("Rock/a.mp3", "a");
    (void)sync({"--music", pc("Rock")});
    database().exec(
        "INSERT INTO tPimLog (phoneID, Type, PimProfile) VALUES (1, 1500, 'of another program'); "
        "INSERT INTO tPimLogItem (plID, Guid, Luid) VALUES (1, 'g', 'l')");
    const Ended run = syncContacts({"Friends.vcf"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("another program keeps this phone's log of them"));
    EXPECT_EQ(database().text("SELECT Guid, Luid FROM tPimLogItem"), "g|l");
    EXPECT_FALSE(fs::exists(Path(phone("Contacts"))));
}

TEST_F(SyncPimTest, FullStore_SaysSo)
{
    givenFile("Friends.vcf", CardText("1", "Ann"));
    (void)syncContacts({"Friends.vcf"});
    database().exec(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1021) INSERT INTO tPimFolder "
        "(parentID, PimID, Path, Type) SELECT (SELECT pfID FROM tPimFolder WHERE PimID = 'contacts'), 'f' || i, "
        "'Contacts/f' || i, 1500 FROM n");
    givenFile("more.vcf", CardText("2", "Bob"));
    givenFile("Friends.vcf", CardsText({{"1", "Anne"}, {"3", "Cay"}}));
    const Ended run = syncContacts({"Friends.vcf", "more.vcf"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("the database has no room for 'more': they take 1022 folders of contacts"));
    EXPECT_THAT(run.out, HasSubstr("Contacts: 1 added, 1 updated"));
    EXPECT_THAT(phonePaths(), ElementsAre("Contacts/Friends.vcf"));
}

TEST_F(SyncPimTest, FileOnThePhoneItself_IsRefused)
{
    fs::create_directories(Path(phone("Contacts")));
    std::ofstream(Path(phone("Contacts/own.vcf")), std::ios::binary) << CardText("1", "Ann");
    const Ended run = sync({"--contacts", phone("Contacts/own.vcf")});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.out, HasSubstr("it lies on the phone itself"));
    EXPECT_THAT(phonePaths(), ElementsAre("Contacts/own.vcf"));
}

TEST_F(SyncPimTest, Latin1_ReachesThePhoneAsUtf8)
{
    givenFile("Friends.vcf",
              "BEGIN:VCARD\nVERSION:3.0\nUID:1\nFN:J\xF6rg\nEND:VCARD\n"
              "BEGIN:VCARD\nVERSION:3.0\nUID:2\nFN:Zo\xC3\xAB\nEND:VCARD\n"
              "BEGIN:VCARD\nVERSION:2.1\nUID:3\nFN;CHARSET=ISO-8859-1:Ren\xE9\n"
              "NOTE;ENCODING=QUOTED-PRINTABLE;CHARSET=ISO-8859-1:=E9\nEND:VCARD\n");
    ASSERT_EQ(syncContacts({"Friends.vcf"}).exitCode, 0);
    const std::string cards = phoneFiles().at("Contacts/Friends.vcf");
    EXPECT_THAT(cards, HasSubstr("FN:J\u00f6rg\n"));
    EXPECT_THAT(cards, HasSubstr("FN:Zo\u00eb\n"));
    EXPECT_THAT(cards, HasSubstr("FN;CHARSET=UTF-8:Ren\u00e9\n"));
    EXPECT_THAT(cards, HasSubstr("NOTE;ENCODING=QUOTED-PRINTABLE;CHARSET=ISO-8859-1:=E9\n"));
    EXPECT_THAT(syncContacts({"Friends.vcf"}).out, HasSubstr("0 added, 0 updated, 0 removed, 3 unchanged"));

    givenFile("Home.ics",
              "BEGIN:VCALENDAR\nVERSION:2.0\nBEGIN:VEVENT\nUID:1\nDTSTAMP:20260101T000000Z\n"
              "DTSTART:20260101T100000Z\nSUMMARY:Caf\xE9\nEND:VEVENT\nEND:VCALENDAR\n");
    ASSERT_EQ(sync({"--calendar", pc("Home.ics")}).exitCode, 0);
    EXPECT_THAT(phoneFiles().at("Calendar/Home.ics"), HasSubstr("SUMMARY:Caf\u00e9\n"));
}

TEST_F(SyncPimTest, FolderOfCards_IsOneAddressBook)
{
    givenFile("cards/a.vcf", "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:a\r\nFN:Ann\r\nN:;Ann;;;\r\nEND:VCARD\r\n");
    givenFile("cards/b.VCF", "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:b\r\nFN:Ben\r\nN:;Ben;;;\r\nEND:VCARD\r\n");
    givenFile("cards/readme.txt", "no card");
    const Ended run = syncContacts({"cards"});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, HasSubstr("Contacts: 2 added"));
    EXPECT_THAT(run.out, HasSubstr("Left out of Contacts: 1 that are no entries"));
    EXPECT_EQ(contactsIn("Contacts/cards.vcf").size(), 2u);
    changeFile("cards/b.VCF", "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:b\r\nFN:Bea\r\nN:;Bea;;;\r\nEND:VCARD\r\n");
    givenFile("cards/c.vcf", "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:c\r\nFN:Cia\r\nN:;Cia;;;\r\nEND:VCARD\r\n");
    EXPECT_THAT(syncContacts({"cards"}).out, HasSubstr("Contacts: 1 added, 1 updated, 0 removed, 1 unchanged"));
    givenFile("cards/d.vcf", "BEGIN:VCARD\r\nFN:cut");
    removeFile("cards/a.vcf");
    const Ended damaged = syncContacts({"cards"});
    EXPECT_EQ(damaged.exitCode, 3);
    EXPECT_THAT(damaged.out, HasSubstr("d.vcf"));
    EXPECT_EQ(contactsIn("Contacts/cards.vcf").size(), 3u);
}

TEST_F(SyncPimTest, FreeBusyTimes_GoAlong)
{
    givenFile("busy.ics",
              "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:x\r\nBEGIN:VFREEBUSY\r\nUID:busy\r\n"
              "FREEBUSY:20260102T080000Z/PT1H\r\nEND:VFREEBUSY\r\nBEGIN:X-OTHER\r\nEND:X-OTHER\r\nEND:VCALENDAR\r\n");
    const Ended run = syncCalendars({"busy.ics"});
    EXPECT_EQ(run.exitCode, 0) << run.out;
    EXPECT_THAT(run.out, HasSubstr("Calendar: 1 added"));
    EXPECT_THAT(run.out, HasSubstr("Left out of Calendar: 1 that are no entries"));
    EXPECT_THAT(phoneText("Calendar/busy.ics"), HasSubstr("BEGIN:VFREEBUSY"));
}

}  // namespace
}  // namespace kesta::test
