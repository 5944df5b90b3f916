#include <gmock/gmock.h>

#include "formats/icalendar.h"

namespace kesta::formats {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::string_view kBerlin = "BEGIN:VTIMEZONE\r\nTZID:Europe/Berlin\r\nEND:VTIMEZONE\r\n";
constexpr std::string_view kTokyo = "BEGIN:VTIMEZONE\r\nTZID:Asia/Tokyo\r\nEND:VTIMEZONE\r\n";

std::string Calendar(std::string_view contents, std::string_view properties = "")
{
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//x\r\n" + std::string(properties) + std::string(contents) +
           "END:VCALENDAR\r\n";
}

std::string Event(std::string_view lines)
{
    return "BEGIN:VEVENT\r\n" + std::string(lines) + "END:VEVENT\r\n";
}

TEST(Calendars, EntryIsACompleteCalendarWithTheZonesItNeeds)
{
    const std::string event = Event(
        "UID:1\r\nSUMMARY:Tea\\, late\r\nDTSTART;TZID=\"Europe/Berlin\":20200101T100000\r\nBEGIN:VALARM\r\n"
        "SUMMARY:no\r\nEND:VALARM\r\n");
    const std::string file =
        Calendar(std::string(kTokyo).append(kBerlin) + event, "METHOD:PUBLISH\r\nX-WR-CALNAME:Home\r\n");
    const Calendars result = ParseCalendars(file);
    EXPECT_THAT(result.problems, IsEmpty());
    EXPECT_THAT(result.names, ElementsAre("Home"));
    ASSERT_THAT(result.entries, SizeIs(1));
    const CalendarEntry& entry = result.entries[0];
    EXPECT_EQ(entry.uid, "1");
    EXPECT_EQ(entry.summary, "Tea, late");
    EXPECT_EQ(entry.calendar, "Home");
    EXPECT_EQ(entry.kind, CalendarEntryKind::kEvent);
    EXPECT_EQ(entry.bytes, Calendar(std::string(kBerlin) + event));
}

TEST(Calendars, Zones_StandInTheOrderOfTheFile_TheFirstOfEachId)
{
    const std::string event =
        Event("UID:1\r\nDTSTART;TZID=Asia/Tokyo:20200101T100000\r\nDTEND;TZID=Europe/Berlin:20200101T100000\r\n");
    const std::string zones = std::string(kBerlin).append(kTokyo);
    const std::string again = "BEGIN:VTIMEZONE\r\nTZID:Europe/Berlin\r\nX-SECOND:1\r\nEND:VTIMEZONE\r\n";
    const Calendars result = ParseCalendars(Calendar(zones + again + event));
    ASSERT_THAT(result.entries, SizeIs(1));
    EXPECT_EQ(result.entries[0].bytes, Calendar(zones + event));
}

TEST(Calendars, ManyZonesAndManyEntries_AreReadInOnePass)
{
    std::string text;
    for (int i = 0; i < 200'000; ++i) {
        text += kBerlin;
    }
    for (int i = 0; i < 200'000; ++i) {
        text += Event("UID:" + std::to_string(i) + "\r\nDTSTART;TZID=Europe/Berlin:20200101T100000\r\n");
    }
    EXPECT_THAT(ParseCalendars(Calendar(text)).entries, SizeIs(200'000));
}

TEST(Calendars, ChangedOccurrences_BelongToTheirUid)
{
    const std::string file = Calendar(
        Event("UID:1\r\nRECURRENCE-ID:20200108T090000Z\r\nSUMMARY:Once\r\nLAST-MODIFIED:20200301T000000Z\r\n") +
        Event("UID:2\r\nSUMMARY:Other\r\n") +
        Event("UID:1\r\nSUMMARY:Series\r\nLAST-MODIFIED:20200201T000000Z\r\nDTSTAMP:20210101T000000Z\r\n"));
    const Calendars result = ParseCalendars(file);
    ASSERT_THAT(result.entries, SizeIs(2));
    EXPECT_EQ(result.entries[0].uid, "1");
    EXPECT_EQ(result.entries[0].summary, "Series");
    EXPECT_THAT(result.entries[0].recurrenceIds, ElementsAre("20200108T090000Z"));
    EXPECT_EQ(result.entries[0].modified, 1583020800);
    EXPECT_EQ(result.entries[1].uid, "2");
    EXPECT_EQ(result.entries[1].modified, std::nullopt);
}

TEST(Calendars, SeveralCalendars_KeepTheirNamesApart)
{
    const std::string event = Event("UID:1\r\nSUMMARY:S\r\n");
    const Calendars result =
        ParseCalendars(Calendar(event, "X-WR-CALNAME:A\r\n") + Calendar(event, "X-WR-CALNAME:B\r\n") +
                       Calendar(Event("UID:1\r\nRECURRENCE-ID:20200101\r\n"), "X-WR-CALNAME:A\r\n"));
    EXPECT_THAT(result.names, ElementsAre("A", "B"));
    ASSERT_THAT(result.entries, SizeIs(2));
    EXPECT_THAT(result.entries[0].recurrenceIds, SizeIs(1));
    EXPECT_THAT(result.entries[1].recurrenceIds, IsEmpty());
}

TEST(Calendars, KindsAndBareEntries)
{
    const Calendars result = ParseCalendars(
        "BEGIN:VTODO\nUID:t\nEND:VTODO\nBEGIN:VJOURNAL\nUID:j\nEND:VJOURNAL\nBEGIN:VFREEBUSY\nUID:f\nEND:VFREEBUSY");
    EXPECT_THAT(result.problems, IsEmpty());
    ASSERT_THAT(result.entries, SizeIs(3));
    EXPECT_EQ(result.entries[0].kind, CalendarEntryKind::kTask);
    EXPECT_EQ(result.entries[1].kind, CalendarEntryKind::kJournal);
    EXPECT_EQ(result.entries[2].kind, CalendarEntryKind::kFreeBusy);
    EXPECT_EQ(
        result.entries[0].bytes,
        "BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:-//KESTA//KESTA//EN\nBEGIN:VTODO\nUID:t\nEND:VTODO\nEND:VCALENDAR\n");
}

TEST(Calendars, Digest_OverlooksStampsAndFolding)
{
    const auto digest = [](std::string_view lines) {
        return ParseCalendars(Calendar(Event(lines))).entries.at(0).digest;
    };
    const std::string plain = digest("UID:1\r\nSUMMARY:Long text\r\nDTSTAMP:20200101T000000Z\r\n");
    EXPECT_EQ(digest("UID:1\r\nSUMMARY:Long\r\n  text\r\nDTSTAMP:20220101T000000Z\r\n"), plain);
    EXPECT_NE(digest("UID:1\r\nSUMMARY:Other text\r\nDTSTAMP:20200101T000000Z\r\n"), plain);
    EXPECT_EQ(ParseCalendars(Calendar(Event("UID:1\r\nDTSTAMP:20200913T122640Z\r\n"))).entries.at(0).modified,
              1600000000);
}

TEST(Calendars, NoUid_IsDerivedAndNumbered)
{
    const Calendars result = ParseCalendars(Calendar(Event("SUMMARY:S\r\n") + Event("SUMMARY:S\r\n")));
    ASSERT_THAT(result.entries, SizeIs(2));
    EXPECT_TRUE(result.entries[0].uidDerived);
    EXPECT_EQ(result.entries[1].uid, result.entries[0].uid + "-2");
}

TEST(Calendars, DamagedFiles_AreReportedAndTheRestIsRead)
{
    const Calendars result =
        ParseCalendars("BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:1\nEND:VEVENT\nBEGIN:VEVENT\nUID:2\nEND:VCALENDAR\n");
    ASSERT_THAT(result.entries, SizeIs(1));
    EXPECT_THAT(result.problems, ElementsAre(Problem{5, "VEVENT has no end"}));
    EXPECT_THAT(ParseCalendars("BEGIN:VCALENDAR\n").problems, ElementsAre(Problem{1, "VCALENDAR has no end"}));
    const Calendars unknown = ParseCalendars("BEGIN:VODD\nVERSION:1\nBEGIN:VEVENT\nUID:1\nEND:VEVENT\nEND:VODD\n");
    EXPECT_THAT(unknown.problems, IsEmpty());
    EXPECT_THAT(unknown.entries, SizeIs(1));
    EXPECT_THAT(ParseCalendars("END:VEVENT\n").problems, ElementsAre(Problem{1, "an end without a beginning"}));
    EXPECT_THAT(ParseCalendars("x\ny\n").problems, ElementsAre(Problem{1, "text outside of any calendar"}));
    EXPECT_THAT(ParseCalendars("").problems, ElementsAre(Problem{0, "no calendar in the file"}));
}

TEST(Calendars, FreeBusyTimesAreEntries_UnknownPartsAreCounted)
{
    const Calendars read = ParseCalendars(
        "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:x\r\nBEGIN:VFREEBUSY\r\nUID:busy\r\n"
        "FREEBUSY:20260102T080000Z/PT1H\r\nEND:VFREEBUSY\r\nBEGIN:X-OTHER\r\nX-THING:1\r\nEND:X-OTHER\r\nEND:VCALENDAR\r\n");
    EXPECT_TRUE(read.problems.empty());
    ASSERT_EQ(read.entries.size(), 1u);
    EXPECT_EQ(read.entries[0].kind, CalendarEntryKind::kFreeBusy);
    EXPECT_EQ(read.entries[0].uid, "busy");
    EXPECT_EQ(read.unknownParts, 1u);
}

}  // namespace
}  // namespace kesta::formats
