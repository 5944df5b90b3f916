// The format language of statements and trace lines: a literal with printf-like places and typed arguments that say how
// each goes in. Places and arguments are checked against each other when compiling, where the literal is also cut into
// its pieces, so that nothing is parsed at run time.
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <tuple>
#include <type_traits>

#include "kesta_db/kesta_db.h"

namespace kesta {

/// The library's own narrow text: the name of a table, a column or a routine.
struct Name {
    const char* text;
};

/// A caller's text as it is; "(null)" for none.
struct Plain {
    const DbChar* text;
};

/// A caller's text between quotes: every apostrophe doubled; the empty text for none. It ends before the first `until`.
struct Escaped {
    const DbChar* text;
    DbChar until = 0;
};

/// A caller's text in the ANSI code page, as it is; "(null)" for none.
struct Ansi {
    const DbChar* text;
};

/// A caller's text escaped, and then in the ANSI code page.
struct EscapedAnsi {
    const DbChar* text;
};

/// A date as the user writes it; made only when the line is.
struct LocaleDate {
    DateValue value;
};

/// An address in a memory line.
struct Address {
    const void* value;
};

template <class T>
inline constexpr std::string_view kConversion = "s";
template <>
inline constexpr std::string_view kConversion<int32_t> = "d";
template <>
inline constexpr std::string_view kConversion<int64_t> = "I64d";
template <>
inline constexpr std::string_view kConversion<Address> = "x";

template <class... Args>
class Format {
public:
    // NOLINTNEXTLINE(google-explicit-constructor): a literal stands where a format is wanted.
    consteval Format(const char* literal)
    {
        const std::string_view text = literal;
        const std::array<std::string_view, sizeof...(Args)> conversions = {kConversion<Args>...};
        size_t begin = 0;
        for (size_t i = 0; i < sizeof...(Args); ++i) {
            const size_t place = text.find('%', begin);
            if (place == std::string_view::npos) {
                throw "more arguments than places";
            }
            if (!text.substr(place + 1).starts_with(conversions[i])) {
                throw "an argument is not of its place's kind";
            }
            pieces_[i] = text.substr(begin, place - begin);
            begin = place + 1 + conversions[i].size();
        }
        if (text.find('%', begin) != std::string_view::npos) {
            throw "more places than arguments";
        }
        pieces_[sizeof...(Args)] = text.substr(begin);
    }

    /// The literal text around the places: one piece more than there are arguments.
    [[nodiscard]] constexpr const std::array<std::string_view, sizeof...(Args) + 1>& pieces() const { return pieces_; }

    /// Hands pieces and arguments to the writer in their order.
    template <class Writer>
    constexpr void write(Writer& writer, const Args&... args) const
    {
        size_t i = 0;
        ((writer.literal(pieces_[i++]), writer.put(args)), ...);
        writer.literal(pieces_[i]);
    }

private:
    std::array<std::string_view, sizeof...(Args) + 1> pieces_;
};

/// The format of a call's arguments, kept out of their deduction.
template <class... Args>
using FormatFor = std::type_identity_t<Format<Args...>>;

/// A text made from a format of its own, as an argument of another.
template <class... Args>
struct Formatted {
    const Format<Args...>& format;
    std::tuple<const Args&...> args;

    template <class Writer>
    void write(Writer& writer) const
    {
        std::apply([&](const Args&... each) { format.write(writer, each...); }, args);
    }
};

}  // namespace kesta
