// The components of a calendar file as they stand there, before they are put together by UID. For icalendar.cpp.
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "formats/content_line.h"
#include "formats/icalendar.h"

namespace kesta::formats {

struct Component {
    std::optional<CalendarEntryKind> kind;  // none for a time zone
    std::string uid, recurrenceId, summary;
    std::string timeZoneId;               // of a time zone
    std::set<std::string> usedTimeZones;  // by their TZID
    std::optional<int64_t> lastModified, stamped;
    std::string canonical;  // without DTSTAMP
    std::string_view bytes;
    size_t line = 0;
};

struct RawCalendar {
    std::string name;
    std::string head;  // the lines of the calendar that its entries need to be understood
    std::string_view lineBreak = "\r\n";
    std::vector<Component> entries, timeZones;
};

struct RawCalendars {
    std::vector<RawCalendar> calendars;
    size_t unknownParts = 0;
    Problems problems;
};

/// What is returned points into the file. Entries that stand outside of any calendar get one to themselves.
[[nodiscard]] RawCalendars ReadCalendars(std::string_view file);

}  // namespace kesta::formats
