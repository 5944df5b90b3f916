// An SQLite connection and the statements run on it. Only core/sqlite_*.cpp and the statement cache speak to SQLite
// itself. Callers hold the access lock; the module's own connection is handed out by the call frame.
//
//     if (db.exec(NarrowSql("DELETE FROM %s;", table)) != SqliteCode::kOk) ...
//     Statement rows = db.prepare(WideSql("SELECT [Path] FROM tMFile WHERE [BasePath] = '%s';", Escaped{folder}));
//     while (rows.step()) texts.push_back(rows.newText(0));
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include "core/results.h"
#include "core/sql.h"
#include "core/sql_text.h"
#include "core/statement_buffer.h"
#include "core/statement_cache.h"
#include "kesta_db/kesta_db.h"

struct sqlite3;
struct sqlite3_stmt;

namespace kesta {

class Connection;
class TextBlocks;

/// A query and its rows. Finalised, or given back to its connection, when it goes.
class Statement {
public:
    Statement(Statement&& other) noexcept
        : statement_(std::exchange(other.statement_, nullptr)),
          last_(other.last_),
          owner_(other.owner_),
          cached_(std::exchange(other.cached_, nullptr)),
          bound_(other.bound_)
    {
    }
    Statement& operator=(Statement&&) = delete;
    ~Statement();

    [[nodiscard]] bool prepared() const { return statement_ != nullptr; }
    /// Of the preparation, then of the latest step.
    [[nodiscard]] SqliteCode last() const { return last_; }
    /// Whether one more row has come.
    bool step() noexcept;

    // Columns of the current row.
    [[nodiscard]] bool isNull(int column) const noexcept;
    [[nodiscard]] int32_t int32(int column) const noexcept;
    [[nodiscard]] int64_t int64(int column) const noexcept;
    [[nodiscard]] DateValue date(int column) const noexcept;
    /// ReadTextColumn: a new text for the caller, or null for NULL and for an empty text.
    [[nodiscard]] DbChar* newText(int column) const;
    /// Where new texts are cut from, for as long as rows are read.
    void cutTextsFrom(TextBlocks& blocks) noexcept { blocks_ = &blocks; }
    /// The text itself, until the next step; null for NULL.
    [[nodiscard]] const DbChar* wideText(int column) const noexcept;
    [[nodiscard]] std::span<const uint8_t> blob(int column) const noexcept;
    /// The whole of a text as the file stores it, until the next step; none for what is no text.
    [[nodiscard]] std::optional<std::string_view> utf8(int column) const noexcept;

    // The parameters that the text itself has, counted from 1; where a cached statement is run, it has one at most.
    // What is bound must live until the statement has been stepped. A value that cannot be bound has the next step fail
    // with that code.
    void bindBlob(int parameter, const void* data, int32_t length) noexcept;
    /// Null binds NULL.
    void bindText(int parameter, const DbChar* text);

private:
    friend class Connection;
    Statement(sqlite3_stmt* statement, SqliteCode code) : statement_(statement), last_(code) {}
    /// One that stays compiled, with its arguments bound or the failure of that.
    Statement(Connection& owner, CachedStatement& cached, int bindingCode) noexcept;
    void noteBinding(int code) noexcept;
    [[nodiscard]] int parameterOf(int own) const noexcept;

    sqlite3_stmt* statement_;
    SqliteCode last_;
    Connection* owner_ = nullptr;  // of the cached statement
    CachedStatement* cached_ = nullptr;
    TextBlocks* blocks_ = nullptr;
    bool bound_ = true;
};

class Connection {
public:
    // What a statement may cost at most: a thousand million steps, some ten seconds. The largest list of a database of
    // ten million files takes a fifth of that; views and triggers that somebody else wrote into the file may never end.
    static constexpr int32_t kStepsPerRound = 100'000;
    static constexpr int32_t kMostRounds = 10'000;

    constexpr Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() { close(); }

    /// Leaves a handle behind even in many failures, as SQLite does: ask isOpen(). Through the system's files unless
    /// another of SQLite's VFS is named.
    SqliteCode open(const char* utf8Path, const char* vfsName = nullptr) noexcept;
    void close() noexcept;
    /// Forgets the handle without closing it: after a fork it is the other process's.
    void abandon() noexcept;
    [[nodiscard]] bool isOpen() const { return handle_ != nullptr; }

    /// Waits for other programs' locks with BusyRetry.
    void waitWhenBusy() noexcept;
    /// Waits for them as long, without a line in the trace.
    void waitSilently(int milliseconds) noexcept;
    /// From now on statements may read and change rows and nothing else: any other fails to compile, with kRefused.
    void allowRowsOnly() noexcept;
    /// A statement that takes more rounds of kStepsPerRound steps is interrupted: its step fails with kInterrupted.
    void limitRounds(int32_t rounds) noexcept { steps_.most = rounds; }

    /// From now on statements are made in this buffer, and stay compiled where that comes to the same. Until then only
    /// those without arguments can be run.
    void makeStatementsIn(StatementBuffer& buffer) noexcept { buffer_ = &buffer; }
    /// Where a text is put together piece by piece. Throws std::bad_alloc.
    [[nodiscard]] char* textBuffer() const { return buffer_->get(); }

    /// Called when the connection goes, for what is remembered of its file elsewhere.
    void whenClosed(void (*forget)() noexcept) noexcept { whenClosed_ = forget; }

    /// Runs a statement, or several, whose rows nobody wants. Throws std::bad_alloc when it has nowhere to be made.
    SqliteCode exec(const Sql& sql);
    SqliteCode exec(const SqlText& text) noexcept;
    SqliteCode exec(const char* text) noexcept;
    Statement prepare(const Sql& sql);
    Statement prepare(const char* text) noexcept;

    /// A number that changes when this connection has changed the file, or notices that another one has, which it does
    /// when a statement takes the file's lock; none if SQLite does not say.
    [[nodiscard]] std::optional<uint64_t> dataVersion() const noexcept;

    [[nodiscard]] int64_t lastInsertRowId() const noexcept;
    [[nodiscard]] int32_t totalChanges() const noexcept;

private:
    /// Of the statement that runs, in rounds.
    struct Steps {
        int32_t taken = 0;
        int32_t most = kMostRounds;
    };
    static int countRound(void* steps) noexcept;

    friend class Statement;
    Statement prepareText(const SqlText& text) noexcept;

    sqlite3* handle_ = nullptr;
    uint32_t timesOpened_ = 0;
    Steps steps_;
    StatementBuffer* buffer_ = nullptr;
    StatementCache cache_;
    void (*whenClosed_)() noexcept = nullptr;
};

}  // namespace kesta
