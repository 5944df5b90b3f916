// The floor: the library's own statements through bare SQLite, the same build of it. Texts are made beforehand, and
// every column is read in the form in which a caller wants it, without a copy.
#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <string>

#include "scene.h"

namespace kesta::bench {

class Bare {
public:
    explicit Bare(const std::filesystem::path& database);
    Bare(const Bare&) = delete;
    Bare& operator=(const Bare&) = delete;
    ~Bare() { close(); }
    void close();

    void exec(const char* sql);
    /// The first column of the first row, or `otherwise`.
    int firstInt(const char* sql, int otherwise);
    /// Runs a query and reads `texts` text columns of each row; gives the number of rows.
    size_t readTexts(const char* sql, int texts);
    /// The same in UTF-8, in which the file has them, so that nothing is converted.
    size_t readUtf8(const char* sql, int texts);
    /// Runs a query for main folders.
    size_t readMainFolders(const char* sql);
    /// All rows of a query as one text.
    std::string dump(const char* sql);
    [[nodiscard]] sqlite3_int64 lastRowId() const { return sqlite3_last_insert_rowid(handle_); }

private:
    template <class ReadRow>
    size_t forEachRow(const char* sql, ReadRow&& readRow);

    sqlite3* handle_ = nullptr;
};

/// In UTF-8 with every apostrophe twice.
std::string Quoted(const std::u16string& text);

// The statements, as the library makes them.
std::string PhoneText(const std::u16string& imei);
std::string InsertText(const File& file);
std::string FlagText(const File& file);
std::string LookUpText(const File& file);
std::string CountAllText();
std::string ListAllText();
std::string CountFolderText(const std::u16string& folder);
std::string ListFolderText(const std::u16string& folder);
std::string NewPhoneText(const std::u16string& imei, const std::u16string& name);
inline constexpr char kCountMainFolders[] = "SELECT COUNT(*) FROM tLibMainFolder;";
inline constexpr char kMainFolders[] = "SELECT [ID], [Number], [Size], [Setting] FROM tLibMainFolder;";

}  // namespace kesta::bench
