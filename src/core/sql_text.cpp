#include "core/sql_text.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>

#include "core/ascii.h"
#include "core/text.h"
#include "platform/code_page.h"

namespace kesta {
namespace {

using Kind = SqlArgument::Kind;
using Narrow = size_t (*)(const DbChar* text, size_t length, char* out, size_t room) noexcept;

size_t CountOthers(const DbChar* text)
{
    size_t others = 0;
    while (!IsAscii(text[others])) {
        ++others;
    }
    return others;
}

/// Copies a text up to its end or `until`: what is ASCII as it is, `doubled` twice, and the rest through `narrow`.
size_t Copy(const DbChar* text, DbChar doubled, DbChar until, Narrow narrow, char* out, size_t room) noexcept
{
    const DbChar* const end = text + LengthOf(text);
    char* place = out;
    for (;;) {
        const size_t left = room - static_cast<size_t>(place - out);
        const size_t copied = CopyAscii(text, std::min(static_cast<size_t>(end - text), left), doubled, until, place);
        text += copied;
        place += copied;
        if (text == end || *text == until) {
            return static_cast<size_t>(place - out);
        }
        if (*text == doubled) {
            if (left - copied < 2) {
                return platform::kDoesNotFit;
            }
            *place++ = '\'';
            *place++ = '\'';
            ++text;
        } else if (IsAscii(*text)) {
            return platform::kDoesNotFit;
        } else {
            const size_t others = CountOthers(text);
            const size_t bytes = narrow(text, others, place, left - copied);
            if (bytes == platform::kDoesNotFit) {
                return bytes;
            }
            text += others;
            place += bytes;
        }
    }
}

size_t NarrowWith(const SqlArgument& text, DbChar doubled, char* out, size_t room) noexcept
{
    const bool escaped = text.kind == Kind::kEscaped || text.kind == Kind::kEscapedAnsi;
    if (text.wide == nullptr) {
        const std::string_view instead = escaped ? std::string_view() : kNoText;
        if (instead.size() > room) {
            return platform::kDoesNotFit;
        }
        return instead.copy(out, instead.size());
    }
    const bool ansi = text.kind == Kind::kAnsi || text.kind == Kind::kEscapedAnsi;
    // Escaping cuts a text at kEscapedUnits characters. With anything around it that is more than a statement holds, so
    // the cut never shows here: the statement is too long.
    return Copy(text.wide, escaped ? doubled : DbChar{0}, text.until,
                ansi ? &platform::AnsiFromWide : &platform::Utf8FromWide, out, room);
}

}  // namespace

size_t NarrowText(const SqlArgument& text, char* out, size_t room) noexcept
{
    return NarrowWith(text, kApostrophe, out, room);
}

size_t NarrowTextOnce(const SqlArgument& text, char* out, size_t room) noexcept
{
    return NarrowWith(text, 0, out, room);
}

void SqlText::append(const Sql& sql) noexcept
{
    const std::span<const std::string_view> pieces = sql.pieces();
    const std::span<const SqlArgument> arguments = sql.arguments();
    for (size_t i = 0; i < arguments.size() && !tooLong_; ++i) {
        literal(pieces[i]);
        put(arguments[i]);
    }
    literal(pieces.back());
}

void SqlText::literal(std::string_view text) noexcept
{
    tooLong_ = tooLong_ || text.size() > room();
    if (tooLong_) {
        return;
    }
    std::memcpy(end_, text.data(), text.size());
    end_ += text.size();
}

void SqlText::put(const SqlArgument& argument) noexcept
{
    switch (argument.kind) {
        case Kind::kName:
        case Kind::kDate:
            return literal(argument.narrow);
        case Kind::kNumber:
            return number(argument.number);
        default:
            break;
    }
    if (tooLong_) {
        return;
    }
    const size_t bytes = NarrowText(argument, end_, room());
    tooLong_ = bytes == platform::kDoesNotFit;
    if (!tooLong_) {
        end_ += bytes;
    }
}

void SqlText::number(int64_t value) noexcept
{
    char digits[24];
    const auto end = std::to_chars(digits, std::end(digits), value).ptr;
    literal({digits, static_cast<size_t>(end - digits)});
}

}  // namespace kesta
