// Content lines, of which vCards and calendars consist: unfolded, and split into group, name, parameters and value.
//
// Written by hand because entries are kept byte for byte: libraries for these formats parse into a model and write that
// out again, without what they do not know. Nor is there one that reads both formats, the old vCard versions included,
// and can be had for both platforms.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kesta::formats {

struct Parameter {
    std::string name;  // in capitals; empty for a value without a name, as vCard 2.1 allows
    std::vector<std::string> values;
};

struct ContentLine {
    std::string group;  // "item1" of "item1.EMAIL"
    std::string name;   // in capitals; empty when the line is no content line at all
    std::vector<Parameter> parameters;
    std::string value;  // unfolded, otherwise as it stands
    size_t begin = 0;   // where the line stands in the file, in bytes,
    size_t end = 0;     // ending behind its last line break
    size_t number = 0;  // of its first line in the file
    [[nodiscard]] bool is(std::string_view wantedName, std::string_view wantedValue) const;
};

/// How a folded line goes together again.
enum class Folding {
    kDropBlank,  // the blank after the break belongs to the fold: vCard 3.0 and later, iCalendar
    kKeepBlank,  // lines were broken where a blank was: vCard 2.1
};

/// Goes through the lines of a file. The file must outlive the reader.
class ContentLineReader {
public:
    explicit ContentLineReader(std::string_view file, Folding folding = Folding::kDropBlank)
        : file_(file), folding_(folding)
    {
    }
    /// The next content line; nothing at the end of the file. Empty lines are skipped.
    [[nodiscard]] std::optional<ContentLine> next();

private:
    [[nodiscard]] std::string_view takeLine();
    [[nodiscard]] std::string_view peekLine() const;
    [[nodiscard]] bool foldFollows() const;

    std::string_view file_;
    Folding folding_;
    size_t position_ = 0;
    size_t lineNumber_ = 0;
};

/// The first parameter of that name; null when there is none.
[[nodiscard]] const Parameter* FindParameter(const ContentLine& line, std::string_view name);

/// The value as UTF-8 without zeros: quoted-printable undone, the character set converted, escapes left in place.
[[nodiscard]] std::string DecodedValue(const ContentLine& line);

/// Splits at a separator that is not escaped; escapes stay.
[[nodiscard]] std::vector<std::string> SplitUnescaped(std::string_view value, char separator);

/// Undoes the escapes of text values: \n is a line break, and any other character after a backslash stands for itself.
[[nodiscard]] std::string Unescaped(std::string_view value);

/// The decoded value without escapes, for values that are one text.
[[nodiscard]] std::string TextValue(const ContentLine& line);

/// The line in the one form that folding, line breaks and the case of its name do not change: for digests.
void AppendCanonical(std::string& text, const ContentLine& line);

/// Appends lines, with a line break behind the last where it has none.
void AppendLines(std::string& text, std::string_view lines, std::string_view lineBreak = "\r\n");

}  // namespace kesta::formats
