#include <charconv>

#include "formats/ascii.h"
#include "formats/bookmarks.h"
#include "formats/charset.h"
#include "formats/html_attributes.h"
#include "formats/html_document.h"

namespace kesta::formats {
namespace {

/// Goes through a tree in the order of the text, without recursion: a document decides how deep its tree is.
/// enter and leave are called for elements, text for text.
template <class Enter, class Leave, class Text>
void Walk(const GumboNode& root, Enter&& enter, Leave&& leave, Text&& text)
{
    struct Position {
        const GumboNode* node;
        unsigned next;
    };
    std::vector<Position> path;
    enter(root);
    path.push_back({&root, 0});
    while (!path.empty()) {
        Position& position = path.back();
        const GumboVector& children = position.node->v.element.children;
        if (position.next == children.length) {
            leave(*position.node);
            path.pop_back();
            continue;
        }
        const auto& child = *static_cast<const GumboNode*>(children.data[position.next++]);
        if (child.type == GUMBO_NODE_ELEMENT || child.type == GUMBO_NODE_TEMPLATE) {
            enter(child);
            path.push_back({&child, 0});
        } else if (child.type != GUMBO_NODE_COMMENT) {
            text(child.v.text.text);
        }
    }
}

std::string TextOf(const GumboNode& element)
{
    std::string all;
    const auto nothing = [](const GumboNode&) {};
    Walk(element, nothing, nothing, [&](const char* text) { all += text; });
    return CleanTitle(all);
}

const char* AttributeOf(const GumboNode& element, const char* name)
{
    const GumboAttribute* attribute = gumbo_get_attribute(&element.v.element.attributes, name);
    return attribute ? attribute->value : nullptr;
}

/// Seconds since 1970. Some exports write milliseconds or microseconds; as seconds these would lie beyond the year
/// 5000.
std::optional<int64_t> DateOf(const GumboNode& link)
{
    const char* attribute = AttributeOf(link, "add_date");
    if (!attribute) {
        return {};
    }
    const std::string_view text = Trimmed(attribute);
    int64_t date = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), date);
    if (error != std::errc() || end != text.data() + text.size() || date <= 0) {
        return {};
    }
    while (date >= 100'000'000'000) {
        date /= 1000;
    }
    return date;
}

/// Folders are H3 headings, each with the list that follows it.
class HtmlBookmarkReader {
public:
    explicit HtmlBookmarkReader(Bookmarks& result) : result_(result) {}

    void read(const GumboNode& root)
    {
        Walk(
            root, [&](const GumboNode& element) { enter(element); }, [&](const GumboNode& element) { leave(element); },
            [](const char*) {});
    }
    [[nodiscard]] bool sawList() const { return sawList_; }

private:
    void enter(const GumboNode& element)
    {
        switch (element.v.element.tag) {
            case GUMBO_TAG_H3:
                heading_ = TextOf(element);
                break;
            case GUMBO_TAG_DL:
                sawList_ = true;
                named_.push_back(heading_.has_value());
                if (heading_) {
                    folders_.push_back(std::move(*heading_));
                }
                heading_.reset();
                break;
            case GUMBO_TAG_A:
                heading_.reset();
                addLink(element);
                break;
            default:
                break;
        }
    }

    void leave(const GumboNode& element)
    {
        if (element.v.element.tag != GUMBO_TAG_DL) {
            return;
        }
        if (named_.back()) {
            folders_.pop_back();
        }
        named_.pop_back();
        heading_.reset();
    }

    void addLink(const GumboNode& link)
    {
        const char* address = AttributeOf(link, "href");
        if (!address) {
            return;
        }
        Bookmark bookmark{TextOf(link), CleanUrl(address), LinkKind::kOther, folders_, DateOf(link)};
        if (bookmark.url.empty()) {
            return;
        }
        bookmark.kind = KindOfLink(bookmark.url);
        result_.bookmarks.push_back(std::move(bookmark));
    }

    Bookmarks& result_;
    std::optional<std::string> heading_;  // of the list to come
    std::vector<bool> named_;             // for each open list
    std::vector<std::string> folders_;
    bool sawList_ = false;
};

/// Whether a list is still open at the end, or a tag: the file was cut. Parsers of HTML close both without a word.
bool IsCutShort(std::string_view text)
{
    const size_t lastEnd = text.rfind('>');
    int open = 0;
    for (size_t i = text.find('<'); i != std::string_view::npos; i = text.find('<', i + 1)) {
        const std::string_view rest = text.substr(i);
        if (rest.starts_with("<!--")) {
            const size_t end = rest.find("-->");
            if (end == std::string_view::npos) {
                return true;
            }
            i += end;
            continue;
        }
        if (lastEnd == std::string_view::npos || lastEnd < i) {
            return true;
        }
        if (StartsIgnoringCase(rest, "<dl") && !IsLetter(rest[3])) {
            ++open;
        }
        if (StartsIgnoringCase(rest, "</dl")) {
            --open;
        }
    }
    return open > 0;
}

}  // namespace

Bookmarks ParseBookmarksHtml(std::string_view file)
{
    const std::string text = WithFewAttributes(FromUtf8OrLatin1(WithoutByteOrderMark(file)));
    Bookmarks result;
    const HtmlDocument document(text);
    if (!document.root()) {
        result.problems.push_back({0, "the document is nested too deeply"});
        return result;
    }
    HtmlBookmarkReader reader(result);
    reader.read(*document.root());
    if (!reader.sawList() && !StartsIgnoringCase(document.documentType(), "netscape-bookmark")) {
        result.bookmarks.clear();
        result.problems.push_back({0, "not a bookmark file"});
    } else if (IsCutShort(text)) {
        result.problems.push_back({0, "it ends before its lists do"});
    }
    return result;
}

}  // namespace kesta::formats
