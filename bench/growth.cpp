// Reads files of two sizes for callgrind, which counts the instructions: the work is to grow with a file and not with
// its square, whatever the file consists of. Each count ends with a dump that bears its name: "<case> <size>".
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "formats/bookmarks.h"
#include "stages/pim/pim_phone_plan.h"
#include "stages/pim/pim_source.h"
#include "stages/pim/pim_store_plan.h"
#include "stages/pim/pim_text.h"

namespace kesta::bench {
namespace {

constexpr size_t kSizes[] = {2'000, 8'000};

/// Stops the program when a file was not read: the instructions would mean nothing.
void Require(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "Failed: %s\n", what);
        std::exit(1);
    }
}

void Count(const char* name, size_t size, const std::function<void()>& run)
{
    const std::string title = std::string(name) + " " + std::to_string(size);  // outlives the request that names it
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    CALLGRIND_TOGGLE_COLLECT;
    run();
    CALLGRIND_TOGGLE_COLLECT;
    CALLGRIND_DUMP_STATS_AT(title.c_str());
    CALLGRIND_STOP_INSTRUMENTATION;
}

void CountAttributes(size_t size)
{
    std::string html = "<!DOCTYPE NETSCAPE-Bookmark-file-1><DL><DT><A";
    for (size_t i = 0; i < size; ++i) {
        html += " attribute" + std::to_string(i) + "=x";
    }
    html += " HREF=http://a/>A</A></DL>";
    Count("attributes-of-a-tag", size,
          [&] { Require(formats::ParseBookmarks(html).bookmarks.size() == 1, "reading a tag"); });
}

class EmptyPhone : public Phone {
public:
    [[nodiscard]] PhoneFile find(const std::string& /*phonePath*/) const override { return {}; }
    [[nodiscard]] std::vector<std::string> names(const std::string& /*folder*/) const override { return {}; }
    [[nodiscard]] bool holds(const std::string& /*phonePath*/, const std::string& /*text*/) const override
    {
        return false;
    }
    [[nodiscard]] bool holdsFile(const std::string& /*phonePath*/, const std::string& /*pcPath*/) const override
    {
        return false;
    }
};

std::string Event(size_t uid, const char* line)
{
    return "BEGIN:VEVENT\r\nUID:" + std::to_string(uid) + "\r\n" + line + "END:VEVENT\r\n";
}

std::string Calendar(const std::string& lines)
{
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + lines + "END:VCALENDAR\r\n";
}

void CountCalendars(size_t size)
{
    std::string file;
    for (size_t i = 0; i < size; ++i) {
        file += Calendar("X-WR-CALNAME:calendar " + std::to_string(i) + "\r\n" + Event(i, ""));
    }
    Count("calendars-of-a-file", size, [&] {
        const std::vector<PimSource> sources{MakePimSource(PimKind::kCalendar, "/home.ics", file, std::nullopt)};
        DeletionGuard guard(false);
        const std::vector<StoredPimFolder> known;
        const PimStorePlans store = PlanPimStore({PimKind::kCalendar, sources, known, guard, size});
        const std::vector<PimLogRow> log;
        const std::set<std::string> owned;
        LeftFiles left;
        PhoneChanges changes(left, false, {}, {});
        const PimPhonePlans phone =
            PlanPimPhone({PimKind::kCalendar, sources, store, log, owned, guard, changes}, EmptyPhone());
        Require(phone.files.size() == size, "planning calendars");
    });
}

void CountTimeZones(size_t size)
{
    std::vector<std::string> entries;
    for (size_t i = 0; i < size; ++i) {
        entries.push_back(Calendar("BEGIN:VTIMEZONE\r\nTZID:X\r\nTZNAME:" + std::to_string(i) +
                                   "\r\nEND:VTIMEZONE\r\n" + Event(i, "DTSTART;TZID=X:20260101T100000\r\n")));
    }
    const std::vector<std::string_view> contents(entries.begin(), entries.end());
    Count("time-zones-of-a-file", size,
          [&] { Require(!PhoneFileText(PimKind::kCalendar, "home", contents).empty(), "writing a calendar"); });
}

}  // namespace
}  // namespace kesta::bench

int main()
{
    using namespace kesta::bench;
    if (RUNNING_ON_VALGRIND == 0) {
        std::fprintf(stderr, "usage: bench/growth.sh [BUILD-FOLDER]\n");
        return 2;
    }
    for (const size_t size : kSizes) {
        CountAttributes(size);
        CountCalendars(size);
        CountTimeZones(size);
    }
    return 0;
}
