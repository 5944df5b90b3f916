#include "formats/icalendar_reader.h"

#include <algorithm>
#include <utility>

#include "formats/ascii.h"
#include "formats/timestamp.h"

namespace kesta::formats {
namespace {

std::optional<CalendarEntryKind> KindOf(std::string_view component)
{
    if (component == "VEVENT") {
        return CalendarEntryKind::kEvent;
    }
    if (component == "VTODO") {
        return CalendarEntryKind::kTask;
    }
    if (component == "VJOURNAL") {
        return CalendarEntryKind::kJournal;
    }
    if (component == "VFREEBUSY") {
        return CalendarEntryKind::kFreeBusy;
    }
    return {};
}

std::string_view LineBreakOf(std::string_view line)
{
    if (line.ends_with("\r\n")) {
        return "\r\n";
    }
    return line.ends_with('\r') ? "\r" : "\n";
}

void KeepFirst(std::string& kept, std::string_view found)
{
    if (kept.empty()) {
        kept = Trimmed(found);
    }
}

class CalendarReader {
public:
    explicit CalendarReader(std::string_view file) : file_(file) {}

    RawCalendars run() &&
    {
        ContentLineReader reader(file_);
        while (const auto line = reader.next()) {
            take(*line);
        }
        giveUp(0);
        if (result_.calendars.empty() && result_.problems.empty()) {
            problem(0, "no calendar in the file");
        }
        return std::move(result_);
    }

private:
    struct Open {
        std::string name;
        size_t line;
    };

    void take(const ContentLine& line)
    {
        if (line.name == "BEGIN") {
            takeBegin(line);
        } else if (line.name == "END") {
            takeEnd(line);
        } else {
            takeProperty(line);
        }
    }

    void takeBegin(const ContentLine& line)
    {
        const std::string name = ToUpper(Trimmed(line.value));
        strayText_ = false;
        if (name == "VCALENDAR") {
            giveUp(0);
            openCalendar(line);
        } else if (!inComponent_ && (KindOf(name) || name == "VTIMEZONE")) {
            if (!inCalendar()) {
                openCalendar(line);
            }
            inComponent_ = true;
            componentDepth_ = open_.size();
            component_ = {};
            component_.kind = KindOf(name);
            component_.line = line.number;
            componentBegin_ = line.begin;
        }
        const bool isUnknown = !inComponent_ && name != "VCALENDAR" && open_.size() == 1 && inCalendar();
        result_.unknownParts += isUnknown ? 1u : 0u;
        open_.push_back({name, line.number});
        if (inComponent_) {
            AppendCanonical(component_.canonical, line);
        }
    }

    void takeEnd(const ContentLine& line)
    {
        const std::string name = ToUpper(Trimmed(line.value));
        const auto begin = std::ranges::find(open_.rbegin(), open_.rend(), name, &Open::name);
        if (begin == open_.rend()) {
            problem(line.number, "an end without a beginning");
            inComponent_ = false;
            return;
        }
        giveUp(static_cast<size_t>(open_.rend() - begin));
        if (inComponent_) {
            AppendCanonical(component_.canonical, line);
        }
        open_.pop_back();
        if (inComponent_ && open_.size() == componentDepth_) {
            keepComponent(line);
        }
    }

    void takeProperty(const ContentLine& line)
    {
        if (open_.empty()) {
            if (!strayText_) {
                problem(line.number, "text outside of any calendar");
            }
            strayText_ = true;
        } else if (inComponent_) {
            takeComponentProperty(line);
        } else if (open_.size() == 1 && inCalendar()) {
            takeCalendarProperty(line);
        }
    }

    void takeCalendarProperty(const ContentLine& line)
    {
        RawCalendar& calendar = result_.calendars.back();
        if (line.name == "X-WR-CALNAME") {
            KeepFirst(calendar.name, TextValue(line));
        }
        // A time without a zone is meant in the calendar's own. A name or a method is nothing of an entry's.
        for (const std::string_view needed : {"VERSION", "PRODID", "CALSCALE", "X-WR-TIMEZONE", "TZ", "DAYLIGHT"}) {
            if (line.name == needed) {
                calendar.head += file_.substr(line.begin, line.end - line.begin);
            }
        }
    }

    void takeComponentProperty(const ContentLine& line)
    {
        if (const Parameter* zone = FindParameter(line, "TZID")) {
            component_.usedTimeZones.insert(zone->values.front());
        }
        if (line.name != "DTSTAMP") {
            AppendCanonical(component_.canonical, line);
        }
        if (open_.size() != componentDepth_ + 1) {
            return;  // an alarm's, say
        }
        if (line.name == "UID") {
            KeepFirst(component_.uid, TextValue(line));
        }
        if (line.name == "RECURRENCE-ID") {
            KeepFirst(component_.recurrenceId, line.value);
        }
        if (line.name == "SUMMARY") {
            KeepFirst(component_.summary, TextValue(line));
        }
        if (line.name == "TZID") {
            KeepFirst(component_.timeZoneId, TextValue(line));
        }
        if (line.name == "LAST-MODIFIED") {
            component_.lastModified = ParseTimestamp(line.value);
        }
        if (line.name == "DTSTAMP") {
            component_.stamped = ParseTimestamp(line.value);
        }
    }

    /// Entries may stand by themselves, or in something unknown.
    [[nodiscard]] bool inCalendar() const { return !open_.empty() && open_.front().name == "VCALENDAR"; }

    void openCalendar(const ContentLine& line)
    {
        RawCalendar& calendar = result_.calendars.emplace_back();
        calendar.lineBreak = LineBreakOf(file_.substr(line.begin, line.end - line.begin));
    }

    void keepComponent(const ContentLine& end)
    {
        inComponent_ = false;
        component_.bytes = file_.substr(componentBegin_, end.end - componentBegin_);
        RawCalendar& calendar = result_.calendars.back();
        (component_.kind ? calendar.entries : calendar.timeZones).push_back(std::move(component_));
    }

    /// Closes what was begun and never ended, down to so many levels. What it belongs to is not kept.
    void giveUp(size_t levels)
    {
        if (open_.size() <= levels) {
            return;
        }
        problem(open_[levels].line, open_[levels].name + " has no end");
        open_.resize(levels);
        inComponent_ = false;
    }

    void problem(size_t line, std::string text) { result_.problems.push_back({line, std::move(text)}); }

    std::string_view file_;
    RawCalendars result_;
    std::vector<Open> open_;
    bool strayText_ = false;
    bool inComponent_ = false;
    size_t componentDepth_ = 0;
    size_t componentBegin_ = 0;
    Component component_;
};

}  // namespace

RawCalendars ReadCalendars(std::string_view file)
{
    return CalendarReader(file).run();
}

}  // namespace kesta::formats
