#include "core/database_file.h"

#include "core/connection.h"

namespace kesta {
namespace {

/// Whether the code tells that the file itself is not what it should be, rather than that it cannot be reached.
bool IsTheFilesFault(SqliteCode code)
{
    return code == SqliteCode::kError || code == SqliteCode::kCorrupt || code == SqliteCode::kNotADatabase;
}

}  // namespace

DatabasePath::DatabasePath()
{
    platform::Path folder;
    if (platform::ApplicationDataFolder(folder)) {
        for (const char* name : {"NORVIK", "NORVIK Sync", "Database"}) {
            folder /= name;
            if (!platform::Exists(folder)) platform::CreateFolder(folder);
        }
        file_ = folder / "KESTA_DB.s3db";
    }
    fits_ = platform::PathToUtf8(file_, utf8_.data(), kUtf8Bytes);
}

std::optional<int32_t> ReadDatabaseVersion(const char* utf8Path)
{
    constexpr int32_t kNone = -1;
    Connection db;
    if (db.open(utf8Path) != SqliteCode::kOk) return std::nullopt;
    Statement rows = db.prepare(NarrowSql("SELECT [Version] FROM tVersion"));
    if (rows.prepared() && rows.step()) return rows.int32(0);
    if (rows.last() == SqliteCode::kDone || IsTheFilesFault(rows.last())) return kNone;
    return std::nullopt;
}

}  // namespace kesta
