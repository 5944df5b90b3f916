// Tells what somebody has changed on the phone since the client left it there, so that it is not overwritten.
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>

#include "base/dates.h"
#include "phone/phone_view.h"
#include "state/left_files.h"

namespace kesta {

/// The file of the PC whose copy is in question, as it is now.
struct PcFile {
    std::string path;
    uint64_t size = 0;
    int64_t modifiedSeconds = 0;
    std::optional<LocalTime> localTime;
    int32_t modifiedNanoseconds = 0;
};

/// Whether two local times of one moment can differ so, told in different time zones.
[[nodiscard]] bool IsZoneDifference(int64_t seconds);

/// Whether two parts of a second can be of one time, kept by file systems of which one cuts it off earlier.
[[nodiscard]] bool IsSameFraction(int32_t nanoseconds, int32_t other);

class PhoneChanges {
public:
    /// Whether the file on the phone holds what the file of the PC does.
    using HoldsFile = std::function<bool(const std::string& phonePath, const std::string& pcPath)>;

    /// The digest of a file on the phone; empty if it cannot be read.
    using DigestOf = std::function<std::string(const std::string& phonePath)>;

    /// force: nothing counts as changed.
    PhoneChanges(LeftFiles& left, bool force, HoldsFile holdsFile, DigestOf digestOf)
        : left_(left), force_(force), holdsFile_(std::move(holdsFile)), digestOf_(std::move(digestOf))
    {
    }

    /// Lets a file that is on the phone as it was left say by which time zones the phone's clock is off.
    void learn(const PhoneFile& there, std::optional<LocalTime> recorded, const PcFile& pc);
    /// pc: null for a file that is gone. recorded: the time with which it was copied.
    [[nodiscard]] bool isChanged(const std::string& phonePath, const PhoneFile& there,
                                 std::optional<LocalTime> recorded, const PcFile* pc) const;
    /// Whether the file on the phone was copied from one with this part of a second in its time. False where there is
    /// none, and without a note.
    [[nodiscard]] bool hasTimeOf(const std::string& phonePath, const PcFile& pc) const;
    /// Whether the file on the phone, which has its size, is a copy of what the file of the PC still holds: reads both.
    [[nodiscard]] bool isCopyOf(const std::string& phonePath, const PcFile& pc) const;
    /// Whether the file of the PC has changed within the second in which it was when it was copied.
    [[nodiscard]] bool isPcChanged(const std::string& phonePath, const PcFile& pc) const;
    /// Notes what that is told by, for a file that is on the phone as it is on the PC.
    void notePc(const std::string& phonePath, const PhoneFile& there, const PcFile& pc) const;
    /// For what has no time in the database: nothing can be told without a note.
    [[nodiscard]] bool isChanged(const std::string& phonePath, const PhoneFile& there) const;

private:
    LeftFiles& left_;
    bool force_;
    HoldsFile holdsFile_;
    DigestOf digestOf_;
    std::set<int64_t> zoneDifferences_;
};

}  // namespace kesta
