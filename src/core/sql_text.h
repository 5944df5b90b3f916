// The text of a statement, made in one pass in UTF-8 in the connection's buffer: nothing is allocated and nothing is
// converted twice.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/sql.h"

namespace kesta {

/// The longest statement, in UTF-8 bytes. A longer one is never run cut.
inline constexpr size_t kStatementBytes = 40960;

/// Makes a caller's text narrow: UTF-8 or the ANSI code page, each apostrophe twice where it is escaped. Returns the
/// bytes written, or platform::kDoesNotFit when `room` is too small. Null is the empty text where it is escaped, else
/// "(null)".
size_t NarrowText(const SqlArgument& text, char* out, size_t room) noexcept;

/// The same as SQLite reads it back: apostrophes stand once.
size_t NarrowTextOnce(const SqlArgument& text, char* out, size_t room) noexcept;

class SqlText {
public:
    /// The buffer has room for kStatementBytes and a terminator.
    explicit SqlText(char* buffer) : begin_(buffer), end_(buffer) {}
    SqlText(const SqlText&) = delete;
    SqlText& operator=(const SqlText&) = delete;

    /// Adds to the text.
    void append(const Sql& sql) noexcept;

    [[nodiscard]] bool tooLong() const { return tooLong_; }

    /// The finished, zero-terminated text.
    [[nodiscard]] std::string_view text() const
    {
        *end_ = '\0';
        return {begin_, static_cast<size_t>(end_ - begin_)};
    }

private:
    [[nodiscard]] size_t room() const { return static_cast<size_t>(begin_ + kStatementBytes - end_); }
    void literal(std::string_view text) noexcept;
    void put(const SqlArgument& argument) noexcept;
    void number(int64_t value) noexcept;

    char* begin_;
    char* end_;
    bool tooLong_ = false;
};

}  // namespace kesta
