// Gives every file its place on the phone, so that no two files meet in one place, not even where case is ignored, and
// nothing that somebody else put on the phone is overwritten.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "plan.h"

namespace kesta {

class PhoneNames {
public:
    PhoneNames(Category category, const PhoneView& phone) : category_(category), phone_(phone) {}

    /// Says that the place belongs to a recorded file. False when another one has it already.
    bool reserve(const std::string& phonePath);
    /// Says that what lies in the place is going to be removed first.
    void free(const std::string& phonePath);
    [[nodiscard]] bool isReserved(const std::string& phonePath) const;

    /// Fixes the folder on the phone for each chosen folder: where its recorded files lie, else its own name, with a
    /// mark when another folder has that name.
    void chooseRoots(const PlanInput& input);

    struct Place {
        std::string phonePath;
        bool sameFileIsThere = false;
    };
    /// A place for a file that has none yet, by the same rule in every run.
    [[nodiscard]] Place allocate(const std::string& folder, const ScannedFile& file);

private:
    [[nodiscard]] std::string allocateFolder(const std::string& parent, const std::string& name);
    [[nodiscard]] bool isFreed(const std::string& key) const { return freed_.contains(key) && !files_.contains(key); }

    Category category_;
    const PhoneView& phone_;
    std::set<std::string> files_;               // case keys
    std::set<std::string> folders_;             // case keys
    std::set<std::string> freed_;               // case keys
    std::map<std::string, std::string> roots_;  // chosen folder to name on the phone
};

}  // namespace kesta
