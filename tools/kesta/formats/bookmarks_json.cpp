#include <charconv>
#include <nlohmann/json.hpp>

#include "formats/bookmarks.h"
#include "formats/charset.h"

namespace kesta::formats {
namespace {

using Json = nlohmann::ordered_json;

// Far beyond what a person nests, far within what the stack holds.
constexpr size_t kDeepest = 256;

/// The text of a member; empty when it is missing or something else.
std::string TextAt(const Json& node, const char* name)
{
    const auto member = node.find(name);
    return member != node.end() && member->is_string() ? member->get_ref<const std::string&>() : std::string();
}

/// Microseconds since 1601, as a text.
std::optional<int64_t> DateOf(const Json& node)
{
    constexpr int64_t kFrom1601To1970 = 11'644'473'600;
    const std::string text = TextAt(node, "date_added");
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
        const std::string type = TextAt(node, "type");
        if (type == "folder") {
            return readFolder(node);
        }
        if (type != "url") {
            return problem("an entry of unknown type \"" + type + "\"");
        }
        Bookmark bookmark{CleanTitle(TextAt(node, "name")), CleanUrl(TextAt(node, "url")), LinkKind::kOther, folders_,
                          DateOf(node)};
        if (bookmark.url.empty()) {
            return problem("a bookmark without an address: " + bookmark.title);
        }
        bookmark.kind = KindOfLink(bookmark.url);
        result_.bookmarks.push_back(std::move(bookmark));
    }

private:
    void readFolder(const Json& node)
    {
        if (folders_.size() == kDeepest) {
            return problem("folders are nested too deeply");
        }
        const auto children = node.find("children");
        if (children == node.end() || !children->is_array()) {
            return problem("a folder without contents");
        }
        folders_.push_back(CleanTitle(TextAt(node, "name")));
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

Bookmarks ParseBookmarksJson(std::string_view file)
{
    Bookmarks result;
    const Json document = Json::parse(WithoutByteOrderMark(file), nullptr, false);
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
