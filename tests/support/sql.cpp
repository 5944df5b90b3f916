#include "support/sql.h"

#include <sqlite3.h>

#include <memory>
#include <stdexcept>
#include <string_view>

namespace kesta::test {
namespace {

struct Close {
    void operator()(sqlite3* db) const { sqlite3_close(db); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, Close>;
using Statement = std::unique_ptr<sqlite3_stmt, Close>;

constexpr int kPatienceMs = 20000;  // other programs of a test may hold the file for a moment

std::runtime_error Failure(sqlite3* db, const std::string& what)
{
    return std::runtime_error(what + ": " + sqlite3_errmsg(db));
}

Database Open(const std::filesystem::path& file)
{
    const std::u8string name = file.u8string();
    sqlite3* opened = nullptr;
    const int result =
        sqlite3_open_v2(reinterpret_cast<const char*>(name.c_str()), &opened, SQLITE_OPEN_READWRITE, nullptr);
    Database db(opened);
    if (result != SQLITE_OK) {
        throw Failure(opened, file.string());
    }
    sqlite3_busy_timeout(opened, kPatienceMs);
    return db;
}

Statement Prepare(sqlite3* db, std::string_view sql, std::string_view& rest)
{
    sqlite3_stmt* prepared = nullptr;
    const char* tail = nullptr;
    if (sqlite3_prepare_v2(db, sql.data(), static_cast<int>(sql.size()), &prepared, &tail) != SQLITE_OK) {
        throw Failure(db, std::string(sql));
    }
    rest = sql.substr(static_cast<size_t>(tail - sql.data()));
    return Statement(prepared);
}

void AppendRow(std::string& out, sqlite3_stmt* row)
{
    for (int column = 0; column < sqlite3_column_count(row); ++column) {
        if (column > 0) {
            out += '|';
        }
        if (const void* bytes = sqlite3_column_text(row, column); bytes != nullptr) {
            out.append(static_cast<const char*>(bytes), static_cast<size_t>(sqlite3_column_bytes(row, column)));
        } else {
            out += "<null>";
        }
    }
}

}  // namespace

std::string Sql::text(const std::string& query) const
{
    const Database db = Open(file_);
    std::string_view rest;
    const Statement rows = Prepare(db.get(), query, rest);
    std::string out;
    int result = SQLITE_ROW;
    for (bool first = true; (result = sqlite3_step(rows.get())) == SQLITE_ROW; first = false) {
        if (!first) {
            out += '\n';
        }
        AppendRow(out, rows.get());
    }
    if (result != SQLITE_DONE) {
        throw Failure(db.get(), query);
    }
    return out;
}

void Sql::exec(const std::string& statements) const
{
    const Database db = Open(file_);
    for (std::string_view rest = statements; !rest.empty();) {
        const Statement statement = Prepare(db.get(), rest, rest);
        if (statement == nullptr) {
            continue;  // blanks or a comment
        }
        while (sqlite3_step(statement.get()) == SQLITE_ROW) {
        }
        if (sqlite3_errcode(db.get()) != SQLITE_OK && sqlite3_errcode(db.get()) != SQLITE_DONE) {
            throw Failure(db.get(), statements);
        }
    }
}

}  // namespace kesta::test
