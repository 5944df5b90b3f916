// A database file as SQLite sees it, past the library: for copies of it and for checks that the library has no
// function for.
//
//     SqliteFile database;
//     os::Status status = database.open(path, SqliteFile::Access::kRead);
//     status = database.query("SELECT [IMEI] FROM tPhone", [&](const SqliteRow& row) { phones.push_back(row.text(0));
//     });
//
// No call of the library may run in this process meanwhile: on POSIX systems closing a file drops every lock that the
// process has on it, and the library has an SQLite of its own. Between its calls it holds none.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "os/status.h"

struct sqlite3;
struct sqlite3_stmt;

namespace kesta {

/// A row of an answer; good until the next one.
class SqliteRow {
public:
    explicit SqliteRow(sqlite3_stmt* statement) : statement_(statement) {}
    /// Empty for a null.
    [[nodiscard]] std::string text(int column) const;
    [[nodiscard]] int64_t number(int column) const;

private:
    sqlite3_stmt* statement_;
};

class SqliteFile {
public:
    enum class Access { kRead, kWrite, kCreate };

    SqliteFile() = default;
    SqliteFile(const SqliteFile&) = delete;
    SqliteFile& operator=(const SqliteFile&) = delete;
    ~SqliteFile();

    os::Status open(const std::string& path, Access access);
    void close();
    /// One statement, with a call for each row of its answer.
    os::Status query(const std::string& sql, const std::function<void(const SqliteRow&)>& onRow);
    /// Statements without an answer.
    os::Status exec(const std::string& sql);
    /// Makes the target's contents those of this database, in one transaction.
    os::Status copyTo(SqliteFile& target);
    /// Whether the last failure was that the file is damaged, or not a database.
    [[nodiscard]] bool isDamaged() const { return isDamaged_; }
    /// How many rows the last statement has changed.
    [[nodiscard]] int64_t changes() const;

private:
    os::Status result(int code);

    sqlite3* handle_ = nullptr;
    bool isDamaged_ = false;
};

}  // namespace kesta
