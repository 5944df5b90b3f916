#include "core/database_file.h"

#include <string_view>
#include <system_error>
#include <utility>

#include "core/connection.h"
#include "core/replaced_files.h"
#include "core/schema.h"
#include "core/sqlite_witness.h"

namespace kesta {
namespace {

// As long as the database's own name, so that both paths fit or neither does.
constexpr const char* kUnfinishedName = "KESTA_DB.part";

/// What SQLite keeps beside a database while it is in use. The journal comes first.
constexpr std::array<const char*, 3> kCompanions = {"-journal", "-wal", "-shm"};

platform::Path With(const platform::Path& file, const char* suffix)
{
    platform::Path companion = file;
    return companion += suffix;
}

/// Whether the code tells that the file itself is not what it should be, rather than that it cannot be reached.
bool IsTheFilesFault(SqliteCode code)
{
    return code == SqliteCode::kError || code == SqliteCode::kCorrupt || code == SqliteCode::kNotADatabase;
}

/// Whether every byte that the version depends on can be read.
bool CanReadFileAndJournals(const platform::Path& file)
{
    if (!platform::CanReadAll(file)) {
        return false;
    }
    for (const char* suffix : {"-journal", "-wal"}) {
        const platform::Path companion = With(file, suffix);
        const platform::Presence found = platform::Find(companion);
        if (found != platform::Presence::kAbsent && !platform::CanReadAll(companion)) {
            return false;
        }
    }
    return true;
}

/// Where the path leads to: a link may point to a file that is yet to be made.
platform::Path FollowLinks(platform::Path file)
{
    constexpr int kMostLinks = 40;
    for (int i = 0; i < kMostLinks; ++i) {
        std::error_code noLink;
        const platform::Path target = std::filesystem::read_symlink(file, noLink);
        if (noLink) {
            break;
        }
        file = target.is_absolute() ? target : file.parent_path() / target;
    }
    return file;
}

bool ClearName(const platform::Path& file)
{
    return platform::Find(file) == platform::Presence::kAbsent || platform::RemoveFile(file);
}

/// Removes what an earlier file has left. SQLite would take a journal beside a finished database for its own.
bool ClearCompanions(const platform::Path& file)
{
    for (const char* suffix : kCompanions) {
        if (!ClearName(With(file, suffix))) {
            return false;
        }
    }
    return true;
}

/// Puts what a failed creation has made in its place, after its journal: without that the file is not what it was. Its
/// unfinished name stays, so that it is known for what it is.
platform::Naming LeaveUnfinished(const platform::Path& unfinished, const platform::Path& target)
{
    const platform::Path journal = With(unfinished, kCompanions[0]);
    if (platform::Find(journal) != platform::Presence::kAbsent &&
        platform::MoveIntoPlace(journal, With(target, kCompanions[0])) != platform::Naming::kDone) {
        return platform::Naming::kFailed;
    }
    return platform::GiveSecondName(unfinished, target);
}

/// Whether the file is what a failed creation has left: nobody has recorded anything in it.
bool IsUnfinished(const platform::Path& file)
{
    std::error_code missing;
    return std::filesystem::equivalent(file, file.parent_path() / kUnfinishedName, missing);
}

/// Builds it in a file that only this user may read. An empty one is not left behind.
ResultCode CreatePrivately(const DatabasePath& path, bool& complete)
{
    const bool made = platform::CreatePrivateFile(path.file());
    const ResultCode created = DB_INTERNAL_Create(path.utf8(), complete);
    std::error_code ignored;
    if (made && created != ResultCode::kSuccess && std::filesystem::file_size(path.file(), ignored) == 0) {
        (void)platform::RemoveFile(path.file());
    }
    return created;
}

ResultCode CreateInPlace(const DatabasePath& path)
{
    bool complete = false;
    return CreatePrivately(path, complete);
}

/// A row of the first ones may be missing in a database that counts as made. Without its version row it would be thrown
/// away at the next start, and a main folder would be missing for good: as long as nobody uses it, it is made again.
ResultCode CreateUnfinished(const DatabasePath& path)
{
    constexpr int kMostTries = 3;
    for (int tries = 1;; ++tries) {
        bool complete = false;
        const ResultCode created = CreatePrivately(path, complete);
        if (complete || created != ResultCode::kSuccess || tries == kMostTries || !ClearName(path.file()) ||
            !ClearCompanions(path.file())) {
            return created;
        }
    }
}

}  // namespace

DatabasePath::DatabasePath()
{
    platform::Path folder;
    if (platform::ApplicationDataFolder(folder)) {
        for (const char* name : {"NORVIK", "NORVIK Sync", "Database"}) {
            folder /= name;
            if (!platform::Exists(folder)) {
                platform::CreateFolder(folder);
            }
        }
        file_ = folder / "KESTA_DB.s3db";
    }
    fits_ = platform::PathToUtf8(file_, utf8_.data(), kUtf8Bytes);
}

DatabasePath::DatabasePath(platform::Path file) : file_(std::move(file))
{
    fits_ = platform::PathToUtf8(file_, utf8_.data(), kUtf8Bytes);
}

std::optional<int32_t> ReadDatabaseVersion(const DatabasePath& path)
{
    // A program that has just died may hold the file until the system has cleared it away.
    constexpr int kPatienceMs = 2000;
    constexpr int32_t kNone = -1;
    const Witness witness;
    int32_t version = kNone;
    {
        Connection db;
        if (db.open(path.utf8(), witness.vfsName()) != SqliteCode::kOk) {
            return std::nullopt;
        }
        db.waitSilently(kPatienceMs);
        Statement rows = db.prepare("SELECT [Version] FROM tVersion");
        if (rows.prepared() && rows.step()) {
            version = rows.int32(0);
        } else if (rows.last() != SqliteCode::kDone && !IsTheFilesFault(rows.last())) {
            return std::nullopt;
        }
    }
    if (version == kDatabaseVersion) {
        return version;
    }
    // What follows costs the file: it must not rest on a read that failed.
    if (witness.sawFailure() || !CanReadFileAndJournals(path.file())) {
        return std::nullopt;
    }
    return version;
}

void ForgetUnfinished(const DatabasePath& path)
{
    (void)platform::RemoveFile(path.file().parent_path() / kUnfinishedName);
}

bool ReplaceFile(const DatabasePath& path)
{
    ReplacedFiles replaced(path.file());
    if (!IsUnfinished(path.file())) {
        replaced.keep();
    }
    if (!platform::RemoveFile(path.file())) {
        replaced.undo();
        return false;
    }
    replaced.prune();
    return true;
}

ResultCode CreateDatabase(const DatabasePath& path)
{
    if (path.utf8() == nullptr || path.file().empty()) {
        bool complete = false;
        return DB_INTERNAL_Create(path.utf8(), complete);
    }
    const platform::Path target = FollowLinks(path.file());
    const DatabasePath unfinished(target.parent_path() / kUnfinishedName);
    if (unfinished.utf8() == nullptr || !ClearName(unfinished.file()) || !ClearCompanions(unfinished.file()) ||
        !ClearCompanions(target)) {
        return CreateInPlace(path);
    }
    platform::FlushFolder(target.parent_path());
    const ResultCode created = CreateUnfinished(unfinished);
    const platform::Naming moved = created == ResultCode::kSuccess ? platform::MoveIntoPlace(unfinished.file(), target)
                                                                   : LeaveUnfinished(unfinished.file(), target);
    if (moved == platform::Naming::kDone) {
        platform::FlushFolder(target.parent_path());
        return created;
    }
    (void)platform::RemoveFile(unfinished.file());
    if (moved == platform::Naming::kNameTaken) {
        return ResultCode::kFileInTheWay;
    }
    // A file system without renaming.
    return created == ResultCode::kSuccess ? CreateInPlace(path) : created;
}

}  // namespace kesta
