#include "core/open_database.h"

#include "core/database_file.h"
#include "core/schema.h"

namespace kesta {
namespace {

/// Clears the way for the connection: afterwards there is a database of this version at the path.
ResultCode PrepareFile(const DatabasePath& path, Trail trail)
{
    switch (platform::Find(path.file())) {
        case platform::Presence::kAbsent:
            return CreateDatabase(path);
        case platform::Presence::kOutOfReach: {
            bool complete = false;
            return DB_INTERNAL_Create(path.utf8(), complete);  // which can only fail, and says so
        }
        case platform::Presence::kUnknown:
            return ResultCode::kFileInTheWay;
        case platform::Presence::kPresent:
            break;
    }
    if (!platform::IsWritable(path.file())) {
        trail.error(1);
        return ResultCode::kReadOnlyFile;
    }
    const std::optional<int32_t> version = ReadDatabaseVersion(path);
    if (version == kDatabaseVersion) {
        ForgetUnfinished(path);
        return ResultCode::kSuccess;
    }
    // A file that may be valid is never thrown away.
    if (!version.has_value() || !ReplaceFile(path)) {
        return ResultCode::kFileInTheWay;
    }
    return CreateDatabase(path);
}

}  // namespace

ResultCode OpenDatabase(Module& module, Trail trail)
{
    Connection& db = module.DbConnection;
    if (db.isOpen()) {
        return ResultCode::kSuccess;
    }
    const DatabasePath path;
    if (const ResultCode prepared = PrepareFile(path, trail); prepared != ResultCode::kSuccess) {
        return prepared;
    }
    const SqliteCode opened = db.open(path.utf8());
    if (opened == SqliteCode::kOk) {
        db.waitWhenBusy();
        db.allowRowsOnly();
        module.noteOpen();
        return ResultCode::kSuccess;
    }
    if (!db.isOpen()) {
        return PassThrough(opened);  // SQLite had no memory for a handle
    }
    db.close();
    trail.error(2);
    return ResultCode::kFailure;
}

}  // namespace kesta
