#include "formats/markup.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>

#include <utf8.h>

#include "formats/ascii.h"
#include "formats/charset.h"

namespace kesta::formats {
namespace {

bool IsName(char c)
{
    return !IsSpace(c) && c != '>' && c != '/' && c != '=' && c != '<' && c != '"' && c != '\'';
}

/// The character that a reference such as "amp" or "#x41" stands for.
std::optional<char32_t> CharacterOf(std::string_view reference)
{
    constexpr std::array<std::pair<std::string_view, char32_t>, 5> kNamed{
        {{"amp", U'&'}, {"lt", U'<'}, {"gt", U'>'}, {"quot", U'"'}, {"apos", U'\''}}};
    for (const auto& [name, character] : kNamed) {
        if (EqualsIgnoringCase(reference, name)) {
            return character;
        }
    }
    if (!reference.starts_with('#')) {
        return {};
    }
    reference.remove_prefix(1);
    const bool isHex = reference.starts_with('x') || reference.starts_with('X');
    reference.remove_prefix(isHex ? 1 : 0);
    constexpr uint32_t kLast = 0x10FFFF;
    uint32_t number = 0;
    const char* end = reference.data() + reference.size();
    const auto [stop, error] = std::from_chars(reference.data(), end, number, isHex ? 16 : 10);
    const bool isSurrogate = number >= 0xD800 && number < 0xE000;
    if (error != std::errc() || stop != end || number == 0 || number > kLast || isSurrogate) {
        return {};
    }
    return number;
}

}  // namespace

std::string WithoutReferences(std::string_view text)
{
    constexpr size_t kLongest = 10;
    std::string plain;
    while (!text.empty()) {
        const size_t end = text.front() == '&' ? text.substr(0, kLongest).find(';') : std::string_view::npos;
        const auto character = end == std::string_view::npos ? std::nullopt : CharacterOf(text.substr(1, end - 1));
        if (character) {
            utf8::append(*character, std::back_inserter(plain));
            text.remove_prefix(end + 1);
        } else {
            plain += text.front();
            text.remove_prefix(1);
        }
    }
    return plain;
}

std::string MarkupText(std::string_view file)
{
    const std::string bytes = WithoutByteOrderMark(file);
    std::string charset;
    if (std::string_view declaration = bytes; declaration.starts_with("<?xml")) {
        declaration = declaration.substr(0, declaration.find("?>"));
        const size_t name = declaration.find("encoding");
        const size_t begin = name == std::string_view::npos ? name : declaration.find_first_of("\"'", name);
        if (begin != std::string_view::npos) {
            const size_t end = declaration.find(declaration[begin], begin + 1);
            charset = declaration.substr(begin + 1, end == std::string_view::npos ? end : end - begin - 1);
        }
    }
    std::string text = FromNamedCharset(bytes, charset);
    std::erase(text, '\0');
    return text;
}

std::string MarkupPart::attribute(std::string_view wanted) const
{
    const auto found = std::ranges::find_if(attributes, [&](const auto& pair) { return pair.first == wanted; });
    return found == attributes.end() ? std::string() : found->second;
}

void MarkupReader::take(size_t count)
{
    count = std::min(count, text_.size());
    line_ += static_cast<size_t>(std::ranges::count(text_.substr(0, count), '\n'));
    text_.remove_prefix(count);
}

void MarkupReader::skipPast(std::string_view end)
{
    const size_t found = text_.find(end);
    take(found == std::string_view::npos ? text_.size() : found + end.size());
}

void MarkupReader::skipBlanks()
{
    while (!text_.empty() && (IsSpace(text_.front()) || text_.front() == '/')) {
        if (text_.starts_with("/>")) {
            return;
        }
        take(1);
    }
}

std::string MarkupReader::takeName()
{
    const auto end = std::ranges::find_if_not(text_, IsName);
    const auto length = static_cast<size_t>(end - text_.begin());
    const std::string_view name = text_.substr(0, length);
    std::string capitals = ToUpper(name.substr(name.rfind(':') + 1));
    take(length);
    return capitals;
}

std::string MarkupReader::takeValue()
{
    const char quote = text_.empty() ? '\0' : text_.front();
    size_t begin = 0, end = 0;
    if (quote == '"' || quote == '\'') {
        begin = 1;
        end = std::min(text_.find(quote, 1), text_.size());
    } else {
        end = std::min(text_.find_first_of(" \t\r\n>"), text_.size());
    }
    std::string value = WithoutReferences(text_.substr(begin, end - begin));
    take(end + begin);
    return value;
}

std::optional<MarkupPart> MarkupReader::takeTag()
{
    if (text_.starts_with("<!--")) {
        skipPast("-->");
        return {};
    }
    if (text_.starts_with("<?") || text_.starts_with("<!")) {
        skipPast(">");
        return {};
    }
    MarkupPart part;
    part.line = line_;
    const bool isEnd = text_.starts_with("</");
    part.kind = isEnd ? MarkupPart::Kind::kEnd : MarkupPart::Kind::kBegin;
    take(isEnd ? 2 : 1);
    part.name = takeName();
    for (skipBlanks(); !text_.empty() && text_.front() != '>' && !text_.starts_with("/>"); skipBlanks()) {
        if (text_.front() == '<') {
            return part;  // The tag has no end; the next one begins.
        }
        std::string name = takeName();
        while (!text_.empty() && IsSpace(text_.front())) {
            take(1);
        }
        if (text_.starts_with('=')) {
            take(1);
            while (!text_.empty() && IsSpace(text_.front())) {
                take(1);
            }
            part.attributes.emplace_back(std::move(name), takeValue());
        } else if (name.empty()) {
            take(1);  // a stray quote, say
        }
    }
    if (text_.starts_with("/>") && !isEnd) {
        toEnd_ = part.name;
    }
    take(text_.starts_with("/>") ? 2 : 1);
    return part;
}

MarkupPart MarkupReader::takeText()
{
    constexpr std::string_view kCdata = "<![CDATA[";
    MarkupPart part;
    part.line = line_;
    if (text_.starts_with(kCdata)) {
        take(kCdata.size());
        const size_t end = std::min(text_.find("]]>"), text_.size());
        part.text = text_.substr(0, end);
        take(end + 3);
        return part;
    }
    const size_t end = std::min(text_.find('<', 1), text_.size());
    part.text = WithoutReferences(text_.substr(0, end));
    take(end);
    return part;
}

std::optional<MarkupPart> MarkupReader::next()
{
    if (toEnd_) {
        MarkupPart part{MarkupPart::Kind::kEnd, *std::move(toEnd_), {}, {}, line_};
        toEnd_.reset();
        return part;
    }
    while (!text_.empty()) {
        const bool isTag = text_.size() >= 2 && text_.front() == '<' && !text_.starts_with("<![CDATA[") &&
                           (IsLetter(text_[1]) || text_[1] == '/' || text_[1] == '!' || text_[1] == '?');
        if (!isTag) {
            return takeText();
        }
        if (auto part = takeTag()) {
            return part;
        }
    }
    return {};
}

}  // namespace kesta::formats
