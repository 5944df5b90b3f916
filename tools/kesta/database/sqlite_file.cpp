#include "database/sqlite_file.h"

#include <sqlite3.h>

#include <chrono>
#include <memory>

#include "os/native_path.h"
#include "os/system.h"

namespace kesta {
namespace {

using Clock = std::chrono::steady_clock;

// As long as the library waits.
constexpr std::chrono::seconds kPatience{10};
constexpr int kPauseMs = 20;

// SQLite's busy handler. Another program may have the database locked for as long as a statement takes.
int WaitWhenBusy(void* since, int attempt)
{
    auto& began = *static_cast<Clock::time_point*>(since);
    if (attempt == 0) {
        began = Clock::now();
    }
    if (os::Interrupted() || Clock::now() - began > kPatience) {
        return 0;
    }
    (void)sqlite3_sleep(kPauseMs);
    return 1;
}

Clock::time_point& Waiting()
{
    static Clock::time_point began;
    return began;
}

os::Failure KindOf(int code)
{
    switch (code & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return os::Failure::kBusy;
        case SQLITE_FULL:
            return os::Failure::kFull;
        case SQLITE_READONLY:
            return os::Failure::kReadOnly;
        case SQLITE_CANTOPEN:
        case SQLITE_PERM:
        case SQLITE_AUTH:
            return os::Failure::kDenied;
        default:
            return os::Failure::kOther;
    }
}

}  // namespace

std::string SqliteRow::text(int column) const
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return text == nullptr ? std::string()
                           : std::string(text, static_cast<size_t>(sqlite3_column_bytes(statement_, column)));
}

int64_t SqliteRow::number(int column) const
{
    return sqlite3_column_int64(statement_, column);
}

SqliteFile::~SqliteFile()
{
    close();
}

void SqliteFile::close()
{
    (void)sqlite3_close(handle_);
    handle_ = nullptr;
}

os::Status SqliteFile::open(const std::string& path, Access access)
{
    close();
    const int flags = access == Access::kRead    ? SQLITE_OPEN_READONLY
                      : access == Access::kWrite ? SQLITE_OPEN_READWRITE
                                                 : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    os::Status status = result(sqlite3_open_v2(os::ToNativePath(path).c_str(), &handle_, flags, nullptr));
    if (!status.ok()) {
        close();
        return status;
    }
    return result(sqlite3_busy_handler(handle_, WaitWhenBusy, &Waiting()));
}

os::Status SqliteFile::query(const std::string& sql, const std::function<void(const SqliteRow&)>& onRow)
{
    sqlite3_stmt* raw = nullptr;
    if (os::Status status = result(sqlite3_prepare_v2(handle_, sql.c_str(), -1, &raw, nullptr)); !status.ok()) {
        return status;
    }
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> statement(raw, sqlite3_finalize);
    for (;;) {
        const int code = sqlite3_step(raw);
        if (code != SQLITE_ROW) {
            return result(code);
        }
        onRow(SqliteRow(raw));
    }
}

os::Status SqliteFile::exec(const std::string& sql)
{
    return result(sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr));
}

os::Status SqliteFile::copyTo(SqliteFile& target)
{
    sqlite3_backup* copy = sqlite3_backup_init(target.handle_, "main", handle_, "main");
    if (copy == nullptr) {
        return target.result(sqlite3_errcode(target.handle_));
    }
    constexpr int kAllPages = -1;
    const int code = sqlite3_backup_step(copy, kAllPages);  // Waits by the busy handlers.
    const int finished = sqlite3_backup_finish(copy);
    return target.result(code == SQLITE_DONE ? finished : code);
}

int64_t SqliteFile::changes() const
{
    return sqlite3_changes(handle_);
}

os::Status SqliteFile::result(int code)
{
    const int kind = code & 0xFF;
    if (kind == SQLITE_OK || kind == SQLITE_DONE) {
        return {};
    }
    // An error in a statement that is right means a table or column that should be there, and is not.
    isDamaged_ = kind == SQLITE_CORRUPT || kind == SQLITE_NOTADB || kind == SQLITE_ERROR;
    if (KindOf(code) == os::Failure::kBusy) {
        return {os::Failure::kBusy, "another program has the database locked"};
    }
    return {KindOf(code), kind == SQLITE_ERROR ? sqlite3_errmsg(handle_) : sqlite3_errstr(code)};
}

}  // namespace kesta
