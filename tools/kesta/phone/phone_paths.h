// Gives every file its phone path, so that no two files have one, not even where case is ignored, and nothing that
// somebody else put on the phone is overwritten.
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "phone/phone_view.h"

namespace kesta {

/// The paths below one folder of the phone.
class PhonePaths {
public:
    PhonePaths(std::string top, const PhoneView& phone) : top_(std::move(top)), phone_(phone) {}

    /// Says that the path belongs to a recorded file. False when another one has it already, or when it does not lie
    /// below the top folder.
    [[nodiscard]] bool reserve(const std::string& phonePath);
    /// Whether what lies there may be removed for a recorded file: anywhere else lies what somebody else has put there,
    /// or a file that stays.
    [[nodiscard]] bool mayBeRemoved(const std::string& phonePath) const;
    /// Says that what lies there is going to be removed first.
    void release(const std::string& phonePath);

    struct Allocated {
        std::string phonePath;
        bool sameFileIsThere = false;
    };
    /// A place beside a file that somebody has changed on the phone.
    [[nodiscard]] std::string allocateBeside(const std::string& phonePath);

    /// Where a file would lie if nothing were in its way.
    [[nodiscard]] std::string wishFor(const std::vector<std::string>& parts) const;

    using IsSame = std::function<bool(const std::string& phonePath, const PhoneFile& there)>;
    /// A path below the top folder for a file that has none yet, by the same rule in every run. The parts are the
    /// names of its folders and its own; they are made safe. Of files with one name the seed tells them apart.
    [[nodiscard]] Allocated allocate(const std::vector<std::string>& parts, const std::string& seed,
                                     const IsSame& isSame);

private:
    [[nodiscard]] std::string allocateFolder(const std::string& parent, const std::string& name);
    /// False when something else is there.
    [[nodiscard]] bool takeFolder(const std::string& path);
    [[nodiscard]] bool isFreed(const std::string& key) const { return freed_.contains(key) && !files_.contains(key); }

    std::string top_;
    const PhoneView& phone_;
    std::set<std::string> files_;    // case keys
    std::set<std::string> folders_;  // case keys
    std::set<std::string> freed_;    // case keys
};

/// Whether a file on the phone can be taken for the PC's, by size and time.
[[nodiscard]] bool IsSameFile(const PhoneFile& there, uint64_t size, int64_t modifiedSeconds);

/// A path beside the file that says that what is kept there was changed on the phone.
[[nodiscard]] std::string KeptPath(const std::string& phonePath,
                                   const std::function<bool(const std::string& path)>& isFree);

}  // namespace kesta
