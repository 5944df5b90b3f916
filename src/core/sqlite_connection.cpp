#include <sqlite3.h>

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
    if (utf8Path == nullptr) {
        return SqliteCode::kCannotOpen;
    }
    const auto code = static_cast<SqliteCode>(
        sqlite3_open_v2(utf8Path, &handle_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, vfsName));
    ++timesOpened_;
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
    cache_.drop();
    if (whenClosed_ != nullptr) {
        whenClosed_();
    }
    sqlite3_close(handle_);
    handle_ = nullptr;
}

void Connection::abandon() noexcept
{
    cache_.abandon();
    if (whenClosed_ != nullptr) {
        whenClosed_();
    }
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

SqliteCode Connection::exec(const SqlText& text) noexcept
{
    return text.tooLong() ? SqliteCode::kTooBig : exec(text.text().data());
}

SqliteCode Connection::exec(const Sql& sql)
{
    char* buffer = textBuffer();
    steps_.taken = 0;  // compiling counts too
    const StatementCache::Found found =
        cache_.find(handle_, sql, buffer, StatementCache::Lifetime::kUntilNextStatement);
    switch (found.verdict) {
        case StatementCache::Verdict::kCached: {
            Statement statement(*this, *found.entry, found.code);
            while (statement.step()) {
            }
            return statement.last() == SqliteCode::kDone ? SqliteCode::kOk : statement.last();
        }
        case StatementCache::Verdict::kRefused:
            return static_cast<SqliteCode>(found.code);
        default:
            break;
    }
    SqlText text(buffer);
    text.append(sql);
    return exec(text);
}

Statement Connection::prepare(const Sql& sql)
{
    char* buffer = textBuffer();
    steps_.taken = 0;
    const StatementCache::Found found = cache_.find(handle_, sql, buffer, StatementCache::Lifetime::kUntilFinished);
    switch (found.verdict) {
        case StatementCache::Verdict::kCached:
            return {*this, *found.entry, found.code};
        case StatementCache::Verdict::kRefused:
            return {nullptr, static_cast<SqliteCode>(found.code)};
        default:
            break;
    }
    SqlText text(buffer);
    text.append(sql);
    return prepareText(text);
}

Statement Connection::prepareText(const SqlText& text) noexcept
{
    if (text.tooLong()) {
        return {nullptr, SqliteCode::kTooBig};
    }
    sqlite3_stmt* statement = nullptr;
    // The terminator counts, which spares SQLite a copy of the text.
    const int bytes = static_cast<int>(text.text().size()) + 1;
    const int code = sqlite3_prepare_v2(handle_, text.text().data(), bytes, &statement, nullptr);
    return {statement, static_cast<SqliteCode>(code)};
}

Statement Connection::prepare(const char* text) noexcept
{
    steps_.taken = 0;
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v2(handle_, text, -1, &statement, nullptr);
    return {statement, static_cast<SqliteCode>(code)};
}

std::optional<uint64_t> Connection::dataVersion() const noexcept
{
    unsigned version = 0;
    if (sqlite3_file_control(handle_, "main", SQLITE_FCNTL_DATA_VERSION, &version) != SQLITE_OK) {
        return std::nullopt;
    }
    return static_cast<uint64_t>(timesOpened_) << 32 | version;
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
