// Entries of contacts and calendars: their ids, the files of the PC that they come from, those of the phone they go to.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "formats/icalendar.h"
#include "formats/vcard.h"
#include "os/local_time.h"
#include "pim_samples.h"
#include "pim_sources.h"
#include "stages/pim/pim_source.h"
#include "stages/pim/pim_text.h"

namespace kesta::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

std::string Event(const std::string& uid, const std::string& more = {})
{
    return "BEGIN:VEVENT\r\nUID:" + uid + "\r\nDTSTAMP:20260101T000000Z\r\n" + more + "END:VEVENT\r\n";
}

std::string Calendar(const std::string& name, const std::string& contents, const std::string& head = {})
{
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:test\r\n" + head +
           (name.empty() ? "" : "X-WR-CALNAME:" + name + "\r\n") + contents + "END:VCALENDAR\r\n";
}

size_t CountOf(const std::string& text, const std::string& part)
{
    size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

TEST(PimIds, AreShortPlainAndTakenApartAgain)
{
    const std::string source = PimSourceId(PimKind::kContacts, "/home/o'brien/\u4E2D.vcf");
    const std::string folder = PimFolderId(source, "it's \u00E9");
    const std::string entry = PimEntryId(folder, std::string(5000, '\''), 12);
    for (const char c : entry) {
        EXPECT_TRUE((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-') << entry;
    }
    EXPECT_LE(entry.size(), 200u);
    EXPECT_EQ(FolderOfPimEntry(PimKind::kContacts, entry), folder);
    EXPECT_EQ(FolderOfPimEntry(PimKind::kCalendar, entry), "");
    EXPECT_EQ(FolderOfPimEntry(PimKind::kContacts, folder), "");
    EXPECT_EQ(FolderOfPimEntry(PimKind::kContacts, "contacts-of another program, long enough to be one of ours"), "");
    EXPECT_TRUE(IsOfPimSource(folder, source));
    EXPECT_FALSE(IsOfPimSource(folder, PimSourceId(PimKind::kContacts, "/home/other.vcf")));
    EXPECT_NE(PimEntryId(folder, "a", 1), PimEntryId(folder, "a", 2));

    const std::string luid = ToLuid({PimFileDigest("friends.vcf"), std::string(32, 'a')});
    EXPECT_LE(luid.size(), 50u);
    EXPECT_EQ(FromLuid(luid).file, PimFileDigest("friends.vcf"));
    EXPECT_EQ(FromLuid(luid).digest, std::string(32, 'a'));
    EXPECT_EQ(FromLuid("something else").digest, "");
}

TEST(PimSources, ReadProblemsAndEmptyFiles)
{
    EXPECT_TRUE(Contacts("").complete);
    EXPECT_TRUE(Contacts("\xEF\xBB\xBF\r\n \r\n").complete);
    EXPECT_FALSE(Contacts("no card").complete);
    const PimSource cut = Contacts(CardText("1", "Ann") + "BEGIN:VCARD\r\nUID:2\r\n");
    EXPECT_FALSE(cut.complete);
    EXPECT_THAT(cut.problem, HasSubstr("line 6: the card has no end"));
    EXPECT_THAT(cut.folders.at(0).entries, SizeIs(1));
    EXPECT_FALSE(Calendars("").complete);
    EXPECT_TRUE(Calendars(Calendar("", "")).complete);
    EXPECT_EQ(Contacts("", "/pc/archive.2026.vcf").folders.at(0).name, "archive.2026");
}

TEST(PimSources, EntriesWithoutATime_GetTheFiles)
{
    const PimSource source = Contacts("BEGIN:VCARD\nUID:1\nREV:20260101T120000Z\nEND:VCARD\n" + CardText("2", "Bob"));
    const auto& entries = source.folders.at(0).entries;
    EXPECT_EQ(entries.at(0).modified, os::ToLocalTime(1'767'268'800));
    EXPECT_EQ(entries.at(1).modified, FromNumber(3'900'000'000));
}

TEST(PimStored, DigestsAreTheFiles)
{
    const std::string zone =
        "BEGIN:VTIMEZONE\r\nTZID:X\r\nBEGIN:STANDARD\r\nTZOFFSETTO:+0100\r\nEND:STANDARD\r\n"
        "END:VTIMEZONE\r\n";
    const std::string other =
        "BEGIN:VTIMEZONE\r\nTZID:Y\r\nBEGIN:STANDARD\r\nTZOFFSETTO:+0200\r\nEND:STANDARD\r\n"
        "END:VTIMEZONE\r\n";
    const PimSource calendar =
        Calendars(Calendar("Work", zone + other + Event("1", "DTSTART;TZID=Y:20260101T100000\r\n") +
                                       Event("1", "RECURRENCE-ID;TZID=X:20260102T100000\r\n") + Event("2")));
    for (const PimEntry& entry : calendar.folders.at(0).entries) {
        EXPECT_EQ(ReadStored(PimKind::kCalendar, {entry.id, TypeOf(PimKind::kCalendar), entry.bytes}).digest,
                  entry.digest);
    }
    const PimSource contacts = Contacts(CardText("1", "Ann") + "BEGIN:VCARD\nVERSION:2.1\nN:B\xF6hm;Jo\nEND:VCARD");
    for (const PimEntry& entry : contacts.folders.at(0).entries) {
        EXPECT_EQ(ReadStored(PimKind::kContacts, {entry.id, TypeOf(PimKind::kContacts), entry.bytes}).digest,
                  entry.digest);
    }
    const PimEntry foreign = ReadStored(PimKind::kContacts, {"x", TypeOf(PimKind::kContacts), "no card at all"});
    EXPECT_THAT(foreign.digest, SizeIs(32));
}

std::vector<std::string_view> Contents(const std::vector<PimEntry>& entries)
{
    std::vector<std::string_view> contents;
    for (const PimEntry& entry : entries) {
        contents.push_back(entry.bytes);
    }
    return contents;
}

TEST(PimText, Contacts_StandOneAfterTheOther)
{
    const PimSource source = Contacts("BEGIN:VCARD\nVERSION:2.1\nUID:1\nEND:VCARD\n" + CardText("2", "Bob") +
                                      "BEGIN:VCARD\nUID:3\nEND:VCARD");
    const std::string text = PhoneFileText(PimKind::kContacts, "friends", Contents(source.folders.at(0).entries));
    EXPECT_EQ(text, "BEGIN:VCARD\nVERSION:2.1\nUID:1\nEND:VCARD\n" + CardText("2", "Bob") +
                        "BEGIN:VCARD\nUID:3\nEND:VCARD\r\n");
    EXPECT_THAT(formats::ParseCards(text).cards, SizeIs(3));
}

TEST(PimText, Entries_ShareOneCalendarAndItsTimeZones)
{
    const std::string zone = "BEGIN:VTIMEZONE\r\nTZID:X\r\nEND:VTIMEZONE\r\n";
    const std::string inZone = "DTSTART;TZID=X:20260101T100000\r\n";
    PimSource source =
        Calendars(Calendar("Work", zone + Event("1", inZone) + Event("2", inZone), "METHOD:PUBLISH\r\n"));
    // An entry that was stored from what another version of the program wrote.
    const PimSource later = Calendars(
        "BEGIN:VCALENDAR\r\nPRODID:newer\r\nVERSION:2.0\r\nCALSCALE:GREGORIAN\r\n"
        "X-WR-CALNAME:Work\r\n" +
        zone + Event("3", inZone) + "END:VCALENDAR\r\n");
    auto entries = source.folders.at(0).entries;
    entries.push_back(later.folders.at(0).entries.at(0));
    const std::string text = PhoneFileText(PimKind::kCalendar, "Work; home, and\\all", Contents(entries));
    EXPECT_EQ(CountOf(text, "BEGIN:VCALENDAR"), 1u);
    EXPECT_EQ(CountOf(text, "BEGIN:VTIMEZONE"), 1u);
    EXPECT_EQ(CountOf(text, "BEGIN:VEVENT"), 3u);
    EXPECT_EQ(CountOf(text, "PRODID"), 1u);
    EXPECT_EQ(CountOf(text, "VERSION:2.0"), 1u);
    EXPECT_EQ(CountOf(text, "METHOD"), 0u);
    const formats::Calendars read = formats::ParseCalendars(text);
    EXPECT_THAT(read.problems, IsEmpty());
    EXPECT_THAT(read.names, ElementsAre("Work; home, and\\all"));
    ASSERT_THAT(read.entries, SizeIs(3));
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(read.entries[i].digest, entries[i].digest);
    }
}

TEST(PimText, ContradictingTimeZones_GetCalendarsOfTheirOwn)
{
    const auto zone = [](const char* offset) {
        return std::string("BEGIN:VTIMEZONE\r\nTZID:X\r\nBEGIN:STANDARD\r\nTZOFFSETTO:") + offset +
               "\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n";
    };
    const std::string inZone = "DTSTART;TZID=X:20260101T100000\r\n";
    auto entries = Calendars(Calendar("", zone("+0100") + Event("1", inZone))).folders.at(0).entries;
    entries.push_back(Calendars(Calendar("", zone("+0200") + Event("2", inZone))).folders.at(0).entries.at(0));
    entries.push_back(
        Calendars(Calendar("", Event("3"), "X-WR-TIMEZONE:Europe/Berlin\r\n")).folders.at(0).entries.at(0));
    const std::string text = PhoneFileText(PimKind::kCalendar, "cal", Contents(entries));
    EXPECT_EQ(CountOf(text, "BEGIN:VCALENDAR"), 3u);
    const formats::Calendars read = formats::ParseCalendars(text);
    ASSERT_THAT(read.entries, SizeIs(3));
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(read.entries[i].digest, entries[i].digest);
    }
}

// The first calendars that take an entry keep taking its like, however many contradict each other before it.
TEST(PimText, ManyContradictingTimeZones_KeepTheirEntriesTogether)
{
    constexpr int kZones = 100;
    std::vector<PimEntry> entries;
    for (int round = 0; round < 2; ++round) {
        for (int zone = 0; zone < kZones; ++zone) {
            const std::string text = "BEGIN:VTIMEZONE\r\nTZID:X\r\nTZNAME:" + std::to_string(zone) +
                                     "\r\nEND:VTIMEZONE\r\n" +
                                     Event(std::to_string(round * kZones + zone), "DTSTART;TZID=X:20260101T100000\r\n");
            entries.push_back(Calendars(Calendar("", text)).folders.at(0).entries.at(0));
        }
    }
    const std::string text = PhoneFileText(PimKind::kCalendar, "cal", Contents(entries));
    EXPECT_EQ(CountOf(text, "BEGIN:VCALENDAR"), static_cast<size_t>(kZones));
    EXPECT_EQ(CountOf(text, "BEGIN:VEVENT"), static_cast<size_t>(2 * kZones));
}

}  // namespace
}  // namespace kesta::test
