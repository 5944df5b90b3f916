#include "formats/icalendar.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "formats/charset.h"
#include "formats/digest.h"
#include "formats/entry_uids.h"
#include "formats/icalendar_reader.h"

namespace kesta::formats {
namespace {

/// What belongs to one UID.
struct Series {
    const RawCalendar* calendar;  // of the first part
    std::vector<const Component*> parts;
    std::vector<const Component*> timeZones;  // each TZID once
    std::set<std::string> timeZoneIds;
    CalendarEntry entry;
};

/// The time zones of a calendar by their TZID, the first one of each.
using TimeZones = std::map<std::string_view, const Component*>;

TimeZones TimeZonesOf(const RawCalendar& calendar)
{
    TimeZones zones;
    for (const Component& zone : calendar.timeZones) {
        zones.emplace(zone.timeZoneId, &zone);
    }
    return zones;
}

void AddPart(Series& series, const TimeZones& zones, const Component& part)
{
    series.parts.push_back(&part);
    const auto known = static_cast<ptrdiff_t>(series.timeZones.size());
    for (const std::string& id : part.usedTimeZones) {
        if (const auto zone = zones.find(id); zone != zones.end() && series.timeZoneIds.insert(id).second) {
            series.timeZones.push_back(zone->second);
        }
    }
    std::sort(series.timeZones.begin() + known, series.timeZones.end());  // in the order of the file
}

/// The parts with a calendar of their own around them.
std::string CompleteCalendar(const Series& series)
{
    const std::string_view lineBreak = series.calendar->lineBreak;
    const std::string& head = series.calendar->head;
    std::string bytes;
    const auto line = [&](std::string_view text) { bytes.append(text).append(lineBreak); };
    line("BEGIN:VCALENDAR");
    // A calendar is not valid without these two.
    if (head.find("VERSION") == std::string::npos) {
        line("VERSION:2.0");
    }
    if (head.find("PRODID") == std::string::npos) {
        line("PRODID:-//KESTA//KESTA//EN");
    }
    bytes += head;
    for (const Component* zone : series.timeZones) {
        AppendLines(bytes, zone->bytes, lineBreak);
    }
    for (const Component* part : series.parts) {
        AppendLines(bytes, part->bytes, lineBreak);
    }
    line("END:VCALENDAR");
    return bytes;
}

std::string DigestOf(const Series& series)
{
    std::string canonical;
    for (const Component* zone : series.timeZones) {
        canonical += zone->canonical;
    }
    for (const Component* part : series.parts) {
        canonical += part->canonical;
    }
    return Digest(canonical);
}

std::optional<int64_t> LatestChange(const Series& series)
{
    std::optional<int64_t> modified, stamped;
    for (const Component* part : series.parts) {
        modified = std::max(modified, part->lastModified);
        stamped = std::max(stamped, part->stamped);
    }
    return modified ? modified : stamped;
}

CalendarEntry Finish(Series&& series, EntryUids& uids)
{
    CalendarEntry& entry = series.entry;
    const auto isWhole = [](const Component* part) { return part->recurrenceId.empty(); };
    const auto whole = std::ranges::find_if(series.parts, isWhole);
    const Component& main = whole == series.parts.end() ? *series.parts.front() : **whole;
    entry.kind = main.kind.value_or(CalendarEntryKind::kEvent);
    entry.summary = main.summary;
    entry.calendar = series.calendar->name;
    entry.line = series.parts.front()->line;
    for (const Component* part : series.parts) {
        if (!isWhole(part)) {
            entry.recurrenceIds.push_back(part->recurrenceId);
        }
    }
    entry.modified = LatestChange(series);
    entry.bytes = CompleteCalendar(series);
    entry.digest = DigestOf(series);
    entry.uid = main.uid;
    entry.uidDerived = entry.uid.empty();
    if (entry.uidDerived) {
        entry.uid = uids.derive(entry.digest);
    }
    return std::move(entry);
}

}  // namespace

Calendars ParseCalendars(std::string_view file)
{
    const std::string text = WithoutByteOrderMark(file);
    RawCalendars raw = ReadCalendars(text);

    std::vector<Series> all;
    std::map<std::pair<std::string, std::string>, size_t> indexes;  // by calendar name and UID
    std::set<std::string> names;
    Calendars result;
    result.unknownParts = raw.unknownParts;
    for (const RawCalendar& calendar : raw.calendars) {
        if (names.insert(calendar.name).second) {
            result.names.push_back(calendar.name);
        }
        const TimeZones zones = TimeZonesOf(calendar);
        for (const Component& part : calendar.entries) {
            // Without a UID nothing says what belongs together.
            const bool known = !part.uid.empty() && indexes.contains({calendar.name, part.uid});
            const size_t index = known ? indexes[{calendar.name, part.uid}] : all.size();
            if (!known) {
                all.push_back({&calendar, {}, {}, {}, {}});
                if (!part.uid.empty()) {
                    indexes[{calendar.name, part.uid}] = index;
                }
            }
            AddPart(all[index], zones, part);
        }
    }
    EntryUids uids;
    for (Series& series : all) {
        result.entries.push_back(Finish(std::move(series), uids));
    }
    result.problems = std::move(raw.problems);
    return result;
}

}  // namespace kesta::formats
