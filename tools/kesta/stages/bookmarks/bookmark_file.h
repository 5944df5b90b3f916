// The bookmark file on the phone: the format that browsers import, and a page to tap on for those that do not.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kesta {

struct FileBookmark {
    std::string title, url;
    std::vector<std::string> folders;  // outermost first
    std::optional<int64_t> added;      // seconds since 1970 in UTC
    std::string id;                    // of the element in the page; empty for a URL that stood there before
};

/// UTF-8. The bookmarks keep their order; neighbours in the same folder stand in one.
[[nodiscard]] std::string BookmarkFileText(std::span<const FileBookmark> bookmarks);

}  // namespace kesta
