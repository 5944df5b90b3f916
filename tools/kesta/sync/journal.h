// Says in the phone's root, before the first file is copied, which phone paths the run is going to fill. A run
// that was killed between a file's arrival and its record leaves one file that nobody knows: the next run finds it
// here.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "phone/phone_folder.h"
#include "report/report.h"
#include "sync/plan.h"

namespace kesta {

inline constexpr std::string_view kJournalName = ".kesta-journal";

struct Leftovers {
    std::vector<std::string> temporaryFiles;  // native paths
    std::vector<std::string> unknownFiles;    // phone paths
    std::vector<std::string> recordedFiles;   // phone paths of what that run may have written anew
    /// Of the texts among them, as that run would have written them.
    std::map<std::string, std::string> digests;
    std::vector<std::string> foldersOf;  // phone paths whose folders may have been made for nothing
    std::vector<std::string> notes;      // native paths of the notes about files on their way
    bool journalFound = false;
    bool isMoveUnfinished = false;

    [[nodiscard]] bool areAny() const
    {
        return journalFound || isMoveUnfinished || !temporaryFiles.empty() || !notes.empty();
    }
};

/// The phone path, for a text with the digest of what is going to be written.
[[nodiscard]] std::string JournalLine(const Change& change);

class PhoneJournal : public Journal {
public:
    PhoneJournal(const PhoneFolder& phone, Report& report) : phone_(phone), report_(report) {}
    void begin(const std::vector<std::string>& phonePaths) override;
    void end(bool isInOrder) override;

private:
    const PhoneFolder& phone_;
    Report& report_;
    bool hasBegun_ = false;
};

/// What a killed run has left behind. recordedPaths: the phone paths of all recorded files.
os::Status FindLeftovers(const PhoneFolder& phone, const std::vector<std::string>& recordedPaths, Leftovers& leftovers);
/// Removes it, and the journal.
os::Status RemoveLeftovers(PhoneFolder& phone, const Leftovers& leftovers);

}  // namespace kesta
