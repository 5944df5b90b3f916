// What a sync did, and how it is told at the end.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "base/exit_codes.h"

namespace kesta {

struct FailedItem {
    std::string path;
    std::string reason;
};

/// Lists, marks or entries, which are no files on the phone.
struct FamilyCounts {
    std::string title;          // "Playlists"
    const char* noun = "item";  // of one of them: "playlist"
    std::size_t added = 0, updated = 0, removed = 0, unchanged = 0;
    std::size_t deferred = 0;  // removals left out, since they are more than half of what is recorded
};

struct Summary {
    std::size_t copied = 0, updated = 0, adopted = 0, removed = 0, unchanged = 0, deferred = 0;
    std::size_t notReached = 0;  // planned, but the run ended before
    std::uint64_t bytes = 0;
    std::deque<FamilyCounts> families;  // in the order of their turn; a reference into it stays good
    std::vector<FailedItem> failures;
    std::vector<std::string> notes;
    ExitCode stop = ExitCode::kSuccess;  // why the run ended early
    std::string stopReason;

    void fail(std::string path, std::string reason) { failures.push_back({std::move(path), std::move(reason)}); }
    /// The first reason counts.
    void stopWith(ExitCode code, std::string reason);
    [[nodiscard]] bool stopped() const { return stop != ExitCode::kSuccess; }
    /// Begins the counts of another family.
    FamilyCounts& beginFamily(std::string title, const char* noun);
    [[nodiscard]] std::size_t allDeferred() const;
    [[nodiscard]] ExitCode exitCode() const;
};

/// The closing lines. A dry run says what would have been done.
[[nodiscard]] std::string Describe(const Summary& summary, bool dryRun, double seconds);
/// "3.4 MB"
[[nodiscard]] std::string FormatSize(std::uint64_t bytes);
/// "1 file", "2 files"
[[nodiscard]] std::string Counted(std::size_t count, const char* noun);

}  // namespace kesta
