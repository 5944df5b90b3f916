#include "stages/pim/pim_text.h"

#include <map>
#include <string_view>
#include <utility>

#include "formats/content_line.h"
#include "formats/icalendar_reader.h"

namespace kesta {
namespace {

constexpr std::string_view kLineBreak = "\r\n";

void AppendWhole(std::string& text, std::string_view part)
{
    text += part;
    if (!part.empty() && part.back() != '\n' && part.back() != '\r') {
        text += kLineBreak;
    }
}

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
    Head head;
    std::map<std::string, std::string, std::less<>> timeZones;  // by TZID
    std::string zoneText, entryText;

    [[nodiscard]] bool takes(const Head& otherHead, const formats::RawCalendar& other) const
    {
        if (head.canonical != otherHead.canonical) {
            return false;
        }
        for (const formats::Component& zone : other.timeZones) {
            const auto known = timeZones.find(zone.timeZoneId);
            if (known != timeZones.end() && known->second != zone.canonical) {
                return false;
            }
        }
        return true;
    }

    void add(const formats::RawCalendar& other)
    {
        for (const formats::Component& zone : other.timeZones) {
            if (timeZones.emplace(zone.timeZoneId, zone.canonical).second) {
                AppendWhole(zoneText, zone.bytes);
            }
        }
        for (const formats::Component& entry : other.entries) {
            AppendWhole(entryText, entry.bytes);
        }
    }

    void appendTo(std::string& text, const std::string& name) const
    {
        AppendWhole(text, "BEGIN:VCALENDAR");
        AppendWhole(text, "PRODID:-//KESTA//KESTA//EN");
        text += head.text;
        AppendWhole(text, "X-WR-CALNAME:" + Escaped(name));
        text += zoneText + entryText;
        AppendWhole(text, "END:VCALENDAR");
    }
};

std::string CalendarText(const std::string& name, const std::vector<PimEntry>& entries)
{
    std::vector<Calendar> calendars;
    std::string unknown;  // contents that another program left in the database
    for (const PimEntry& entry : entries) {
        const formats::RawCalendars read = formats::ReadCalendars(entry.bytes);
        if (!read.problems.empty()) {
            AppendWhole(unknown, entry.bytes);
            continue;
        }
        for (const formats::RawCalendar& part : read.calendars) {
            Head head(part.head);
            auto place = calendars.begin();
            while (place != calendars.end() && !place->takes(head, part)) {
                ++place;
            }
            if (place == calendars.end()) {
                place = calendars.insert(calendars.end(), Calendar{std::move(head), {}, {}, {}});
            }
            place->add(part);
        }
    }
    std::string text;
    for (const Calendar& calendar : calendars) {
        calendar.appendTo(text, name);
    }
    return text + unknown;
}

}  // namespace

std::string PhoneFileText(PimKind kind, const std::string& name, const std::vector<PimEntry>& entries)
{
    if (kind == PimKind::kCalendar) {
        return CalendarText(name, entries);
    }
    std::string text;
    for (const PimEntry& entry : entries) {
        AppendWhole(text, entry.bytes);
    }
    return text;
}

}  // namespace kesta
