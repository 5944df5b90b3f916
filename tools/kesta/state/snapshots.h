// Verified copies of the database in the client's folder, made before a sync changes anything and after it: what there
// is to go back to when the database is lost.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/dates.h"
#include "os/status.h"

namespace kesta {

inline constexpr size_t kMostSnapshots = 5;

struct Snapshot {
    std::string path;
    LocalTime time;
};

/// Which of them stay, told by their times, which are in order: the two latest, and of the last day, week and month the
/// oldest, so that there is always one from before a slow damage began.
[[nodiscard]] std::vector<bool> ChooseSnapshots(const std::vector<LocalTime>& latestFirst, LocalTime now);

/// The latest first.
[[nodiscard]] std::vector<Snapshot> ReadSnapshots();

enum class SnapshotOutcome {
    kDone,     // also when the latest one holds what the database does
    kDamaged,  // the database is not intact
    kFailed    // there is none; the database may be fine
};

struct SnapshotResult {
    SnapshotOutcome outcome = SnapshotOutcome::kDone;
    std::string reason;
};

/// Copies the database, reads the copy back, removes older ones, and notes what the database is known by.
[[nodiscard]] SnapshotResult TakeSnapshot();

/// Why a snapshot cannot be restored; empty when it is intact.
[[nodiscard]] std::string SnapshotProblem(const Snapshot& snapshot);
/// Gives the database the snapshot's contents. What it held before is in the file kept, which is set to nothing where
/// there was no database that could be read.
os::Status RestoreSnapshot(const Snapshot& snapshot, std::string& kept);

}  // namespace kesta
