// Playlists: .m3u, .m3u8, .pls, .xspf and .asx, read as players write them, and written for the phone as .m3u8.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "formats/problem.h"

namespace kesta::formats {

enum class LocationKind {
    kRelative,  // "Rock/a.mp3", to the playlist's folder
    kAbsolute,  // "/home/me/a.mp3"
    kDrive,     // "C:/Music/a.mp3"
    kServer,    // "//server/share/a.mp3"
    kUrl,       // "http://...": as it stands, there is no file to it
};

/// Where an entry lies: UTF-8, with slashes for separators, without "./" in front. ".." stays.
struct Location {
    LocationKind kind = LocationKind::kRelative;
    std::string text;

    bool operator==(const Location&) const = default;
};

struct PlaylistEntry {
    Location location;
    std::string title;           // of #EXTINF, empty without
    std::optional<int> seconds;  // of #EXTINF; std::nullopt when it is negative, as for streams
    size_t line = 0;

    bool operator==(const PlaylistEntry&) const = default;
};

struct Playlist {
    std::string title;                   // #PLAYLIST, empty without
    std::vector<PlaylistEntry> entries;  // in order; what stands there twice is here twice
    Problems problems;                   // an entry that cannot be a location
};

enum class PlaylistEncoding {
    kByValidity,  // .m3u: UTF-8 when it is valid UTF-8, else Latin-1
    kUtf8,        // .m3u8; invalid bytes are reported and read as Latin-1
};

/// By the file's name, in any case.
[[nodiscard]] bool IsPlaylistName(std::string_view fileName);
/// A list of a format that is not read.
[[nodiscard]] bool IsOtherPlaylistName(std::string_view fileName);
/// Which of the lists of one name is read before the others: the smaller, the earlier.
[[nodiscard]] size_t RankOfFormat(std::string_view fileName);
[[nodiscard]] PlaylistEncoding EncodingOf(std::string_view fileName);

/// As the name says.
[[nodiscard]] Playlist ParsePlaylistFile(std::string_view fileName, std::string_view file);

[[nodiscard]] Playlist ParsePlaylist(std::string_view file, PlaylistEncoding encoding);

/// One line's location. Backslashes separate where a drive or a server shows that the path comes from Windows, and
/// where there is no slash beside them. std::nullopt if the line cannot be a location.
[[nodiscard]] std::optional<Location> ParseLocation(std::string_view line);

/// The path to open for an entry: relative ones behind the folder, all others as they are. Nothing for a URL.
[[nodiscard]] std::optional<std::string> PathOf(const Location& location, std::string_view folder);

/// UTF-8 without a byte order mark, with #EXTM3U and #EXTINF, one line feed a line; what ParsePlaylist reads back to
/// the same entries. std::nullopt if a location holds a line break or a zero or is not UTF-8. Line breaks in titles
/// become blanks.
[[nodiscard]] std::optional<std::string> WritePlaylist(std::string_view title, std::span<const PlaylistEntry> entries);

}  // namespace kesta::formats
