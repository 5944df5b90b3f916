#include "fuzz/properties.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "formats/bookmarks.h"
#include "formats/charset.h"
#include "formats/cover.h"
#include "formats/icalendar.h"
#include "formats/playlist.h"
#include "formats/vcard.h"

namespace kesta::test {
namespace {

using namespace kesta::formats;

void Require(bool holds, const char* property, std::string_view input)
{
    if (holds) {
        return;
    }
    std::fprintf(stderr, "Does not hold: %s, for these %zu bytes:\n%.*s\n", property, input.size(),
                 static_cast<int>(input.size()), input.data());
    std::abort();
}

bool IsText(std::string_view text)
{
    return IsUtf8(text) && text.find('\0') == std::string_view::npos;
}

void CheckList(const Playlist& playlist, std::string_view file)
{
    for (const PlaylistEntry& entry : playlist.entries) {
        Require(IsText(entry.location.text) && IsText(entry.title), "locations and titles are text", file);
    }
    const auto written = WritePlaylist(playlist.title, playlist.entries);
    const bool named = written.has_value();
    if (!named) {
        // Only a URL with an escaped line break names a file that no playlist can hold.
        bool hasBreak = false;
        for (const PlaylistEntry& entry : playlist.entries) {
            hasBreak = hasBreak || entry.location.text.find_first_of("\r\n") != std::string::npos;
        }
        Require(hasBreak, "what was read can be written", file);
        return;
    }
    const Playlist again = ParsePlaylist(*written, PlaylistEncoding::kUtf8);
    Require(again.problems.empty() && again.title == playlist.title, "what was written is read back", file);
    Require(again.entries.size() == playlist.entries.size(), "no entry is lost by writing", file);
    for (size_t i = 0; i < again.entries.size(); ++i) {
        PlaylistEntry expected = playlist.entries[i];
        expected.line = again.entries[i].line;
        Require(again.entries[i] == expected, "an entry is read back as it was written", file);
    }
}

void CheckPlaylist(std::string_view file)
{
    CheckList(ParsePlaylist(file, PlaylistEncoding::kByValidity), file);
}

void CheckPls(std::string_view file)
{
    CheckList(ParsePlaylistFile("a.pls", file), file);
}

void CheckXspf(std::string_view file)
{
    CheckList(ParsePlaylistFile("a.xspf", file), file);
}

void CheckAsx(std::string_view file)
{
    CheckList(ParsePlaylistFile("a.asx", file), file);
}

void CheckBookmarks(std::string_view file)
{
    for (const Bookmark& bookmark : ParseBookmarks(file).bookmarks) {
        Require(!bookmark.url.empty() && IsText(bookmark.url) && IsText(bookmark.title), "addresses are text", file);
        for (const std::string& folder : bookmark.folders) {
            Require(IsText(folder), "folders are text", file);
        }
        Require(bookmark.kind == KindOfLink(bookmark.url), "the kind is the address's", file);
    }
}

void CheckCards(std::string_view file)
{
    const std::string text = WithoutByteOrderMark(file);
    const Cards cards = ParseCards(file);
    Require(!cards.cards.empty() || !cards.problems.empty(), "nothing found is a problem", file);
    for (const Card& card : cards.cards) {
        Require(!card.uid.empty() && IsText(card.uid) && IsText(card.name), "UIDs and names are text", file);
        Require(text.find(card.bytes) != std::string::npos, "a card is kept word for word", file);
        const Cards again = ParseCards(card.bytes);
        Require(again.problems.empty() && again.cards.size() == 1, "a card stands by itself", file);
        Require(again.cards[0].digest == card.digest && again.cards[0].name == card.name, "a card stays the same",
                file);
        Require(card.uidDerived || again.cards[0].uid == card.uid, "a card keeps its UID", file);
    }
}

void CheckCalendars(std::string_view file)
{
    const Calendars calendars = ParseCalendars(file);
    Require(!calendars.names.empty() || !calendars.problems.empty(), "nothing found is a problem", file);
    for (const CalendarEntry& entry : calendars.entries) {
        Require(!entry.uid.empty() && IsText(entry.uid) && IsText(entry.summary), "UIDs and titles are text", file);
        const Calendars again = ParseCalendars(entry.bytes);
        Require(again.problems.empty() && again.entries.size() == 1, "an entry stands by itself", file);
        Require(again.entries[0].digest == entry.digest, "an entry stays the same", file);
        Require(again.entries[0].modified == entry.modified, "an entry keeps its time", file);
        Require(again.entries[0].recurrenceIds == entry.recurrenceIds, "an entry keeps its occurrences", file);
        Require(entry.uidDerived || again.entries[0].uid == entry.uid, "an entry keeps its UID", file);
        Require(again.entries[0].bytes == entry.bytes, "a complete calendar is complete", file);
    }
}

void CheckCover(std::string_view file)
{
    constexpr size_t kMost = 500;
    if (const auto cover = FindCover(file, kMost)) {
        Require(cover->bytes.size() <= kMost, "a cover is no larger than asked for", file);
        Require(file.find(cover->bytes) != std::string_view::npos, "a cover is a part of its file", file);
        Require(FindCover(cover->bytes, kMost).has_value(), "a cover is a picture", file);
    }
}

}  // namespace

std::span<const Format> Formats()
{
    static const std::vector<Format> formats{
        {"playlist",
         CheckPlaylist,
         {"\n", "\r", "#EXTINF:1,", "file:///", "C:\\", "\\\\", "//", "./", "%0A", "#", " ", "\xFF\xFE"}},
        {"pls", CheckPls, {"\n", "File1=", "File2=a.mp3\n", "Title1=", "Length1=-1", "[playlist]", "=", "\xFF\xFE"}},
        {"xspf",
         CheckXspf,
         {"<track>", "</track>", "<location>", "</location>", "<title/>", "<![CDATA[", "]]>", "&#0;", "&amp;", "<!--",
          "%00", "%0A"}},
        {"asx", CheckAsx, {"<ENTRY>", "</entry>", "<ref href=", "\"", "'", "/>", "&", "<asx", "<", ">"}},
        {"bookmarks",
         CheckBookmarks,
         {"<DL>", "</DL>", "<DT>", "<A HREF=x>", "</A>", "<H3>", "</H3>", "&#0;", "{", "}", "[", "\"", "<template>",
          "<svg>"}},
        {"cards",
         CheckCards,
         {"\n", "\n ", "=\n", "BEGIN:VCARD\n", "END:VCARD\n", ";", ":", "\"", "AGENT:\n", "ENCODING=QUOTED-PRINTABLE",
          "=00", "UID:\n", "CHARSET=SHIFT_JIS"}},
        {"calendars",
         CheckCalendars,
         {"\n", "\n ", "BEGIN:VEVENT\n", "END:VEVENT\n", "BEGIN:VCALENDAR\n", "END:VCALENDAR\n", "BEGIN:VTIMEZONE\n",
          "BEGIN:VODD\n", ";TZID=", "UID:1@x\n", "VERSION:1.0\n", "X-WR-CALNAME:x\n", "=\n"}},
        {"cover",
         CheckCover,
         {"ID3", "APIC", "PIC", "fLaC", "ftyp", "moov", "covr", "data", "\xFF\xD8\xFF", "Exif", "II", "MM",
          "\x89PNG\r\n\x1A\n", "BM", "GIF8"}}};
    return formats;
}

const Format& FormatNamed(std::string_view name)
{
    for (const Format& format : Formats()) {
        if (format.name == name) {
            return format;
        }
    }
    std::fprintf(stderr, "There is no format %.*s.\n", static_cast<int>(name.size()), name.data());
    std::abort();
}

}  // namespace kesta::test
