#include "stages/pim/pim_text.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

#include "formats/content_line.h"
#include "formats/icalendar_reader.h"
#include "formats/utf8_lines.h"

namespace kesta {
namespace {

using formats::AppendLines;

std::string Escaped(std::string_view value)
{
    std::string text;
    for (const char c : value) {
        if (c == '\\' || c == ',' || c == ';') {
            text += '\\';
        }
        text += c;
    }
    return text;
}

// The lines of a calendar that its entries need to be understood. Who wrote it is not among them: a new version of that
// program must not tear the calendar apart.
struct Head {
    std::string text, canonical;

    explicit Head(std::string_view lines)
    {
        formats::ContentLineReader reader(lines);
        while (const auto line = reader.next()) {
            if (line->name == "PRODID" || line->is("CALSCALE", "GREGORIAN")) {
                continue;
            }
            text += lines.substr(line->begin, line->end - line->begin);
            formats::AppendCanonical(canonical, *line);
        }
    }
};

// A calendar in the making.
struct Calendar {
    std::string head;
    std::map<std::string, std::string, std::less<>> timeZones;  // by TZID
    std::string zoneText, entryText;

    [[nodiscard]] bool takes(const formats::RawCalendar& other) const
    {
        return std::all_of(other.timeZones.begin(), other.timeZones.end(), [&](const formats::Component& zone) {
            const auto known = timeZones.find(zone.timeZoneId);
            return known == timeZones.end() || known->second == zone.canonical;
        });
    }

    void add(const formats::RawCalendar& other)
    {
        for (const formats::Component& zone : other.timeZones) {
            if (timeZones.emplace(zone.timeZoneId, zone.canonical).second) {
                AppendLines(zoneText, zone.bytes);
            }
        }
        for (const formats::Component& entry : other.entries) {
            AppendLines(entryText, entry.bytes);
        }
    }

    void appendTo(std::string& text, const std::string& name) const
    {
        AppendLines(text, "BEGIN:VCALENDAR");
        AppendLines(text, "PRODID:-//KESTA//KESTA//EN");
        text += head;
        AppendLines(text, "X-WR-CALNAME:" + Escaped(name));
        text += zoneText + entryText;
        AppendLines(text, "END:VCALENDAR");
    }
};

// Puts entries into as few calendars as their heads and time zones allow: each into the first one that takes it.
class CalendarMerger {
public:
    void add(const formats::RawCalendar& part)
    {
        Head head(part.head);
        Alike& alike = alike_[head.canonical];
        // Zones are only ever added to a calendar: what it has taken or refused once it takes or refuses again.
        const auto [known, isNew] = alike.calendarOfZones.try_emplace(zonesOf(part), 0);
        if (isNew) {
            known->second = find(alike, part);
        }
        if (known->second == calendars_.size()) {
            alike.calendars.push_back(calendars_.size());
            calendars_.push_back({std::move(head.text), {}, {}, {}});
        }
        calendars_[known->second].add(part);
    }

    [[nodiscard]] const std::vector<Calendar>& calendars() const { return calendars_; }

private:
    // So many calendars of one head are tried for zones that are new. No calendar that anybody keeps contradicts itself
    // that often, and trying all would take a time that grows with the square of their number.
    static constexpr size_t kMostTried = 64;

    struct Alike {
        std::vector<size_t> calendars;
        std::unordered_map<std::string, size_t> calendarOfZones;
    };

    [[nodiscard]] size_t find(const Alike& alike, const formats::RawCalendar& part) const
    {
        const auto end = alike.calendars.begin() + static_cast<ptrdiff_t>(std::min(kMostTried, alike.calendars.size()));
        const auto found = std::find_if(alike.calendars.begin(), end,
                                        [&](size_t calendar) { return calendars_[calendar].takes(part); });
        return found == end ? calendars_.size() : *found;
    }

    [[nodiscard]] static std::string zonesOf(const formats::RawCalendar& part)
    {
        std::string zones;
        for (const formats::Component& zone : part.timeZones) {
            zones += zone.timeZoneId + '\0' + zone.canonical + '\0';
        }
        return zones;
    }

    std::vector<Calendar> calendars_;
    std::unordered_map<std::string, Alike> alike_;  // by the heads' canonical forms
};

std::string CalendarText(const std::string& name, std::span<const std::string_view> entries)
{
    CalendarMerger merger;
    std::string unknown;  // contents that another program left in the database
    for (const std::string_view entry : entries) {
        const std::string bytes = formats::WithUtf8Lines(entry);
        const formats::RawCalendars read = formats::ReadCalendars(bytes);
        if (!read.problems.empty()) {
            AppendLines(unknown, bytes);
            continue;
        }
        for (const formats::RawCalendar& part : read.calendars) {
            merger.add(part);
        }
    }
    std::string text;
    for (const Calendar& calendar : merger.calendars()) {
        calendar.appendTo(text, name);
    }
    return text + unknown;
}

}  // namespace

std::string PhoneFileText(PimKind kind, const std::string& name, std::span<const std::string_view> entries)
{
    if (kind == PimKind::kCalendar) {
        return CalendarText(name, entries);
    }
    std::string text;
    for (const std::string_view entry : entries) {
        AppendLines(text, formats::WithUtf8Lines(entry));
    }
    return text;
}

}  // namespace kesta
