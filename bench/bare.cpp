#include "bare.h"

#include <cstring>

namespace kesta::bench {

Bare::Bare(const std::filesystem::path& database)
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
    Require(sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql);
}

template <class ReadRow>
size_t Bare::forEachRow(const char* sql, ReadRow&& readRow)
{
    sqlite3_stmt* statement = nullptr;
    // The terminator counts, which spares SQLite a copy of the text.
    const int bytes = static_cast<int>(std::strlen(sql)) + 1;
    Require(sqlite3_prepare_v2(handle_, sql, bytes, &statement, nullptr) == SQLITE_OK, sql);
    size_t rows = 0;
    for (; sqlite3_step(statement) == SQLITE_ROW && readRow(statement); ++rows) {
    }
    Require(sqlite3_finalize(statement) == SQLITE_OK, sql);
    return rows;
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
        for (int i = 0; i < texts; ++i) Require(sqlite3_column_text16(row, i) != nullptr, sql);
        return true;
    });
}

size_t Bare::readUtf8(const char* sql, int texts)
{
    return forEachRow(sql, [&](sqlite3_stmt* row) {
        for (int i = 0; i < texts; ++i) Require(sqlite3_column_text(row, i) != nullptr, sql);
        return true;
    });
}

size_t Bare::readMainFolders(const char* sql)
{
    return forEachRow(sql, [&](sqlite3_stmt* row) {
        Require(sqlite3_column_int(row, 0) != 0, sql);
        Require(sqlite3_column_int(row, 1) == 0 && sqlite3_column_int64(row, 2) == 0, sql);
        Require(sqlite3_column_text16(row, 3) != nullptr, sql);
        return true;
    });
}

std::string Bare::dump(const char* sql)
{
    std::string text;
    forEachRow(sql, [&](sqlite3_stmt* row) {
        for (int i = 0; i < sqlite3_column_count(row); ++i) {
            const auto* value = reinterpret_cast<const char*>(sqlite3_column_text(row, i));
            text += value != nullptr ? value : "NULL";
            text += '|';
        }
        text += '\n';
        return true;
    });
    return text;
}

std::string Quoted(const std::u16string& text)
{
    std::string quoted;
    for (const char c : Utf8(text)) quoted.append(c == '\'' ? 2 : 1, c);
    return quoted;
}

std::string PhoneText(const std::u16string& imei)
{
    return "SELECT [ID] FROM tPhone WHERE  [IMEI] = '" + Utf8(imei) + "';";
}

std::string InsertText(const File& file)
{
    return "INSERT INTO tMFile ([PhoneID], [Path], [BasePath], [PhonePath], [ModifiedTime]) VALUES (1, '" +
           Quoted(file.path) + "', '" + Quoted(file.basePath) + "', '" + Quoted(file.phonePath) + "', '" +
           file.modifiedText + "');";
}

std::string FlagText(const File& file)
{
    return "UPDATE tMFolder SET [Flag] = 0 WHERE [PhoneID] = 1 AND [PATH] = '" + Quoted(file.basePath) + "';";
}

std::string LookUpText(const File& file)
{
    return "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vMFile WHERE [IMEI] = '" +
           Utf8(kImei) + "' AND [Path] = '" + Quoted(file.path) + "';";
}

std::string CountAllText()
{
    return "SELECT COUNT(*) FROM vMFile WHERE [IMEI] = '" + Utf8(kImei) + "';";
}

std::string ListAllText()
{
    return "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vMFile WHERE [IMEI] = '" +
           Utf8(kImei) + "';";
}

std::string CountFolderText(const std::u16string& folder)
{
    return "SELECT COUNT(*) FROM vMFile WHERE [IMEI] = '" + Utf8(kImei) + "'AND [BasePath] = '" + Quoted(folder) + "';";
}

std::string ListFolderText(const std::u16string& folder)
{
    return "SELECT [Path], [BasePath], [PhonePath], DATETIME([ModifiedTime]) FROM vMFile WHERE [IMEI] = '" +
           Utf8(kImei) + "'AND [BasePath] = '" + Quoted(folder) + "';";
}

std::string NewPhoneText(const std::u16string& imei, const std::u16string& name)
{
    return "INSERT INTO tPhone ([IMEI], [IMEI2], [Name]) \t\t\t\tVALUES ('" + Quoted(imei) + "', '" +
           Quoted(imei.substr(0, imei.find(u':'))) + "', '" + Quoted(name) + "');";
}

}  // namespace kesta::bench
