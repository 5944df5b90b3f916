// What the tests through the exports start from: an open database with a phone in it, or one that would not open.
#pragma once

#include <filesystem>
#include <string>

#include "support/api_test.h"

namespace kesta::test {

inline constexpr char kImei[] = "351111";
inline constexpr char kName[] = "Ann's phone";

/// The library is loaded, its database fresh; the lines of the loading are not the test's.
class OpenDatabase : public ApiTest {
protected:
    OpenDatabase() { trace.take(); }

    /// Announces a phone and returns its number.
    int32_t givenPhone(const char* imei = kImei)
    {
        const int32_t phoneId = lib.DB_LIB_PhoneDetected(W(imei), W(kName));
        trace.take();
        return phoneId;
    }

    /// Changes tables or views behind the library's back and lets it notice. SQLite itself learns of such a change only
    /// when it runs a statement: what it compiles before that passes, and fails in its first step.
    void changeSchema(const std::string& statements)
    {
        sql.exec(statements);
        int32_t type = 0;
        int32_t oldType = 0;
        (void)lib.DB_LIB_GetSDType(W("nobody"), &type, &oldType);
        trace.take();
    }
};

/// The library is loaded, but a folder lies where its database should: nothing is open.
class ClosedDatabase : public ::testing::Test {
protected:
    ClosedDatabase() { trace.take(); }

    DataFolder data;
    bool inTheWay = std::filesystem::create_directories(data.databasePath());
    TraceLog trace{data.runtimeFolder()};
    Library lib{data};
};

/// A record with a text, as a caller holds it.
class Folder : public FolderRecord {
public:
    explicit Folder(std::string_view path, int32_t count = 0, int64_t size = 0, int64_t totalSize = 0,
                    int32_t sized = 0)
        : FolderRecord{}, path_(path)
    {
        Path = path_.get();
        Count = count;
        Size = size;
        TotalSize = totalSize;
        Sized = sized;
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

private:
    Text path_;
};

class SyncedFile : public SyncedFileRecord {
public:
    SyncedFile(std::string_view path, std::string_view basePath, std::string_view phonePath,
               const DateValue& modified = Date(2024, 2, 29, 12, 34, 56))
        : SyncedFileRecord{}, path_(path), basePath_(basePath), phonePath_(phonePath)
    {
        ModifiedTime = modified;
        Path = path_.get();
        BasePath = basePath_.get();
        PhonePath = phonePath_.get();
    }
    SyncedFile(const SyncedFile&) = delete;
    SyncedFile& operator=(const SyncedFile&) = delete;

private:
    Text path_;
    Text basePath_;
    Text phonePath_;
};

/// Record for record what a list holds, fields separated by "|", records by "\n"; of a date its text.
std::string ToString(const FolderList& list);
std::string ToString(const SyncedFileList& list);
std::string ToString(const MainFolderList& list);
std::string ToString(const SyncedFileRecord& file);
std::string ToString(const FolderRecord& folder);
std::string ToString(const MainFolderRecord& folder);
std::string ToString(const PhoneSettingRecord& phone);

/// By value: a reference to the field would not be aligned as compilers expect.
inline double DaysOf(const DateValue& date)
{
    return date.Days;
}

/// As an SQL literal.
std::string Quoted(std::string_view text);

}  // namespace kesta::test
