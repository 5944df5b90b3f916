// The text of one statement, made in one pass in UTF-8 in the module's EscapeBuffer: nothing is allocated and nothing
// is converted twice. There is one buffer, so one statement's text lives at a time, under the lock: write
// `db.exec(WideSql("...", ...))`, where it ends with the call.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "core/dates.h"
#include "core/format.h"

namespace kesta {

/// The longest statement, in UTF-8 bytes. A longer one is never run cut.
inline constexpr size_t kStatementBytes = 40960;

class Sql {
public:
    /// Starts with the text of `format`; throws std::bad_alloc when the EscapeBuffer could not be had.
    template <class... Args>
    explicit Sql(const Format<Args...>& format, const Args&... args) : Sql()
    {
        format.write(*this, args...);
    }
    Sql(const Sql&) = delete;
    Sql& operator=(const Sql&) = delete;
    ~Sql();

    /// Adds to the text.
    template <class... Args>
    void append(const FormatFor<Args...>& format, const Args&... args)
    {
        format.write(*this, args...);
    }

    [[nodiscard]] bool tooLong() const { return tooLong_; }

    /// The finished, zero-terminated text.
    [[nodiscard]] std::string_view text() const
    {
        *end_ = '\0';
        return {begin_, static_cast<size_t>(end_ - begin_)};
    }

    // How each kind of argument goes in; called by Format.
    /// Inline, for the pieces of a format are short and of lengths that the compiler knows.
    void literal(std::string_view text)
    {
        if (text.size() > room()) {
            tooLong_ = true;
            return;
        }
        std::memcpy(end_, text.data(), text.size());
        end_ += text.size();
    }
    void put(const Name& name) { literal(name.text); }
    void put(const DateText& date) { literal(date.view()); }
    void put(const Plain& text);
    void put(const Escaped& text);
    void put(const Ansi& text);
    void put(const EscapedAnsi& text);
    void put(int32_t number) { put(int64_t{number}); }
    void put(int64_t number);

private:
    Sql();
    [[nodiscard]] size_t room() const { return static_cast<size_t>(begin_ + kStatementBytes - end_); }
    using Narrow = size_t (*)(const DbChar* text, size_t length, char* out, size_t room) noexcept;
    void copy(const DbChar* text, DbChar doubled, DbChar until, Narrow narrow);

    char* begin_;
    char* end_;
    bool tooLong_ = false;
};

template <class T>
concept WideArgument = !std::same_as<T, Ansi> && !std::same_as<T, EscapedAnsi>;
template <class T>
concept NarrowArgument = !std::same_as<T, Plain> && !std::same_as<T, Escaped>;

/// A statement whose texts become UTF-8.
template <WideArgument... Args>
Sql WideSql(const FormatFor<Args...>& format, const Args&... args)
{
    return Sql(format, args...);
}

/// A statement whose texts, if any, go in through the ANSI code page.
template <NarrowArgument... Args>
Sql NarrowSql(const FormatFor<Args...>& format, const Args&... args)
{
    return Sql(format, args...);
}

}  // namespace kesta
