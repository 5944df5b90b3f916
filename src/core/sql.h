// A statement as a routine writes it: a format and the arguments that go into it. A connection makes its text when the
// statement runs, or has it compiled already and binds the arguments.
//
//     db.exec(WideSql("DELETE FROM %s WHERE [Path] = '%s';", table, Escaped{path}));
//     Statement rows = db.prepare(NarrowSql("SELECT [ID] FROM tPhone WHERE [IMEI] = '%s';", Ansi{imei}));
//     SqlText text(buffer); text.append(WideSql("UPDATE tPhone SET [Name] = '%s'", Escaped{name}));  // core/sql_text.h
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "core/dates.h"
#include "core/format.h"

namespace kesta {

/// One argument of a statement, whatever its type was.
struct SqlArgument {
    enum class Kind : uint8_t { kName, kDate, kNumber, kPlain, kEscaped, kAnsi, kEscapedAnsi };

    // NOLINTBEGIN(google-explicit-constructor): an argument stands where this is wanted.
    SqlArgument(const Name& name) : kind(Kind::kName), narrow(name.text) {}
    SqlArgument(const DateText& date) : kind(Kind::kDate), narrow(date.view()) {}
    SqlArgument(int32_t value) : kind(Kind::kNumber), number(value) {}
    SqlArgument(int64_t value) : kind(Kind::kNumber), number(value) {}
    SqlArgument(const Plain& plain) : kind(Kind::kPlain), wide(plain.text) {}
    SqlArgument(const Escaped& escaped) : kind(Kind::kEscaped), until(escaped.until), wide(escaped.text) {}
    SqlArgument(const Ansi& ansi) : kind(Kind::kAnsi), wide(ansi.text) {}
    SqlArgument(const EscapedAnsi& escaped) : kind(Kind::kEscapedAnsi), wide(escaped.text) {}
    // NOLINTEND(google-explicit-constructor)

    /// A caller's text goes between quotes.
    [[nodiscard]] bool isText() const { return kind >= Kind::kPlain; }

    Kind kind;
    DbChar until = 0;  // of an escaped text: it ends before the first of these
    union {
        std::string_view narrow;
        int64_t number;
        const DbChar* wide;  // null for no text
    };
};

/// Refers to the arguments' texts: it is run where it is made.
class Sql {
public:
    Sql(const Sql&) = delete;
    Sql& operator=(const Sql&) = delete;

    [[nodiscard]] std::span<const std::string_view> pieces() const { return {pieces_, count_ + 1}; }
    [[nodiscard]] std::span<const SqlArgument> arguments() const { return {arguments_, count_}; }

protected:
    Sql(const std::string_view* pieces, const SqlArgument* arguments, size_t count)
        : pieces_(pieces), arguments_(arguments), count_(count)
    {
    }
    ~Sql() = default;

private:
    const std::string_view* pieces_;
    const SqlArgument* arguments_;
    size_t count_;
};

template <size_t kCount>
struct SqlParts {
    std::array<std::string_view, kCount + 1> pieces;
    std::array<SqlArgument, kCount> values;
};

/// A statement with what it is made of.
template <class... Args>
class SqlOf : private SqlParts<sizeof...(Args)>, public Sql {
    using Parts = SqlParts<sizeof...(Args)>;

public:
    explicit SqlOf(const Format<Args...>& format, const Args&... args)
        : Parts{format.pieces(), {args...}}, Sql(Parts::pieces.data(), Parts::values.data(), sizeof...(Args))
    {
    }
};

template <class T>
concept WideArgument = !std::same_as<T, Ansi> && !std::same_as<T, EscapedAnsi>;
template <class T>
concept NarrowArgument = !std::same_as<T, Plain> && !std::same_as<T, Escaped>;

/// A statement whose texts become UTF-8.
template <WideArgument... Args>
SqlOf<Args...> WideSql(const FormatFor<Args...>& format, const Args&... args)
{
    return SqlOf<Args...>(format, args...);
}

/// A statement whose texts, if any, go in through the ANSI code page.
template <NarrowArgument... Args>
SqlOf<Args...> NarrowSql(const FormatFor<Args...>& format, const Args&... args)
{
    return SqlOf<Args...>(format, args...);
}

}  // namespace kesta
