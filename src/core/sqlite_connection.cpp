#include <sqlite3.h>

#include <algorithm>
#include <cstring>

#include "core/busy_retry.h"
#include "core/connection.h"

namespace kesta {
namespace {

/// What statements of rows consist of, in their triggers and views too.
int AllowRows(void* /*unused*/, int action, const char* /*first*/, const char* /*second*/, const char* /*database*/,
              const char* /*trigger*/) noexcept
{
    switch (action) {
        case SQLITE_SELECT:
        case SQLITE_READ:
        case SQLITE_FUNCTION:
        case SQLITE_RECURSIVE:
        case SQLITE_INSERT:
        case SQLITE_UPDATE:
        case SQLITE_DELETE:
            return SQLITE_OK;
        default:
            return SQLITE_DENY;
    }
}

}  // namespace

SqliteCode Connection::open(const char* utf8Path, const char* vfsName) noexcept
{
    if (utf8Path == nullptr) return SqliteCode::kCannotOpen;
    const auto code = static_cast<SqliteCode>(
        sqlite3_open_v2(utf8Path, &handle_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, vfsName));
    if (code == SqliteCode::kOk) {
        // Caller's texts stand in the statements: none of them may reach another file or write to the schema directly.
        // Nor is the schema trusted, which whoever can write the file can change.
        sqlite3_db_config(handle_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
        sqlite3_db_config(handle_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
        sqlite3_limit(handle_, SQLITE_LIMIT_ATTACHED, 0);
        sqlite3_progress_handler(handle_, kStepsPerRound, &countRound, &steps_);
    }
    return code;
}

void Connection::close() noexcept
{
    for (Kept& kept : kept_) {
        sqlite3_finalize(kept.statement);
        kept = {};
    }
    sqlite3_close(handle_);
    handle_ = nullptr;
}

void Connection::abandon() noexcept
{
    kept_ = {};
    handle_ = nullptr;
}

void Connection::waitWhenBusy() noexcept
{
    sqlite3_busy_handler(handle_, &BusyRetry, nullptr);
}

void Connection::waitSilently(int milliseconds) noexcept
{
    sqlite3_busy_timeout(handle_, milliseconds);
}

void Connection::allowRowsOnly() noexcept
{
    sqlite3_set_authorizer(handle_, &AllowRows, nullptr);
}

int Connection::countRound(void* steps) noexcept
{
    auto& counted = *static_cast<Steps*>(steps);
    return ++counted.taken > counted.most ? 1 : 0;
}

SqliteCode Connection::exec(const char* text) noexcept
{
    steps_.taken = 0;
    return static_cast<SqliteCode>(sqlite3_exec(handle_, text, nullptr, nullptr, nullptr));
}

SqliteCode Connection::exec(const Sql& sql) noexcept
{
    return sql.tooLong() ? SqliteCode::kTooBig : exec(sql.text().data());
}

Statement Connection::prepare(const Sql& sql) noexcept
{
    if (sql.tooLong()) return {nullptr, SqliteCode::kTooBig, false};
    steps_.taken = 0;
    sqlite3_stmt* statement = nullptr;
    // The terminator counts, which spares SQLite a copy of the text.
    const int bytes = static_cast<int>(sql.text().size()) + 1;
    const int code = sqlite3_prepare_v2(handle_, sql.text().data(), bytes, &statement, nullptr);
    return {statement, static_cast<SqliteCode>(code), false};
}

Statement Connection::prepareKept(const Sql& sql) noexcept
{
    if (sql.tooLong()) return prepare(sql);
    const std::string_view text = sql.text();
    for (Kept& kept : kept_) {
        if (kept.statement != nullptr && kept.length == text.size() &&
            std::memcmp(kept.text.data(), text.data(), text.size()) == 0) {
            steps_.taken = 0;
            return {kept.statement, SqliteCode::kOk, true};
        }
    }
    Kept& oldest = kept_[nextKept_];
    if (text.size() > oldest.text.size()) return prepare(sql);
    Statement statement = prepare(sql);
    if (!statement.prepared()) return {nullptr, statement.last(), false};
    sqlite3_finalize(oldest.statement);
    std::copy_n(text.data(), text.size(), oldest.text.data());
    oldest.length = text.size();
    oldest.statement = statement.statement_;
    statement.statement_ = nullptr;
    nextKept_ = (nextKept_ + 1) % kept_.size();
    return {oldest.statement, SqliteCode::kOk, true};
}

SqliteCode Connection::execKept(const Sql& sql) noexcept
{
    Statement statement = prepareKept(sql);
    if (!statement.prepared()) return statement.last();
    while (statement.step()) {
    }
    return statement.last() == SqliteCode::kDone ? SqliteCode::kOk : statement.last();
}

int64_t Connection::lastInsertRowId() const noexcept
{
    return sqlite3_last_insert_rowid(handle_);
}

int32_t Connection::totalChanges() const noexcept
{
    return sqlite3_total_changes(handle_);
}

}  // namespace kesta
