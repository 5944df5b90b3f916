// What a sync did, and how it is told at the end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "base/exit_codes.h"

namespace kesta {

struct FailedItem {
    std::string path;
    std::string reason;
};

/// How many files, lists, bookmarks or entries of a family have been dealt with.
struct Tally {
    size_t added = 0, updated = 0, adopted = 0, removed = 0, unchanged = 0;
    size_t deferred = 0;  // removals left out, since they are more than half of what is recorded
    size_t moved = 0;     // on the phone, as they were on the PC

    Tally& operator+=(const Tally& other);
};

/// What a run does not take along, by where it is and why.
struct LeftOutItems {
    std::string from;  // "Music"
    std::string why;   // "of other kinds"
    size_t count = 0;
};

/// A family besides the files of media and playlists.
struct FamilyTally {
    std::string title;          // "Playlists"
    const char* noun = "item";  // of one of them: "playlist"
    Tally tally;
};

struct Summary {
    Tally files;
    uint64_t bytes = 0;                // copied
    size_t notReached = 0;             // planned, but the run ended before
    std::deque<FamilyTally> families;  // in the order of their turn; a reference into it stays good
    std::vector<FailedItem> failures;
    std::vector<FailedItem> kept;  // what was changed on the phone, and as what it is kept there
    std::vector<LeftOutItems> leftOut;
    std::vector<std::string> notes;
    ExitCode stop = ExitCode::kSuccess;  // why the run ended early
    std::string stopReason;

    void fail(std::string path, std::string reason) { failures.push_back({std::move(path), std::move(reason)}); }
    void leaveOut(std::string_view from, std::string_view why, size_t count);
    /// The first reason counts.
    void stopWith(ExitCode code, std::string reason);
    [[nodiscard]] bool isStopped() const { return stop != ExitCode::kSuccess; }
    /// Begins the tally of another family.
    Tally& beginFamily(std::string title, const char* noun);
    [[nodiscard]] size_t allDeferred() const;
    [[nodiscard]] ExitCode exitCode() const;
};

/// The closing lines. A preview says what would have been done.
[[nodiscard]] std::string Describe(const Summary& summary, bool isPreview, double seconds);
/// "3.4 MB"
[[nodiscard]] std::string FormatSize(uint64_t bytes);
/// "1 file", "2 files"
[[nodiscard]] std::string Counted(size_t count, const char* noun);

}  // namespace kesta
