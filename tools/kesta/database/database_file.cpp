#include "database/database_file.h"

#include <algorithm>

#include "os/files.h"
#include "os/system.h"

namespace kesta {
namespace {

constexpr std::string_view kName = "KESTA_DB.s3db";
constexpr std::string_view kReplaced = "KESTA_DB.s3db.replaced-";
constexpr size_t kStampLength = 15;  // of "20260131-235958"
constexpr const char* kVersion = "5005";

}  // namespace

std::string DatabasePath()
{
    std::string path = os::DataDirectory();
    if (path.empty()) {
        return {};
    }
    for (const std::string_view name :
         {std::string_view("NORVIK"), std::string_view("NORVIK Sync"), std::string_view("Database"), kName}) {
        path = os::Join(path, name);
    }
    return path;
}

std::vector<std::string> ReplacedDatabases()
{
    std::vector<os::DirectoryEntry> entries;
    (void)os::ListDirectory(os::ParentOf(DatabasePath()), entries);  // Without a folder there is no database either.
    std::vector<std::string> names;
    for (os::DirectoryEntry& entry : entries) {
        // Their journals have the same name with a suffix.
        if (entry.name.starts_with(kReplaced) && entry.name.size() == kReplaced.size() + kStampLength) {
            names.push_back(std::move(entry.name));
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

os::Status ReadPhoneRows(SqliteFile& database, std::vector<PhoneRow>& phones)
{
    phones.clear();
    return database.query("SELECT [ID], [IMEI], [Name] FROM tPhone ORDER BY [ID]", [&](const SqliteRow& row) {
        phones.push_back({row.number(0), row.text(1), row.text(2)});
    });
}

os::Status CheckIntegrity(SqliteFile& database, std::vector<std::string>& problems)
{
    problems.clear();
    os::Status status = database.query("PRAGMA integrity_check", [&](const SqliteRow& row) {
        if (row.text(0) != "ok") {
            problems.push_back(row.text(0));
        }
    });
    if (status.ok()) {
        std::string version = "missing";
        status = database.query("SELECT [Version] FROM tVersion LIMIT 1",
                                [&](const SqliteRow& row) { version = row.text(0); });
        if (status.ok() && version != kVersion) {
            problems.push_back("its version is " + version + ", not " + kVersion);
        }
    }
    if (!status.ok() && database.isDamaged()) {
        problems.push_back(status.text());
        return {};
    }
    return status;
}

}  // namespace kesta
