#include <charconv>

#include "formats/bookmarks_json.h"
#include "formats/charset.h"

namespace kesta::formats {
namespace {

using Json = BookmarkJson;

/// Microseconds since 1601, as a text.
std::optional<int64_t> DateOf(const Json& node)
{
    constexpr int64_t kFrom1601To1970 = 11'644'473'600;
    const std::string text = BookmarkTextAt(node, "date_added");
    int64_t date = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), date);
    if (error != std::errc() || end != text.data() + text.size() || date <= 0) {
        return {};
    }
    return date / 1'000'000 - kFrom1601To1970;
}

class JsonBookmarkReader {
public:
    explicit JsonBookmarkReader(Bookmarks& result) : result_(result) {}

    void readNode(const Json& node)
    {
        if (!node.is_object()) {
            return problem("an entry that is no object");
        }
        const std::string type = BookmarkTextAt(node, "type");
        if (type == "folder") {
            return readFolder(node);
        }
        if (type != "url") {
            return problem("an entry of unknown type \"" + type + "\"");
        }
        Bookmark bookmark{CleanTitle(BookmarkTextAt(node, "name")), CleanUrl(BookmarkTextAt(node, "url")),
                          LinkKind::kOther, folders_, DateOf(node)};
        if (bookmark.url.empty()) {
            return problem("a bookmark without an address: " + bookmark.title);
        }
        bookmark.kind = KindOfLink(bookmark.url);
        result_.bookmarks.push_back(std::move(bookmark));
    }

private:
    void readFolder(const Json& node)
    {
        if (folders_.size() == kDeepestBookmarkFolder) {
            return problem("folders are nested too deeply");
        }
        const auto children = node.find("children");
        if (children == node.end() || !children->is_array()) {
            return problem("a folder without contents");
        }
        folders_.push_back(CleanTitle(BookmarkTextAt(node, "name")));
        for (const Json& child : *children) {
            readNode(child);
        }
        folders_.pop_back();
    }

    void problem(std::string text) { result_.problems.push_back({0, std::move(text)}); }

    Bookmarks& result_;
    std::vector<std::string> folders_;
};

}  // namespace

std::string BookmarkTextAt(const Json& node, const char* name)
{
    const auto member = node.find(name);
    return member != node.end() && member->is_string() ? member->get_ref<const std::string&>() : std::string();
}

Bookmarks ParseBookmarksJson(std::string_view file)
{
    Bookmarks result;
    const Json document = Json::parse(WithoutByteOrderMark(file), nullptr, false);
    if (IsFirefoxBookmarks(document)) {
        ReadFirefoxBookmarks(document, result);
        return result;
    }
    const auto roots = document.is_object() ? document.find("roots") : document.end();
    if (roots == document.end() || !roots->is_object()) {
        result.problems.push_back({0, document.is_discarded() ? "not valid JSON" : "not a bookmark file"});
        return result;
    }
    JsonBookmarkReader reader(result);
    // Beside the roots' folders stand texts about their synchronisation, and in some browsers what was thrown away.
    for (const auto& [name, root] : roots->items()) {
        if (root.is_object() && name != "trash") {
            reader.readNode(root);
        }
    }
    return result;
}

}  // namespace kesta::formats
