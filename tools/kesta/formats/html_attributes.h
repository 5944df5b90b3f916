// Keeps tags with tens of thousands of attributes from the HTML parser. For bookmarks_html.cpp.
#pragma once

#include <cstddef>
#include <string>

namespace kesta::formats {

/// No browser writes a tenth as many into one tag.
inline constexpr size_t kMostAttributes = 64;

/// The document without what a tag has beyond its first attributes: the parser compares each with all before it. Those
/// that bookmarks are made of stay, wherever they stand.
[[nodiscard]] std::string WithFewAttributes(std::string html);

}  // namespace kesta::formats
