#include "formats/content_line.h"

#include <algorithm>

#include "formats/ascii.h"
#include "formats/charset.h"

namespace kesta::formats {
namespace {

constexpr std::string_view kQuotedPrintable = "QUOTED-PRINTABLE";

bool IsNameCharacter(char c)
{
    return IsLetter(c) || IsDigit(c) || c == '-' || c == '_';
}

std::string TakeName(std::string_view& text)
{
    size_t length = 0;
    while (length < text.size() && IsNameCharacter(text[length])) {
        ++length;
    }
    std::string name = ToUpper(text.substr(0, length));
    text.remove_prefix(length);
    return name;
}

/// A parameter's value up to its end, with the escapes that a circumflex introduces undone.
std::string TakeParameterValue(std::string_view& text)
{
    const bool quoted = !text.empty() && text.front() == '"';
    if (quoted) {
        text.remove_prefix(1);
    }
    std::string value;
    while (!text.empty()) {
        const char c = text.front();
        if (quoted ? c == '"' : c == ',' || c == ';' || c == ':') {
            break;
        }
        text.remove_prefix(1);
        const char next = text.empty() ? '\0' : text.front();
        if (c == '^' && (next == 'n' || next == '^' || next == '\'')) {
            value += next == 'n' ? '\n' : next == '\'' ? '"' : '^';
            text.remove_prefix(1);
        } else {
            value += c;
        }
    }
    // What stands between the closing quote and the next separator is nothing that the formats know.
    if (quoted) {
        while (!text.empty() && text.front() != ',' && text.front() != ';' && text.front() != ':') {
            text.remove_prefix(1);
        }
    }
    return value;
}

Parameter TakeParameter(std::string_view& text)
{
    Parameter parameter;
    std::string_view rest = text;
    std::string name = TakeName(rest);
    while (!rest.empty() && IsBlank(rest.front())) {
        rest.remove_prefix(1);
    }
    if (!rest.empty() && rest.front() == '=') {
        parameter.name = std::move(name);
        text = rest.substr(1);
    }
    do {
        if (!parameter.values.empty()) {
            text.remove_prefix(1);
        }
        parameter.values.push_back(TakeParameterValue(text));
    } while (!text.empty() && text.front() == ',');
    return parameter;
}

/// Fills in what stands before the value, and takes it off the text. False when this is no content line.
bool TakeHead(std::string_view& text, ContentLine& line)
{
    line.name = TakeName(text);
    if (!text.empty() && text.front() == '.' && !line.name.empty()) {
        line.group = std::move(line.name);
        text.remove_prefix(1);
        line.name = TakeName(text);
    }
    if (line.name.empty()) {
        return false;
    }
    while (!text.empty() && IsBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && text.front() == ';') {
        text.remove_prefix(1);
        line.parameters.push_back(TakeParameter(text));
    }
    if (text.empty() || text.front() != ':') {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

bool IsQuotedPrintable(const ContentLine& line)
{
    for (const Parameter& parameter : line.parameters) {
        if (parameter.name.empty() || parameter.name == "ENCODING") {
            for (const std::string& value : parameter.values) {
                if (EqualsIgnoringCase(value, kQuotedPrintable)) {
                    return true;
                }
            }
        }
    }
    return false;
}

std::string_view WithoutBreak(std::string_view line)
{
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
        line.remove_suffix(1);
    }
    return line;
}

}  // namespace

bool ContentLine::is(std::string_view wantedName, std::string_view wantedValue) const
{
    return name == wantedName && EqualsIgnoringCase(Trimmed(value), wantedValue);
}

std::string_view ContentLineReader::peekLine() const
{
    const std::string_view rest = file_.substr(position_);
    const size_t length = rest.find_first_of("\r\n");
    if (length == std::string_view::npos) {
        return rest;
    }
    return rest.substr(0, length + (rest.substr(length).starts_with("\r\n") ? 2 : 1));
}

std::string_view ContentLineReader::takeLine()
{
    const std::string_view line = peekLine();
    position_ += line.size();
    ++lineNumber_;
    return line;
}

/// Some writers put an empty line into each fold.
bool ContentLineReader::foldFollows() const
{
    const size_t text = file_.find_first_not_of("\r\n", position_);
    return text != std::string_view::npos && IsBlank(file_[text]);
}

std::optional<ContentLine> ContentLineReader::next()
{
    std::string_view first;
    ContentLine line;
    do {
        if (position_ == file_.size()) {
            return {};
        }
        line.begin = position_;
        first = WithoutBreak(takeLine());
    } while (Trimmed(first).empty());
    line.number = lineNumber_;

    std::string text(first);
    const auto appendFolded = [&] {
        while (foldFollows()) {
            std::string_view more = WithoutBreak(takeLine());
            if (folding_ == Folding::kDropBlank && !more.empty()) {
                more.remove_prefix(1);
            }
            text += more;
        }
    };
    appendFolded();
    std::string_view rest = text;
    if (!TakeHead(rest, line)) {
        line.name.clear();
        rest = text;
    } else if (IsQuotedPrintable(line)) {
        // An equals sign at the end joins the next line, whatever it begins with. A card's end is none of that: some
        // phones leave an equals sign behind a value that they cut off.
        const size_t head = text.size() - rest.size();
        while (text.ends_with('=') && position_ < file_.size() && !StartsIgnoringCase(peekLine(), "END:") &&
               text.size() > head) {
            text.pop_back();
            text += WithoutBreak(takeLine());
            appendFolded();
        }
        if (text.ends_with('=')) {
            text.pop_back();
        }
        rest = std::string_view(text).substr(head);
    }
    line.value = rest;
    line.end = position_;
    return line;
}

const Parameter* FindParameter(const ContentLine& line, std::string_view name)
{
    for (const Parameter& parameter : line.parameters) {
        if (parameter.name == name) {
            return &parameter;
        }
    }
    return nullptr;
}

std::string DecodedValue(const ContentLine& line)
{
    const Parameter* charset = FindParameter(line, "CHARSET");
    std::string value = FromNamedCharset(IsQuotedPrintable(line) ? HexDecoded(line.value, '=') : line.value,
                                         charset ? std::string_view(charset->values.front()) : std::string_view());
    std::ranges::replace(value, '\0', ' ');
    return value;
}

std::vector<std::string> SplitUnescaped(std::string_view value, char separator)
{
    std::vector<std::string> parts(1);
    for (size_t i = 0; i < value.size(); ++i) {
        if (value[i] == separator) {
            parts.emplace_back();
            continue;
        }
        parts.back() += value[i];
        if (value[i] == '\\' && i + 1 < value.size()) {
            parts.back() += value[++i];
        }
    }
    return parts;
}

std::string Unescaped(std::string_view value)
{
    std::string text;
    for (size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            text += value[i];
            continue;
        }
        const char c = value[++i];
        text += c == 'n' || c == 'N' ? '\n' : c;
    }
    return text;
}

std::string TextValue(const ContentLine& line)
{
    return Unescaped(DecodedValue(line));
}

void AppendCanonical(std::string& text, const ContentLine& line)
{
    if (!line.group.empty()) {
        text.append(line.group) += '.';
    }
    text += line.name;
    for (const Parameter& parameter : line.parameters) {
        text.append(";").append(parameter.name) += '=';
        for (const std::string& value : parameter.values) {
            text.append(value) += ',';
        }
    }
    text.append(":").append(line.value) += '\n';
}

void AppendLines(std::string& text, std::string_view lines, std::string_view lineBreak)
{
    text += lines;
    if (!lines.empty() && lines.back() != '\n' && lines.back() != '\r') {
        text += lineBreak;
    }
}

}  // namespace kesta::formats
