// What the readers of bookmarks in JSON have in common. For formats/bookmarks_*.cpp.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "formats/bookmarks.h"

namespace kesta::formats {

using BookmarkJson = nlohmann::ordered_json;

// Far beyond what a person nests, far within what the stack holds.
inline constexpr size_t kDeepestBookmarkFolder = 256;

/// The text of a member; empty when it is missing or something else.
[[nodiscard]] std::string BookmarkTextAt(const BookmarkJson& node, const char* name);

[[nodiscard]] bool IsFirefoxBookmarks(const BookmarkJson& document);
void ReadFirefoxBookmarks(const BookmarkJson& document, Bookmarks& result);

}  // namespace kesta::formats
