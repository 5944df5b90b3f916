// Tags and texts of XML and what resembles it, one after the other. For the playlists that are written in it.
//
// No XML library: many .asx files are not well-formed. Players read them with tags in either case, bare ampersands and
// without ends, and so does this.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kesta::formats {

struct MarkupPart {
    enum class Kind { kBegin, kEnd, kText };
    Kind kind = Kind::kText;
    std::string name;                                             // of a tag, in capitals, without a prefix
    std::vector<std::pair<std::string, std::string>> attributes;  // names in capitals
    std::string text;
    size_t line = 0;

    /// Empty when there is no such attribute.
    [[nodiscard]] std::string attribute(std::string_view wanted) const;
};

/// A tag that ends itself comes out as a beginning and an end. The text must outlive the reader.
class MarkupReader {
public:
    explicit MarkupReader(std::string_view utf8) : text_(utf8) {}
    /// std::nullopt at the end.
    [[nodiscard]] std::optional<MarkupPart> next();

private:
    [[nodiscard]] std::optional<MarkupPart> takeTag();
    [[nodiscard]] MarkupPart takeText();
    [[nodiscard]] std::string takeName();
    [[nodiscard]] std::string takeValue();
    void take(size_t count);
    void skipPast(std::string_view end);
    void skipBlanks();

    std::string_view text_;
    size_t line_ = 1;
    std::optional<std::string> toEnd_;  // the tag that has ended itself
};

/// With &amp; and the like undone. What is no reference stays as it is.
[[nodiscard]] std::string WithoutReferences(std::string_view text);
/// As UTF-8: what the file's declaration says, else by validity.
[[nodiscard]] std::string MarkupText(std::string_view file);

}  // namespace kesta::formats
