#include <sqlite3.h>

#include <string_view>

#include "core/caller_memory.h"
#include "core/connection.h"
#include "core/dates.h"

namespace kesta {
namespace {

/// The column's text up to its first zero byte, in UTF-8, in which the file stores it.
std::string_view Utf8Column(sqlite3_stmt* statement, int column)
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    if (text == nullptr) return {};
    const std::string_view whole(text, static_cast<size_t>(sqlite3_column_bytes(statement, column)));
    return whole.substr(0, whole.find('\0'));
}

bool IsAscii(std::string_view text)
{
    unsigned char all = 0;
    for (const char c : text) all |= static_cast<unsigned char>(c);
    return all < 0x80;
}

const DbChar* WideColumn(sqlite3_stmt* statement, int column)
{
    return static_cast<const DbChar*>(sqlite3_column_text16(statement, column));
}

}  // namespace

Statement::~Statement()
{
    if (kept_) {
        sqlite3_reset(statement_);  // lets go of the file
    } else {
        sqlite3_finalize(statement_);
    }
}

bool Statement::step() noexcept
{
    last_ = static_cast<SqliteCode>(sqlite3_step(statement_));
    return last_ == SqliteCode::kRow;
}

int32_t Statement::int32(int column) const noexcept
{
    return sqlite3_column_int(statement_, column);
}

int64_t Statement::int64(int column) const noexcept
{
    return sqlite3_column_int64(statement_, column);
}

DateValue Statement::date(int column) const noexcept
{
    DateValue date = {};
    if (ParseStoredDate(Utf8Column(statement_, column), date)) return date;
    return ParseDateTime(WideColumn(statement_, column));
}

DbChar* Statement::newText(int column) const
{
    const std::string_view text = Utf8Column(statement_, column);
    if (text.empty()) return nullptr;
    // Most texts are ASCII: they are widened straight into their final place, which saves the detour over SQLite's own
    // conversion.
    if (!IsAscii(text)) return DuplicateText(WideColumn(statement_, column));
    DbChar* copy = NewText(text.size());
    for (size_t i = 0; i < text.size(); ++i) copy[i] = static_cast<DbChar>(static_cast<unsigned char>(text[i]));
    return copy;
}

}  // namespace kesta
