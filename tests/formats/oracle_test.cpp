// The calendar reader beside libical, over every calendar there is a sample of: the same entries, UIDs and titles.
#include <gmock/gmock.h>
#include <libical/ical.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>

#include "formats/icalendar.h"

namespace kesta::formats {
namespace {

namespace fs = std::filesystem;

using Titles = std::set<std::pair<std::string, std::string>>;  // UID and title of each entry that has both

bool IsEntry(icalcomponent_kind kind)
{
    return kind == ICAL_VEVENT_COMPONENT || kind == ICAL_VTODO_COMPONENT || kind == ICAL_VJOURNAL_COMPONENT;
}

void Collect(icalcomponent* component, Titles& titles)
{
    if (IsEntry(icalcomponent_isa(component))) {
        const char* uid = icalcomponent_get_uid(component);
        const char* summary = icalcomponent_get_summary(component);
        const bool whole = !icalcomponent_get_first_property(component, ICAL_RECURRENCEID_PROPERTY);
        if (uid && *uid && summary && whole) {
            titles.emplace(uid, summary);
        }
        return;
    }
    for (icalcomponent* inner = icalcomponent_get_first_component(component, ICAL_ANY_COMPONENT); inner;
         inner = icalcomponent_get_next_component(component, ICAL_ANY_COMPONENT)) {
        Collect(inner, titles);
    }
}

TEST(CalendarsBesideLibical, SameUidsAndTitles)
{
    if (!fs::exists(KESTA_FORMAT_SAMPLES)) {
        GTEST_SKIP() << "no package could be fetched";
    }
    size_t compared = 0;
    for (const auto& file : fs::recursive_directory_iterator(KESTA_FORMAT_SAMPLES)) {
        if (!file.is_regular_file() || file.path().extension() != ".ics") {
            continue;
        }
        std::ifstream in(file.path(), std::ios::binary);
        std::ostringstream contents;
        contents << in.rdbuf();
        const Calendars ours = ParseCalendars(contents.str());
        if (!ours.problems.empty()) {
            continue;  // each has its own way with damage
        }
        const std::unique_ptr<icalcomponent, decltype(&icalcomponent_free)> parsed(
            icalparser_parse_string(contents.str().c_str()), icalcomponent_free);
        if (!parsed) {
            continue;
        }
        Titles theirs;
        Collect(parsed.get(), theirs);
        Titles all;
        std::set<std::string> repeated;
        for (const CalendarEntry& entry : ours.entries) {
            all.emplace(entry.uid, entry.summary);
        }
        for (const auto& title : theirs) {
            if (std::ranges::count(theirs, title.first, &Titles::value_type::first) > 1) {
                repeated.insert(title.first);
            }
        }
        for (const auto& title : theirs) {
            // Where a UID stands twice, its first title is taken.
            if (repeated.contains(title.first)) {
                continue;
            }
            EXPECT_TRUE(all.contains(title)) << file.path() << ": " << title.first << ", " << title.second;
            ++compared;
        }
    }
    if (compared == 0) {
        GTEST_SKIP() << "no package could be fetched";
    }
    RecordProperty("compared", static_cast<int>(compared));
}

}  // namespace
}  // namespace kesta::formats
