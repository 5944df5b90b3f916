#include "core/sql.h"

#include <cassert>
#include <charconv>
#include <cstring>
#include <new>

#include "core/module.h"
#include "core/text.h"
#include "platform/code_page.h"

namespace kesta {
namespace {

constexpr bool IsAscii(DbChar unit)
{
    return unit < 0x80;
}

/// Copies characters that are one byte in UTF-8 and in every ANSI code page, up to `room` of them, and stops before the
/// first other one, the end, or one of the stops.
const DbChar* CopyAscii(const DbChar* text, DbChar stop, DbChar until, char*& out, size_t room)
{
    const char* const limit = out + room;
    while (*text != 0 && IsAscii(*text) && *text != stop && *text != until && out != limit) {
        *out++ = static_cast<char>(*text++);
    }
    return text;
}

const DbChar* SkipOthers(const DbChar* text)
{
    while (!IsAscii(*text)) ++text;
    return text;
}

}  // namespace

Sql::Sql() : begin_(TheModule().takeStatementBuffer()), end_(begin_)
{
    if (begin_ == nullptr) throw std::bad_alloc();
}

Sql::~Sql()
{
    TheModule().giveStatementBufferBack();
}

void Sql::literal(std::string_view text)
{
    if (text.size() > room()) {
        tooLong_ = true;
        return;
    }
    std::memcpy(end_, text.data(), text.size());
    end_ += text.size();
}

/// Copies a text up to its end or `until`: what is ASCII as it is, `doubled` twice, and the rest through `narrow`.
void Sql::copy(const DbChar* text, DbChar doubled, DbChar until, Narrow narrow)
{
    while (!tooLong_) {
        text = CopyAscii(text, doubled, until, end_, room());
        if (*text == 0 || *text == until) return;
        if (*text == doubled) {
            literal("''");
            ++text;
        } else if (IsAscii(*text)) {
            tooLong_ = true;  // no room for it
        } else {
            const DbChar* run = text;
            text = SkipOthers(text);
            const size_t bytes = narrow(run, static_cast<size_t>(text - run), end_, room());
            tooLong_ = bytes == platform::kDoesNotFit;
            if (!tooLong_) end_ += bytes;
        }
    }
}

void Sql::put(const Plain& text)
{
    if (text.text == nullptr) return literal(kNoText);
    copy(text.text, 0, 0, &platform::Utf8FromWide);
}

void Sql::put(const Ansi& text)
{
    if (text.text == nullptr) return literal(kNoText);
    copy(text.text, 0, 0, &platform::AnsiFromWide);
}

void Sql::put(const Escaped& text)
{
    // Escaping cuts a text at kEscapedUnits characters. With anything around it that is more than a statement holds, so
    // the cut never shows here: the statement is too long.
    if (text.text != nullptr) copy(text.text, kApostrophe, text.until, &platform::Utf8FromWide);
}

void Sql::put(int64_t number)
{
    char digits[24];
    const auto end = std::to_chars(digits, std::end(digits), number).ptr;
    literal({digits, static_cast<size_t>(end - digits)});
}

}  // namespace kesta
