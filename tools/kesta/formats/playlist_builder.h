// What all readers of playlists do with an entry. For formats/playlist_*.cpp.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "formats/playlist.h"

namespace kesta::formats {

/// Without line breaks and zeros, and without blanks around it.
[[nodiscard]] std::string OneLine(std::string_view text);

/// Adds the entry, or a problem where the text is not a location. Formats that are made of URLs escape characters in
/// relative ones as well, which isUrl undoes.
void AddEntry(Playlist& playlist, std::string_view location, bool isUrl, PlaylistEntry entry);

/// One reader for each format.
[[nodiscard]] Playlist ReadPls(std::string_view file);
[[nodiscard]] Playlist ReadXspf(std::string_view file);
[[nodiscard]] Playlist ReadAsx(std::string_view file);

}  // namespace kesta::formats
