// Contacts and calendars as text.
#pragma once

#include <map>
#include <string>

namespace kesta::test {

/// Names by UID.
using Entries = std::map<std::string, std::string>;

[[nodiscard]] inline std::string CardText(const std::string& uid, const std::string& name)
{
    return "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:" + uid + "\r\nFN:" + name + "\r\nEND:VCARD\r\n";
}

[[nodiscard]] inline std::string CardsText(const Entries& entries)
{
    std::string text;
    for (const auto& [uid, name] : entries) {
        text += CardText(uid, name);
    }
    return text;
}

[[nodiscard]] inline std::string EventText(const std::string& uid, const std::string& summary)
{
    return "BEGIN:VEVENT\r\nUID:" + uid +
           "\r\nDTSTAMP:20260101T000000Z\r\nDTSTART:20260201T100000Z\r\nSUMMARY:" + summary + "\r\nEND:VEVENT\r\n";
}

/// Without a name the calendar has none.
[[nodiscard]] inline std::string CalendarText(const std::string& name, const Entries& entries)
{
    std::string text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//EN\r\n";
    if (!name.empty()) {
        text += "X-WR-CALNAME:" + name + "\r\n";
    }
    for (const auto& [uid, summary] : entries) {
        text += EventText(uid, summary);
    }
    return text + "END:VCALENDAR\r\n";
}

}  // namespace kesta::test
