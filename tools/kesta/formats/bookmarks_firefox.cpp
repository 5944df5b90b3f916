// The JSON that Firefox writes as a backup of its bookmarks: a tree of places, the times in microseconds since 1970.
#include "formats/bookmarks_json.h"

namespace kesta::formats {
namespace {

using Json = BookmarkJson;

constexpr std::string_view kFolder = "text/x-moz-place-container";
constexpr std::string_view kPlace = "text/x-moz-place";
constexpr std::string_view kSeparator = "text/x-moz-place-separator";

std::optional<int64_t> DateOf(const Json& node)
{
    const auto date = node.find("dateAdded");
    if (date == node.end() || !date->is_number_integer() || date->get<int64_t>() <= 0) {
        return {};
    }
    return date->get<int64_t>() / 1'000'000;
}

class FirefoxReader {
public:
    explicit FirefoxReader(Bookmarks& result) : result_(result) {}

    void readFolder(const Json& node, bool isRoot)
    {
        const auto children = node.find("children");
        if (children == node.end()) {
            return;  // Firefox writes an empty folder so.
        }
        const auto* list = children->get_ptr<const Json::array_t*>();
        if (list == nullptr) {
            return problem("a folder without contents");
        }
        if (folders_.size() == kDeepestBookmarkFolder) {
            return problem("folders are nested too deeply");
        }
        if (!isRoot) {
            folders_.push_back(CleanTitle(BookmarkTextAt(node, "title")));
        }
        for (const Json& child : *list) {
            readNode(child);
        }
        if (!isRoot) {
            folders_.pop_back();
        }
    }

private:
    void readNode(const Json& node)
    {
        if (!node.is_object()) {
            return problem("an entry that is no object");
        }
        const std::string type = BookmarkTextAt(node, "type");
        if (type == kFolder) {
            // A tag's folder holds once more what lies elsewhere.
            return BookmarkTextAt(node, "root") == "tagsFolder" ? void() : readFolder(node, false);
        }
        if (type == kSeparator) {
            return;
        }
        if (type != kPlace) {
            return problem("an entry of unknown type \"" + type + "\"");
        }
        Bookmark bookmark{CleanTitle(BookmarkTextAt(node, "title")), CleanUrl(BookmarkTextAt(node, "uri")),
                          LinkKind::kOther, folders_, DateOf(node)};
        if (bookmark.url.empty()) {
            return problem("a bookmark without an address: " + bookmark.title);
        }
        bookmark.kind = KindOfLink(bookmark.url);
        result_.bookmarks.push_back(std::move(bookmark));
    }

    void problem(std::string text) { result_.problems.push_back({0, std::move(text)}); }

    Bookmarks& result_;
    std::vector<std::string> folders_;
};

}  // namespace

bool IsFirefoxBookmarks(const Json& document)
{
    return document.is_object() && BookmarkTextAt(document, "type") == kFolder;
}

void ReadFirefoxBookmarks(const Json& document, Bookmarks& result)
{
    FirefoxReader(result).readFolder(document, true);
}

}  // namespace kesta::formats
