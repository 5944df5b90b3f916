#include "stages/bookmarks/bookmark_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace kesta {
namespace {

std::string Escaped(std::string_view text)
{
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                // HTML has no way to write control characters.
                if (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F) {
                    escaped += c;
                }
        }
    }
    return escaped;
}

class Writer {
public:
    std::string run(std::span<const FileBookmark> bookmarks) &&
    {
        text_ =
            "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n"
            "<META HTTP-EQUIV=\"Content-Type\" CONTENT=\"text/html; charset=UTF-8\">\n"
            "<META NAME=\"viewport\" CONTENT=\"width=device-width, initial-scale=1\">\n"
            "<TITLE>Bookmarks</TITLE>\n"
            "<H1>Bookmarks</H1>\n"
            "<DL><p>\n";
        for (const FileBookmark& bookmark : bookmarks) {
            enter(bookmark.folders);
            indent();
            text_ += fmt::format("<DT><A HREF=\"{}\"", Escaped(bookmark.url));
            if (bookmark.added) {
                text_ += fmt::format(" ADD_DATE=\"{}\"", *bookmark.added);
            }
            if (!bookmark.id.empty()) {
                text_ += fmt::format(" ID=\"{}\"", Escaped(bookmark.id));
            }
            text_ += fmt::format(">{}</A>\n", Escaped(bookmark.title.empty() ? bookmark.url : bookmark.title));
        }
        enter({});
        return std::move(text_ += "</DL><p>\n");
    }

private:
    void indent() { text_.append(4 * (open_.size() + 1), ' '); }

    void enter(const std::vector<std::string>& folders)
    {
        const auto common = static_cast<size_t>(
            std::mismatch(open_.begin(), open_.end(), folders.begin(), folders.end()).first - open_.begin());
        while (open_.size() > common) {
            open_.pop_back();
            indent();
            text_ += "</DL><p>\n";
        }
        for (size_t i = common; i < folders.size(); ++i) {
            indent();
            text_ += fmt::format("<DT><H3>{}</H3>\n", Escaped(folders[i]));
            indent();
            text_ += "<DL><p>\n";
            open_.push_back(folders[i]);
        }
    }

    std::string text_;
    std::vector<std::string> open_;
};

}  // namespace

std::string BookmarkFileText(std::span<const FileBookmark> bookmarks)
{
    return Writer().run(bookmarks);
}

}  // namespace kesta
