#include "state/snapshots.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "database/database_file.h"
#include "os/files.h"
#include "os/local_time.h"
#include "os/system.h"
#include "state/known_database.h"
#include "state/state_file.h"

namespace kesta {
namespace {

using Access = SqliteFile::Access;

constexpr std::string_view kPrefix = "KESTA_DB-";
constexpr std::string_view kBeforeRestore = "before-restore-";
constexpr std::string_view kEnding = ".s3db";
constexpr std::string_view kStampShape = "00000000-000000";  // 0: a digit
constexpr std::string_view kUnfinished = "unfinished.part";

std::string Folder()
{
    return os::Join(StateFolder(), "Snapshots");
}

// "20260131-235958"
std::string Stamp(LocalTime time)
{
    std::string stamp;
    for (const char c : FormatLocalTime(time)) {
        if (c == ' ' || (c >= '0' && c <= '9')) {
            stamp += c == ' ' ? '-' : c;
        }
    }
    return stamp;
}

std::optional<LocalTime> TimeOf(std::string_view stamp)
{
    const bool isStamp =
        std::equal(stamp.begin(), stamp.end(), kStampShape.begin(), kStampShape.end(),
                   [](char c, char shape) { return shape == '0' ? c >= '0' && c <= '9' : c == shape; });
    if (!isStamp) {
        return std::nullopt;
    }
    return ParseLocalTime(fmt::format("{}-{}-{} {}:{}:{}", stamp.substr(0, 4), stamp.substr(4, 2), stamp.substr(6, 2),
                                      stamp.substr(9, 2), stamp.substr(11, 2), stamp.substr(13, 2)));
}

LocalTime Now()
{
    return os::ToLocalTime(os::Now()).value_or(LocalTime());
}

// A name of the second, or of the next one that no file has yet: it is later than all there are.
std::string FreePath(std::string_view prefix, LocalTime time)
{
    for (;; time += std::chrono::seconds(1)) {
        std::string path = os::Join(Folder(), fmt::format("{}{}{}", prefix, Stamp(time), kEnding));
        os::FileInfo info;
        if (!os::ReadInfoOfLink(path, info).ok()) {
            return path;
        }
    }
}

// A copy of the database under the temporary name.
os::Status CopyDatabase(const std::string& unfinished, bool& isDamaged)
{
    SqliteFile source, target;
    if (os::Status status = os::RemoveFile(unfinished); !status.ok() && status.failure() != os::Failure::kMissing) {
        return status;
    }
    os::Status status = source.open(DatabasePath(), Access::kRead);
    if (status.ok()) {
        status = target.open(unfinished, Access::kCreate);
    }
    // The file gets its name only when it is complete, so it needs no journal.
    if (status.ok()) {
        status = target.query("PRAGMA journal_mode=OFF", [](const SqliteRow&) {});
    }
    if (status.ok()) {
        status = source.copyTo(target);
    }
    isDamaged = source.isDamaged() || target.isDamaged();
    return status;
}

// What is wrong with a copy; empty when it is intact.
std::string ProblemOf(const std::string& path)
{
    SqliteFile copy;
    std::vector<std::string> problems;
    os::Status status = copy.open(path, Access::kRead);
    if (status.ok()) {
        status = CheckIntegrity(copy, problems);
    }
    std::vector<PhoneRow> phones;
    if (status.ok() && problems.empty()) {
        status = ReadPhoneRows(copy, phones);
    }
    return !problems.empty() ? problems.front() : status.text();
}

void RemoveOld()
{
    const std::vector<Snapshot> all = ReadSnapshots();
    std::vector<LocalTime> times;
    times.reserve(all.size());
    for (const Snapshot& snapshot : all) {
        times.push_back(snapshot.time);
    }
    const std::vector<bool> stays = ChooseSnapshots(times, Now());
    for (size_t i = 0; i < all.size(); ++i) {
        if (!stays[i]) {
            (void)os::RemoveFile(all[i].path);  // One that stays is tried again the next time.
        }
    }
}

SnapshotResult MakeSnapshot(const os::FileInfo& file)
{
    const std::string unfinished = os::Join(Folder(), kUnfinished);
    if (StateFolder().empty() || !os::MakePrivateDirectories(Folder())) {
        return {SnapshotOutcome::kFailed, fmt::format("the folder {} cannot be made", Folder())};
    }
    bool isDamaged = false;
    os::Status status = CopyDatabase(unfinished, isDamaged);
    std::string problem = status.ok() ? ProblemOf(unfinished) : status.text();
    if (!problem.empty()) {
        (void)os::RemoveFile(unfinished);
        const bool isDatabaseAtFault = isDamaged || status.ok();
        return {isDatabaseAtFault ? SnapshotOutcome::kDamaged : SnapshotOutcome::kFailed, std::move(problem)};
    }
    const std::vector<Snapshot> before = ReadSnapshots();
    const LocalTime time = before.empty() ? Now() : std::max(Now(), before.front().time);
    const std::string path = FreePath(kPrefix, time);
    status = os::Rename(unfinished, path);
    if (status.ok()) {
        status = os::FlushDirectory(Folder());
    }
    if (status.ok()) {
        status = RememberDatabase(os::NameOf(path), file);
    }
    if (!status.ok()) {
        return {SnapshotOutcome::kFailed, status.text()};
    }
    RemoveOld();
    return {};
}

}  // namespace

std::vector<bool> ChooseSnapshots(const std::vector<LocalTime>& latestFirst, LocalTime now)
{
    using std::chrono::days;
    constexpr size_t kLatest = 2;
    std::vector<bool> stays(latestFirst.size(), false);
    for (size_t i = 0; i < std::min(kLatest, stays.size()); ++i) {
        stays[i] = true;
    }
    for (const days age : {days(1), days(7), days(30)}) {
        const auto older =
            std::find_if(latestFirst.begin(), latestFirst.end(), [&](LocalTime time) { return now - time > age; });
        if (older != latestFirst.begin()) {
            stays[static_cast<size_t>(older - latestFirst.begin()) - 1] = true;
        }
    }
    size_t count = static_cast<size_t>(std::count(stays.begin(), stays.end(), true));
    for (size_t i = 0; i < stays.size() && count < kMostSnapshots; ++i) {
        count += stays[i] ? 0u : 1u;
        stays[i] = true;
    }
    return stays;
}

std::vector<Snapshot> ReadSnapshots()
{
    std::vector<os::DirectoryEntry> entries;
    (void)os::ListDirectory(Folder(), entries);  // There is none before the first sync.
    std::vector<Snapshot> snapshots;
    for (const os::DirectoryEntry& entry : entries) {
        std::string_view name = entry.name;
        if (!name.starts_with(kPrefix) || !name.ends_with(kEnding)) {
            continue;
        }
        name.remove_prefix(kPrefix.size());
        name.remove_suffix(kEnding.size());
        if (const auto time = TimeOf(name)) {
            snapshots.push_back({os::Join(Folder(), entry.name), *time});
        }
    }
    std::sort(snapshots.begin(), snapshots.end(), [](const auto& a, const auto& b) { return a.time > b.time; });
    return snapshots;
}

SnapshotResult TakeSnapshot()
{
    os::FileInfo file;
    if (os::Status status = os::ReadInfo(DatabasePath(), file); !status.ok()) {
        return {SnapshotOutcome::kFailed, status.text()};
    }
    const std::vector<Snapshot> known = ReadSnapshots();
    if (!known.empty() && IsAsInSnapshot(os::NameOf(known.front().path), file)) {
        return {};
    }
    return MakeSnapshot(file);
}

std::string SnapshotProblem(const Snapshot& snapshot)
{
    return ProblemOf(snapshot.path);
}

os::Status RestoreSnapshot(const Snapshot& snapshot, std::string& kept)
{
    kept.clear();
    SqliteFile source, target;
    if (os::Status status = source.open(snapshot.path, Access::kRead); !status.ok()) {
        return status;
    }
    const std::string unfinished = os::Join(Folder(), kUnfinished);
    os::FileInfo file;
    if (os::ReadInfo(DatabasePath(), file).ok()) {
        bool isDamaged = false;
        os::Status status = CopyDatabase(unfinished, isDamaged);
        if (status.ok()) {
            kept = FreePath(kBeforeRestore, Now());
            status = os::Rename(unfinished, kept);
        }
        if (!status.ok()) {
            return {status.failure(), "the present database cannot be kept: " + status.text()};
        }
    }
    os::Status status = target.open(DatabasePath(), Access::kCreate);
    if (status.ok()) {
        status = source.copyTo(target);
    }
    target.close();
    if (status.ok() && os::ReadInfo(DatabasePath(), file).ok()) {
        status = RememberDatabase(os::NameOf(snapshot.path), file);
    }
    return status;
}

}  // namespace kesta
