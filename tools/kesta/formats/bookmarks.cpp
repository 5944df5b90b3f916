#include "formats/bookmarks.h"

#include <array>
#include <utility>

#include "formats/ascii.h"
#include "formats/charset.h"

namespace kesta::formats {

LinkKind KindOfLink(std::string_view url)
{
    constexpr std::array kSchemes = {std::pair{std::string_view("http:"), LinkKind::kWeb},
                                     std::pair{std::string_view("https:"), LinkKind::kWeb},
                                     std::pair{std::string_view("ftp:"), LinkKind::kWeb},
                                     std::pair{std::string_view("place:"), LinkKind::kPlace},
                                     std::pair{std::string_view("javascript:"), LinkKind::kScript},
                                     std::pair{std::string_view("data:"), LinkKind::kData}};
    for (const auto& [scheme, kind] : kSchemes) {
        if (StartsIgnoringCase(url, scheme)) {
            return kind;
        }
    }
    return LinkKind::kOther;
}

std::string CleanUrl(std::string_view url)
{
    std::string clean;
    for (const char c : Trimmed(url)) {
        if (c != '\t' && c != '\r' && c != '\n' && c != '\0') {
            clean += c;
        }
    }
    return clean;
}

std::string CleanTitle(std::string_view title)
{
    std::string clean;
    bool blank = false;
    for (const char c : Trimmed(title)) {
        const bool isBlank = IsSpace(c) || c == '\0';
        if (blank && !isBlank && !clean.empty()) {
            clean += ' ';
        }
        blank = isBlank;
        if (!blank) {
            clean += c;
        }
    }
    return clean;
}

Bookmarks ParseBookmarks(std::string_view file)
{
    if (file.starts_with("mozLz40")) {
        return {{}, {{0, "a compressed backup of Firefox: export the bookmarks as JSON or HTML"}}};
    }
    const std::string text = WithoutByteOrderMark(file);
    return Trimmed(text).starts_with('{') ? ParseBookmarksJson(text) : ParseBookmarksHtml(text);
}

}  // namespace kesta::formats
