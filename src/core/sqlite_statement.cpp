#include <sqlite3.h>

#include <algorithm>
#include <climits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "core/ascii.h"
#include "core/caller_memory.h"
#include "core/connection.h"
#include "core/dates.h"
#include "core/text.h"
#include "core/utf8.h"

namespace kesta {
namespace {

constexpr size_t kShortText = 1024;

/// The column's text up to its first zero byte, in UTF-8, in which the file stores it.
std::string_view Utf8Column(sqlite3_stmt* statement, int column)
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return text != nullptr ? std::string_view(text) : std::string_view();
}

const DbChar* WideColumn(sqlite3_stmt* statement, int column)
{
    return static_cast<const DbChar*>(sqlite3_column_text16(statement, column));
}

}  // namespace

Statement::Statement(Connection& owner, CachedStatement& cached, int bindingCode) noexcept
    : statement_(cached.statement), last_(SqliteCode::kOk), owner_(&owner), cached_(&cached)
{
    noteBinding(bindingCode);
}

Statement::~Statement()
{
    if (cached_ != nullptr) {
        owner_->cache_.giveBack(owner_->handle_, *cached_, last_ == SqliteCode::kDone);
    } else {
        sqlite3_finalize(statement_);
    }
}

bool Statement::step() noexcept
{
    if (!bound_) {
        return false;
    }
    last_ = static_cast<SqliteCode>(sqlite3_step(statement_));
    return last_ == SqliteCode::kRow;
}

bool Statement::isNull(int column) const noexcept
{
    return sqlite3_column_type(statement_, column) == SQLITE_NULL;
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
    if (ParseStoredDate(Utf8Column(statement_, column), date)) {
        return date;
    }
    return ParseDateTime(WideColumn(statement_, column));
}

DbChar* Statement::newText(int column) const
{
    const std::string_view text = Utf8Column(statement_, column);
    if (text.empty()) {
        return nullptr;
    }
    // SQLite's own conversion is a detour: most texts are ASCII and are widened straight into their final place, others
    // are mostly short enough for the stack.
    if (IsAscii(text)) {
        DbChar* copy = NewText(text.size(), blocks_);
        WidenAscii(text, copy);
        return copy;
    }
    DbChar units[kShortText];
    const std::optional<size_t> length = text.size() <= kShortText ? WidenUtf8(text, units) : std::nullopt;
    // What becomes of bytes that are no UTF-8 only SQLite knows.
    if (!length.has_value()) {
        return DuplicateText(WideColumn(statement_, column));
    }
    DbChar* copy = NewText(*length, blocks_);
    std::copy_n(units, *length, copy);
    return copy;
}

const DbChar* Statement::wideText(int column) const noexcept
{
    return WideColumn(statement_, column);
}

std::span<const uint8_t> Statement::blob(int column) const noexcept
{
    const auto* data = static_cast<const uint8_t*>(sqlite3_column_blob(statement_, column));
    return {data, static_cast<size_t>(sqlite3_column_bytes(statement_, column))};
}

std::optional<std::string_view> Statement::utf8(int column) const noexcept
{
    if (sqlite3_column_type(statement_, column) != SQLITE_TEXT) {
        return std::nullopt;
    }
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    const int bytes = sqlite3_column_bytes(statement_, column);
    return text != nullptr ? std::optional(std::string_view(text, static_cast<size_t>(bytes))) : std::nullopt;
}

void Statement::bindBlob(int parameter, const void* data, int32_t length) noexcept
{
    // SQLite takes no data for NULL; data of no length is an empty blob.
    const void* start = data == nullptr && length == 0 ? "" : data;
    noteBinding(sqlite3_bind_blob(statement_, parameterOf(parameter), start, length, SQLITE_STATIC));
}

void Statement::bindText(int parameter, const DbChar* text)
{
    if (text == nullptr) {
        noteBinding(sqlite3_bind_null(statement_, parameterOf(parameter)));
        return;
    }
    const size_t length = LengthOf(text);
    if (length > INT_MAX / sizeof(DbChar)) {
        throw std::length_error("text to bind");
    }
    // SQLite copies here, for the repaired text does not outlive the call. Otherwise it would mistake a lone surrogate
    // and its neighbour for a pair.
    const std::basic_string<DbChar> valid = ReplaceLoneSurrogates({text, length});
    noteBinding(sqlite3_bind_text16(statement_, parameterOf(parameter), valid.data(),
                                    static_cast<int>(length * sizeof(DbChar)), SQLITE_TRANSIENT));
}

/// In a cached statement the arguments are parameters too.
int Statement::parameterOf(int own) const noexcept
{
    constexpr int kNoSuchParameter = 0;
    if (cached_ == nullptr) {
        return own;
    }
    return own == 1 && cached_->own != 0 ? cached_->own : kNoSuchParameter;
}

void Statement::noteBinding(int code) noexcept
{
    if (code == SQLITE_OK || !bound_) {
        return;
    }
    bound_ = false;
    last_ = static_cast<SqliteCode>(code);
}

}  // namespace kesta
