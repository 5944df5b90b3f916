#include "formats/utf8_lines.h"

#include <algorithm>

#include "formats/ascii.h"
#include "formats/charset.h"
#include "formats/content_line.h"

namespace kesta::formats {
namespace {

bool IsAscii(std::string_view bytes)
{
    return std::ranges::all_of(bytes, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// Writers fold at a number of bytes, in the middle of a character, too.
std::string WithoutFolds(std::string_view line)
{
    std::string text;
    for (size_t i = 0; i < line.size(); ++i) {
        const size_t end = line.find_first_not_of("\r\n", i);
        const bool isFold = end != i && end != std::string_view::npos && IsBlank(line[end]);
        if (isFold) {
            i = end;
        } else {
            text += line[i];
        }
    }
    return text;
}

/// The line says in what it is written now.
void RenameCharset(std::string& line, std::string_view charset)
{
    constexpr std::string_view kParameter = "CHARSET=";
    const std::string upper = ToUpper(std::string_view(line).substr(0, line.find(':')));
    const size_t parameter = upper.find(kParameter);
    const size_t value = line.find(charset, parameter);
    if (parameter != std::string::npos && value != std::string::npos) {
        line.replace(value, charset.size(), "UTF-8");
    }
}

std::string ToUtf8(std::string_view bytes, const ContentLine& line)
{
    const Parameter* charset = FindParameter(line, "CHARSET");
    if (charset == nullptr) {
        return IsUtf8(WithoutFolds(bytes)) ? std::string(bytes) : FromLatin1(bytes);
    }
    const std::string& name = charset->values.front();
    std::string text = FromNamedCharset(bytes, name);
    RenameCharset(text, name);
    return text;
}

}  // namespace

std::string WithUtf8Lines(std::string_view file)
{
    if (IsAscii(file)) {
        return std::string(file);
    }
    std::string text;
    size_t copied = 0;
    // How folds are undone does not matter here: only where the line ends does.
    ContentLineReader reader(file);
    while (const auto line = reader.next()) {
        const std::string_view bytes = file.substr(line->begin, line->end - line->begin);
        text += file.substr(copied, line->begin - copied);
        text += IsAscii(bytes) ? std::string(bytes) : ToUtf8(bytes, *line);
        copied = line->end;
    }
    return text += file.substr(copied);
}

}  // namespace kesta::formats
