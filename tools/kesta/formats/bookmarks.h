// Bookmark files: the HTML that browsers export, and the JSON of Chromium and of Firefox.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/problem.h"

namespace kesta::formats {

enum class LinkKind {
    kWeb,     // http, https, ftp
    kScript,  // javascript: a program for the browser, not a place
    kPlace,   // place: a search in the browser's own database
    kData,    // data: the page itself
    kOther,   // file, mailto, chrome, about, ...
};

struct Bookmark {
    std::string title;  // blanks collapsed; may be empty
    std::string url;
    LinkKind kind = LinkKind::kWeb;
    std::vector<std::string> folders;  // outermost first
    std::optional<int64_t> added;      // seconds since 1970 in UTC

    bool operator==(const Bookmark&) const = default;
};

struct Bookmarks {
    std::vector<Bookmark> bookmarks;  // in the file's order
    Problems problems;
};

/// Either format; the contents tell which.
[[nodiscard]] Bookmarks ParseBookmarks(std::string_view file);
[[nodiscard]] Bookmarks ParseBookmarksHtml(std::string_view file);
[[nodiscard]] Bookmarks ParseBookmarksJson(std::string_view file);

[[nodiscard]] LinkKind KindOfLink(std::string_view url);
/// Without blanks around it, and without line breaks, tabs and zeros, as browsers read addresses.
[[nodiscard]] std::string CleanUrl(std::string_view url);
/// Runs of blanks, line breaks and zeros become one blank.
[[nodiscard]] std::string CleanTitle(std::string_view title);

}  // namespace kesta::formats
