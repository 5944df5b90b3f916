// DB_Open and DB_Close: how the module's connection comes to be.
#include "core/call_frame.h"
#include "core/database_file.h"
#include "core/schema.h"
#include "kesta_db/kesta_db.h"

namespace kesta {
namespace {

/// Clears the way for the connection: afterwards there is a database of this version at the path.
ResultCode PrepareFile(const DatabasePath& path, Trail trail)
{
    if (platform::Exists(path.file())) {
        if (!platform::IsWritable(path.file())) {
            trail.error(1);
            return ResultCode::kReadOnlyFile;
        }
        const std::optional<int32_t> version = ReadDatabaseVersion(path.utf8());
        if (version == kDatabaseVersion) return ResultCode::kSuccess;
        // A file that may be sound is never thrown away.
        if (!version.has_value() || !platform::RemoveFile(path.file())) return ResultCode::kFileInTheWay;
    }
    return DB_INTERNAL_Create(path.utf8());
}

ResultCode OpenDatabase(Module& module, Trail trail)
{
    Connection& db = module.DbConnection;
    if (db.isOpen()) return ResultCode::kSuccess;
    const DatabasePath path;
    if (const ResultCode prepared = PrepareFile(path, trail); prepared != ResultCode::kSuccess) return prepared;
    const SqliteCode opened = db.open(path.utf8());
    if (opened == SqliteCode::kOk) {
        db.waitWhenBusy();
        db.allowRowsOnly();
        module.noteOpen();
        return ResultCode::kSuccess;
    }
    if (!db.isOpen()) return PassThrough(opened);  // SQLite had no memory for a handle
    db.close();
    trail.error(2);
    return ResultCode::kFailure;
}

}  // namespace
}  // namespace kesta

using namespace kesta;

extern "C" int32_t DB_Open(void)
{
    static constexpr Export kSelf = {"DB_Open"};
    return RunFrame(
        kSelf, [] { TraceEnter(kSelf.name); }, [] { return OpenDatabase(TheModule(), Trail(kSelf.name)); });
}

extern "C" int32_t DB_Close(void)
{
    // Deliberate: callers close and open as they like, and the connection stays until the library is unloaded.
    return static_cast<int32_t>(ResultCode::kSuccess);
}
