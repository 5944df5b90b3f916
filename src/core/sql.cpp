#include "core/sql.h"

#include <algorithm>
#include <cassert>
#include <charconv>
#include <new>

#include "core/ascii.h"
#include "core/module.h"
#include "core/text.h"
#include "platform/code_page.h"

namespace kesta {
namespace {

size_t CountOthers(const DbChar* text)
{
    size_t others = 0;
    while (!IsAscii(text[others])) ++others;
    return others;
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

/// Copies a text up to its end or `until`: what is ASCII as it is, `doubled` twice, and the rest through `narrow`.
void Sql::copy(const DbChar* text, DbChar doubled, DbChar until, Narrow narrow)
{
    const DbChar* const end = text + LengthOf(text);
    while (!tooLong_) {
        const size_t most = std::min(static_cast<size_t>(end - text), room());
        const size_t copied = CopyAscii(text, most, doubled, until, end_);
        text += copied;
        end_ += copied;
        if (text == end || *text == until) return;
        if (*text == doubled) {
            literal("''");
            ++text;
        } else if (IsAscii(*text)) {
            tooLong_ = true;  // no room for it
        } else {
            const size_t others = CountOthers(text);
            const size_t bytes = narrow(text, others, end_, room());
            text += others;
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

void Sql::put(const EscapedAnsi& text)
{
    if (text.text != nullptr) copy(text.text, kApostrophe, 0, &platform::AnsiFromWide);
}

void Sql::put(int64_t number)
{
    char digits[24];
    const auto end = std::to_chars(digits, std::end(digits), number).ptr;
    literal({digits, static_cast<size_t>(end - digits)});
}

}  // namespace kesta
