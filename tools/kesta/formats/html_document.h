// An HTML document, parsed by Gumbo within limits. For bookmarks_html.cpp.
#pragma once

#include <gumbo.h>

#include <cstddef>
#include <memory>
#include <string_view>

namespace kesta::formats {

/// Owns the tree and, as the tree points into it, needs the text to outlive it.
class HtmlDocument {
public:
    explicit HtmlDocument(std::string_view utf8);
    ~HtmlDocument();
    HtmlDocument(const HtmlDocument&) = delete;
    HtmlDocument& operator=(const HtmlDocument&) = delete;

    /// Null when the document is nested too deeply or takes too much memory.
    [[nodiscard]] const GumboNode* root() const { return root_; }
    [[nodiscard]] std::string_view documentType() const;

private:
    class Memory;
    std::unique_ptr<Memory> memory_;
    const GumboOutput* output_ = nullptr;
    const GumboNode* root_ = nullptr;
};

}  // namespace kesta::formats
