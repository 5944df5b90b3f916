// The baseline: the library's own statements through bare SQLite, the same build of it. Texts are made beforehand, and
// every column is read in the form in which a caller wants it, without a copy.
#pragma once

#include <sqlite3.h>

#include <cstring>
#include <filesystem>
#include <span>
#include <string>

#include "data_set.h"

namespace kesta::bench {

/// How text columns are read.
enum class TextForm { kUtf16, kUtf8 };

class Bare {
public:
    explicit Bare(const std::filesystem::path& database, TextForm form = TextForm::kUtf16);
    Bare(const Bare&) = delete;
    Bare& operator=(const Bare&) = delete;
    ~Bare() { close(); }
    void close();

    void exec(const char* sql);
    /// Where a failure may be meant: its code.
    int tryExec(const char* sql) { return sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr); }
    /// Runs a statement with its first parameter bound.
    void execWith(const char* sql, std::span<const uint8_t> data);

    /// Calls `readRow(row)` until it says false; gives the number of rows that it took.
    template <class ReadRow>
    size_t forEachRow(const char* sql, ReadRow&& readRow);
    /// Reads the text and says whether there is one.
    [[nodiscard]] bool text(sqlite3_stmt* row, int column) const
    {
        if (form_ == TextForm::kUtf8) {
            return sqlite3_column_text(row, column) != nullptr;
        }
        return sqlite3_column_text16(row, column) != nullptr;
    }

    /// The first column of the first row, or `otherwise`.
    int firstInt(const char* sql, int otherwise);
    /// Runs a query and reads `texts` text columns of each row; gives the number of rows.
    size_t readTexts(const char* sql, int texts);
    /// All rows of a query as one text.
    std::string dump(const char* sql);
    [[nodiscard]] sqlite3_int64 lastRowId() const { return sqlite3_last_insert_rowid(handle_); }

private:
    sqlite3_stmt* prepare(const char* sql);

    sqlite3* handle_ = nullptr;
    TextForm form_;
};

template <class ReadRow>
size_t Bare::forEachRow(const char* sql, ReadRow&& readRow)
{
    sqlite3_stmt* statement = prepare(sql);
    size_t rows = 0;
    for (; sqlite3_step(statement) == SQLITE_ROW && readRow(statement); ++rows) {
    }
    Require(sqlite3_finalize(statement) == SQLITE_OK, sql);
    return rows;
}

/// In UTF-8 with every apostrophe twice.
std::string Quoted(const std::u16string& text);

// The look-ups with which most operations begin, as the library makes them.
std::string PhoneText(const std::u16string& imei);
std::string BookmarkTypeText(const std::u16string& imei);

}  // namespace kesta::bench
