// Texts of the library's own kind in tests. The conversions are the tests' own: what the library converts is checked
// against them.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "kesta_db/kesta_db.h"

namespace kesta::test {

/// Owns a zero-terminated UTF-16 text and is passed where one is expected.
class Text {
public:
    explicit Text(std::string_view utf8);

    /// Any code units, also those that are no text. The terminator is added.
    static Text ofUnits(std::initializer_list<unsigned> units);

    operator const DbChar*() const { return units_.data(); }

    /// For the text fields of records, which are not constant.
    [[nodiscard]] DbChar* get() { return units_.data(); }

    /// Without the terminator.
    [[nodiscard]] size_t length() const { return units_.size() - 1; }

private:
    Text() = default;
    std::vector<DbChar> units_;
};

/// `lib.DB_LIB_PhoneDetected(W("351111"), W("Ann's phone"))`
inline Text W(std::string_view utf8)
{
    return Text(utf8);
}
inline Text W(std::u8string_view utf8)
{
    return Text(std::string_view(reinterpret_cast<const char*>(utf8.data()), utf8.size()));
}

/// Back to UTF-8; a null pointer gives "<null>", a lone surrogate U+FFFD.
std::string Utf8(const DbChar* text);

/// The text in the process's ANSI code page, which is UTF-8 on systems that have no such thing.
std::string Ansi(const DbChar* text);

/// A character that the ANSI code page has, in UTF-8: an emoji where it has all characters, else the paragraph sign.
std::string AnsiCharacter();

}  // namespace kesta::test
