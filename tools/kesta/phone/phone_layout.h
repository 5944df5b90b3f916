// What lies where on the phone, besides the folders of media.
#pragma once

#include <string_view>

namespace kesta {

inline constexpr std::string_view kPlaylistFolder = "Playlists";
inline constexpr std::string_view kPlaylistMediaFolder = "Playlists/Media";  // members that media sync does not carry
inline constexpr std::string_view kBookmarkFolder = "Bookmarks";

}  // namespace kesta
