#include "formats/html_attributes.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "formats/ascii.h"

namespace kesta::formats {
namespace {

constexpr std::array<std::string_view, 2> kNeeded{"HREF", "ADD_DATE"};

/// As HTML has it: a vertical tab is none.
bool IsHtmlSpace(char c)
{
    return IsSpace(c) && c != '\v';
}

/// Elements that hold text only: what looks like a tag within is none.
bool HoldsOnlyText(std::string_view tag)
{
    constexpr std::array<std::string_view, 8> kTextOnly{"SCRIPT", "STYLE",  "TITLE",   "TEXTAREA",
                                                        "XMP",    "IFRAME", "NOEMBED", "NOFRAMES"};
    return std::ranges::find(kTextOnly, tag) != kTextOnly.end();
}

/// Goes through a document tag by tag, as HTML's tokenizer does, and copies what is to stay.
class AttributeCutter {
public:
    explicit AttributeCutter(std::string_view html) : html_(html) {}

    /// False when nothing is to be cut.
    bool run()
    {
        while (at_ < html_.size()) {
            at_ = std::min(html_.find('<', at_), html_.size());
            const std::string_view rest = html_.substr(at_);
            const bool isEnd = rest.starts_with("</");
            const size_t name = isEnd ? 2 : 1;
            if (rest.size() > name && IsLetter(rest[name])) {
                at_ += name;
                readTag(isEnd);
            } else if (rest.starts_with("<!--")) {
                at_ += 2;
                skipPast("-->");
            } else if (isEnd || rest.starts_with("<!") || rest.starts_with("<?")) {
                skipPast(">");
            } else if (!rest.empty()) {
                ++at_;
            }
        }
        kept_ += html_.substr(copied_);
        return hasCut_;
    }

    [[nodiscard]] std::string take() && { return std::move(kept_); }

private:
    template <class IsEnd>
    void skipUntil(IsEnd&& isEnd)
    {
        while (at_ < html_.size() && !isEnd(html_[at_])) {
            ++at_;
        }
    }

    void skipPast(std::string_view end)
    {
        const size_t found = html_.find(end, at_);
        at_ = found == std::string_view::npos ? html_.size() : found + end.size();
    }

    void readTag(bool isEnd)
    {
        const size_t begin = at_;
        skipUntil([](char c) { return IsHtmlSpace(c) || c == '/' || c == '>'; });
        const std::string tag = ToUpper(html_.substr(begin, at_ - begin));
        std::array<bool, kNeeded.size()> isSeen{};
        for (size_t count = 1;; ++count) {
            skipUntil([](char c) { return !IsHtmlSpace(c) && c != '/'; });
            if (at_ == html_.size()) {
                return;
            }
            if (html_[at_] == '>') {
                break;
            }
            readAttribute(count, isSeen);
        }
        ++at_;
        if (!isEnd && HoldsOnlyText(tag)) {
            skipText(tag);
        }
    }

    void readAttribute(size_t count, std::array<bool, kNeeded.size()>& isSeen)
    {
        const size_t begin = at_++;  // an equals sign at the beginning is part of the name
        skipUntil([](char c) { return IsHtmlSpace(c) || c == '/' || c == '>' || c == '='; });
        const std::string_view name = html_.substr(begin, at_ - begin);
        size_t end = at_;
        skipUntil([](char c) { return !IsHtmlSpace(c); });
        if (at_ < html_.size() && html_[at_] == '=') {
            ++at_;
            readValue();
            end = at_;
        }
        bool isNeeded = count <= kMostAttributes;
        for (size_t i = 0; i < kNeeded.size(); ++i) {
            if (EqualsIgnoringCase(name, kNeeded[i])) {
                isNeeded = isNeeded || !isSeen[i];  // of several the first counts
                isSeen[i] = true;
            }
        }
        if (!isNeeded) {
            kept_ += html_.substr(copied_, begin - copied_);
            copied_ = end;
            hasCut_ = true;
        }
    }

    void readValue()
    {
        skipUntil([](char c) { return !IsHtmlSpace(c); });
        if (at_ == html_.size()) {
            return;
        }
        const char quote = html_[at_];
        if (quote == '"' || quote == '\'') {
            ++at_;
            skipPast(std::string_view(&quote, 1));
        } else {
            skipUntil([](char c) { return IsHtmlSpace(c) || c == '>'; });
        }
    }

    void skipText(std::string_view tag)
    {
        while (at_ < html_.size()) {
            at_ = std::min(html_.find("</", at_), html_.size());
            const std::string_view rest = html_.substr(at_);
            const size_t length = tag.size() + 2;
            if (rest.size() > length && EqualsIgnoringCase(rest.substr(2, tag.size()), tag) &&
                (IsHtmlSpace(rest[length]) || rest[length] == '/' || rest[length] == '>')) {
                return;
            }
            at_ = std::min(at_ + 2, html_.size());
        }
    }

    std::string_view html_;
    std::string kept_;
    size_t at_ = 0, copied_ = 0;
    bool hasCut_ = false;
};

}  // namespace

std::string WithFewAttributes(std::string html)
{
    AttributeCutter cutter(html);
    return cutter.run() ? std::move(cutter).take() : std::move(html);
}

}  // namespace kesta::formats
