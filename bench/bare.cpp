#include "bare.h"

namespace kesta::bench {

Bare::Bare(const std::filesystem::path& database, TextForm form) : form_(form)
{
    Require(sqlite3_open(database.c_str(), &handle_) == SQLITE_OK, "opening the database");
}

void Bare::close()
{
    Require(sqlite3_close(handle_) == SQLITE_OK, "closing the database");
    handle_ = nullptr;
}

void Bare::exec(const char* sql)
{
    Require(tryExec(sql) == SQLITE_OK, sql);
}

sqlite3_stmt* Bare::prepare(const char* sql)
{
    sqlite3_stmt* statement = nullptr;
    // The terminator counts, which spares SQLite a copy of the text.
    const int bytes = static_cast<int>(std::strlen(sql)) + 1;
    Require(sqlite3_prepare_v2(handle_, sql, bytes, &statement, nullptr) == SQLITE_OK, sql);
    return statement;
}

void Bare::execWith(const char* sql, std::span<const uint8_t> data)
{
    sqlite3_stmt* statement = prepare(sql);
    sqlite3_bind_blob(statement, 1, data.data(), static_cast<int>(data.size()), SQLITE_STATIC);
    Require(sqlite3_step(statement) == SQLITE_DONE, sql);
    Require(sqlite3_finalize(statement) == SQLITE_OK, sql);
}

int Bare::firstInt(const char* sql, int otherwise)
{
    int first = otherwise;
    forEachRow(sql, [&](sqlite3_stmt* row) {
        first = sqlite3_column_int(row, 0);
        return false;
    });
    return first;
}

size_t Bare::readTexts(const char* sql, int texts)
{
    return forEachRow(sql, [&](sqlite3_stmt* row) {
        for (int i = 0; i < texts; ++i) {
            Require(text(row, i), sql);
        }
        return true;
    });
}

std::string Bare::dump(const char* sql)
{
    std::string dumped;
    forEachRow(sql, [&](sqlite3_stmt* row) {
        for (int i = 0; i < sqlite3_column_count(row); ++i) {
            const auto* value = reinterpret_cast<const char*>(sqlite3_column_text(row, i));
            dumped += value != nullptr ? value : "NULL";
            dumped += '|';
        }
        dumped += '\n';
        return true;
    });
    return dumped;
}

std::string Quoted(const std::u16string& text)
{
    std::string quoted;
    for (const char c : Utf8(text)) {
        quoted.append(c == '\'' ? 2 : 1, c);
    }
    return quoted;
}

std::string PhoneText(const std::u16string& imei)
{
    return "SELECT [ID] FROM tPhone WHERE  [IMEI] = '" + Utf8(imei) + "';";
}

std::string BookmarkTypeText(const std::u16string& imei)
{
    return "SELECT [BookMarkType] FROM tPhone WHERE  [IMEI] = '" + Utf8(imei) + "';";
}

}  // namespace kesta::bench
