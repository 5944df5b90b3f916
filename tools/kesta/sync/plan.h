// What a stage wants done, for an Executor to do or a Preview to tell:
//
//     Plan plan(report.summary.files);
//     plan.add({.kind = ChangeKind::kPut, .phonePath = "Music/a.mp3", .pcFile = "/home/me/a.mp3", ...});
//     return plan;
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/dates.h"
#include "report/summary.h"

namespace kesta {

enum class ChangeKind {
    kPut,      // new on the phone: written, then recorded
    kReplace,  // changed, or not as recorded on the phone: written again, then recorded
    kAdopt,    // lies on the phone already as it should: only recorded
    kMove,     // moved to another path on the phone, then recorded there
    kRemove,   // removed from the phone, then from the database
    kRecord    // only the database is concerned
};

/// What the user is told of a change.
struct Verb {
    const char* done = "";     // "copied"
    const char* planned = "";  // "copy"
};

inline constexpr Verb kCopied{"copied", "copy"};
inline constexpr Verb kAdded{"added", "add"};
inline constexpr Verb kUpdated{"updated", "update"};
inline constexpr Verb kWritten{"written", "write"};
inline constexpr Verb kRecorded{"recorded", "record"};
inline constexpr Verb kMoved{"moved", "move"};
inline constexpr Verb kRemoved{"removed", "remove"};
inline constexpr Verb kKept{"kept", "keep"};

/// How a written file lies on the phone.
struct Written {
    bool isWritten = false;  // false: nothing was to be written
    uint64_t size = 0;
    std::optional<LocalTime> modified;  // of a copy the PC's time
};

/// Writes the row that follows, or takes it out. Throws a kesta_db::Error when the database refuses it, or what ends
/// the run.
using Record = std::function<void(const Written&)>;

struct Change {
    ChangeKind kind = ChangeKind::kRecord;
    std::string phonePath;  // empty: nothing happens on the phone
    std::string subject;    // what a failure is told of: a file of the PC, a URL
    std::string shown;      // what the user sees; empty: the phone path, or the subject where there is none
    std::string pcFile;     // to be copied; empty: the text is written
    std::string text;
    std::string movedFrom;  // the phone path where it lies
    std::string keepAs;     // the phone path for what is there, as somebody has changed it on the phone; empty: it goes
    uint64_t size = 0;      // of either
    Verb verb;              // empty: the user hears of it only when it fails
    Tally counts;           // what has been done then
    Tally* tally = nullptr;                             // of another family than the plan's
    std::function<std::vector<std::string>()> entries;  // of the file, with what happens to each: a preview tells them
    Record record;                                      // empty: there is no row
    bool needsAllBefore = false;  // left for the next run unless all changes before it have been made

    [[nodiscard]] bool isToWrite() const { return kind == ChangeKind::kPut || kind == ChangeKind::kReplace; }
    [[nodiscard]] bool isSilent() const { return verb.done[0] == '\0'; }
    [[nodiscard]] const std::string& name() const
    {
        return !shown.empty() ? shown : phonePath.empty() ? subject : phonePath;
    }
};

/// Notes what is about to be written, so that the run after a killed one can tell what that one has left.
class Journal {
public:
    virtual ~Journal() = default;
    /// Before the first file is written.
    virtual void begin(const std::vector<std::string>& phonePaths) = 0;
    /// At the end, also of a run that is stopped, and without begin() where nothing was written. isInOrder: nothing is
    /// on the phone that is not recorded. May throw what ends the run.
    virtual void end(bool isInOrder) = 0;
};

struct Plan {
    explicit Plan(Tally& family) : tally(&family) {}

    Tally* tally;                      // of the family
    Tally found;                       // unchanged and deferred
    std::vector<Change> changes;       // in the order in which they are made
    std::shared_ptr<Journal> journal;  // the phone's own where there is none

    void add(Change change) { changes.push_back(std::move(change)); }
};

}  // namespace kesta
