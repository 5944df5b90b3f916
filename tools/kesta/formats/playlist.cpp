#include "formats/playlist.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "formats/ascii.h"
#include "formats/charset.h"
#include "formats/playlist_builder.h"

namespace kesta::formats {
namespace {

constexpr std::string_view kHeader = "#EXTM3U";
constexpr std::string_view kInfo = "#EXTINF:";
constexpr std::string_view kTitle = "#PLAYLIST:";

/// "123,Artist - Title", where attributes with quoted values may stand before the comma.
void ReadInfo(std::string_view info, PlaylistEntry& entry)
{
    int seconds = 0;
    const std::string_view number = Trimmed(info);
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), seconds);
    entry.seconds = error == std::errc() && seconds >= 0 ? std::optional(seconds) : std::nullopt;

    bool quoted = false;
    for (size_t i = 0; i < info.size(); ++i) {
        if (info[i] == '"') {
            quoted = !quoted;
        }
        if (info[i] != ',' || quoted) {
            continue;
        }
        entry.title = OneLine(info.substr(i + 1));
        return;
    }
    entry.title.clear();
}

class PlaylistReader {
public:
    Playlist run(std::string_view text) &&
    {
        while (!text.empty()) {
            const size_t length = std::min(text.find_first_of("\r\n"), text.size());
            ++line_;
            take(text.substr(0, length));
            text.remove_prefix(length);
            text.remove_prefix(std::min<size_t>(text.starts_with("\r\n") ? 2 : 1, text.size()));
        }
        return std::move(playlist_);
    }

private:
    void take(std::string_view line)
    {
        const std::string_view trimmed = Trimmed(line);
        if (trimmed.empty()) {
            return;
        }
        // A name may begin with blanks, but no player means one by an indented directive.
        if (StartsIgnoringCase(trimmed, "#EXT")) {
            line = trimmed;
        }
        if (line.front() == '#') {
            if (StartsIgnoringCase(line, kInfo)) {
                ReadInfo(line.substr(kInfo.size()), next_);
            }
            if (StartsIgnoringCase(line, kTitle) && playlist_.title.empty()) {
                playlist_.title = OneLine(line.substr(kTitle.size()));
            }
            return;
        }
        if (auto location = ParseLocation(line)) {
            next_.location = std::move(*location);
            next_.line = line_;
            playlist_.entries.push_back(std::move(next_));
        } else {
            playlist_.problems.push_back({line_, "not the name of a file"});
        }
        next_ = {};
    }

    Playlist playlist_;
    PlaylistEntry next_;  // what was said about the entry to come
    size_t line_ = 0;
};

bool IsWritable(const Location& location)
{
    return !location.text.empty() && IsUtf8(location.text) &&
           location.text.find_first_of(std::string_view("\r\n\0", 3)) == std::string::npos;
}

/// A name that would be read as something else gets "./" in front, which is dropped on reading.
std::string LineOf(const Location& location)
{
    if (location.kind != LocationKind::kRelative ||
        (location.text.front() != '#' && ParseLocation(location.text) == location)) {
        return location.text;
    }
    return "./" + location.text;
}

struct PlaylistFormat {
    std::string_view ending;
    Playlist (*read)(std::string_view file);
};

// Players often save a list in several formats. The one that says how it is encoded comes first.
constexpr std::array<PlaylistFormat, 5> kFormats{{
    {".M3U8", [](std::string_view file) { return ParsePlaylist(file, PlaylistEncoding::kUtf8); }},
    {".M3U", [](std::string_view file) { return ParsePlaylist(file, PlaylistEncoding::kByValidity); }},
    {".XSPF", ReadXspf},
    {".PLS", ReadPls},
    {".ASX", ReadAsx},
}};

constexpr std::array<std::string_view, 9> kNotRead{".WPL",  ".ZPL", ".CUE", ".B4S",    ".KPL",
                                                   ".SMIL", ".WAX", ".WVX", ".AIMPPL4"};

const PlaylistFormat* FormatOf(std::string_view fileName)
{
    const std::string name = ToUpper(fileName);
    return std::ranges::find_if(kFormats, [&](const PlaylistFormat& format) { return name.ends_with(format.ending); });
}

}  // namespace

std::string OneLine(std::string_view text)
{
    std::string line = FromUtf8OrLatin1(text);
    std::ranges::replace_if(
        line, [](char c) { return c == '\r' || c == '\n' || c == '\0'; }, ' ');
    return std::string(Trimmed(line));
}

void AddEntry(Playlist& playlist, std::string_view location, bool isUrl, PlaylistEntry entry)
{
    auto parsed = ParseLocation(location);
    if (parsed && isUrl && parsed->kind != LocationKind::kUrl && location.find(':') == std::string_view::npos) {
        parsed = ParseLocation(FromUtf8OrLatin1(HexDecoded(location, '%')));
    }
    if (parsed) {
        entry.location = *std::move(parsed);
        playlist.entries.push_back(std::move(entry));
    } else {
        playlist.problems.push_back({entry.line, "not the name of a file"});
    }
}

bool IsPlaylistName(std::string_view fileName)
{
    return FormatOf(fileName) != kFormats.end();
}

bool IsOtherPlaylistName(std::string_view fileName)
{
    const std::string name = ToUpper(fileName);
    return std::ranges::any_of(kNotRead, [&](std::string_view ending) { return name.ends_with(ending); });
}

size_t RankOfFormat(std::string_view fileName)
{
    return static_cast<size_t>(FormatOf(fileName) - kFormats.begin());
}

Playlist ParsePlaylistFile(std::string_view fileName, std::string_view file)
{
    const auto* format = FormatOf(fileName);
    return format == kFormats.end() ? Playlist{{}, {}, {{0, "not a playlist"}}} : format->read(file);
}

PlaylistEncoding EncodingOf(std::string_view fileName)
{
    return ToUpper(fileName).ends_with(".M3U8") ? PlaylistEncoding::kUtf8 : PlaylistEncoding::kByValidity;
}

Playlist ParsePlaylist(std::string_view file, PlaylistEncoding encoding)
{
    const std::string bytes = WithoutByteOrderMark(file);
    Playlist playlist = PlaylistReader().run(FromUtf8OrLatin1(bytes));
    if (encoding == PlaylistEncoding::kUtf8 && !IsUtf8(bytes)) {
        playlist.problems.insert(playlist.problems.begin(), {0, "not UTF-8, read as Latin-1"});
    }
    return playlist;
}

std::optional<std::string> WritePlaylist(std::string_view title, std::span<const PlaylistEntry> entries)
{
    std::string text = std::string(kHeader) + '\n';
    if (const std::string line = OneLine(title); !line.empty()) {
        text.append(kTitle).append(line) += '\n';
    }
    for (const PlaylistEntry& entry : entries) {
        if (!IsWritable(entry.location)) {
            return {};
        }
        if (entry.seconds || !OneLine(entry.title).empty()) {
            text.append(kInfo)
                .append(std::to_string(entry.seconds.value_or(-1)))
                .append(",")
                .append(OneLine(entry.title)) += '\n';
        }
        text.append(LineOf(entry.location)) += '\n';
    }
    return text;
}

}  // namespace kesta::formats
