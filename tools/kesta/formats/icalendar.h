// Calendars: iCalendar (and its predecessor vCalendar), any number of calendars and entries in a file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/problem.h"

namespace kesta::formats {

enum class CalendarEntryKind { kEvent, kTask, kJournal, kFreeBusy };

/// All that a calendar says under one UID: the event or task, and its occurrences that were changed one by one.
struct CalendarEntry {
    CalendarEntryKind kind = CalendarEntryKind::kEvent;
    std::string uid;                         // as the entry says, else derived from its contents
    bool uidDerived = false;                 // then the UID changes with the contents
    std::string calendar;                    // X-WR-CALNAME, empty when the calendar has none
    std::string summary;                     // of the series; of its first occurrence when the series is missing
    std::vector<std::string> recurrenceIds;  // of the changed occurrences, as they are written
    std::optional<int64_t> modified;         // the latest LAST-MODIFIED, else the latest DTSTAMP; seconds since 1970
    std::string bytes;                       // one complete calendar: the parts word for word, and their time zones
    std::string digest;                      // changes with the contents; not with DTSTAMP, PRODID and folding
    size_t line = 0;                         // where it first appears
};

struct Calendars {
    std::vector<CalendarEntry> entries;  // in the order of their first appearance; a UID once per calendar name
    std::vector<std::string> names;      // of the calendars, each once; empty for one without a name
    size_t unknownParts = 0;             // components that are none of these, nor a time zone
    Problems problems;
};

[[nodiscard]] Calendars ParseCalendars(std::string_view file);

}  // namespace kesta::formats
