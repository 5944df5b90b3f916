// Where the files of a category lie on the phone.
#pragma once

#include <map>
#include <string>

#include "phone/phone_paths.h"
#include "stages/media/moves.h"

namespace kesta {

/// The phone paths of a category: each chosen folder has a folder of its own on the phone.
class PhoneNames : public PhonePaths {
public:
    PhoneNames(Category category, const PhoneView& phone)
        : PhonePaths(std::string(PhoneFolderOf(category)), phone), category_(category)
    {
    }

    /// Fixes the folder on the phone for each chosen folder: where its recorded files lie, else its own name, with a
    /// suffix when another folder has that name.
    /// What was moved from a folder does not count.
    void chooseRoots(const PlanInput& input, const MovedRecords& moved);

    [[nodiscard]] Allocated allocate(const std::string& folder, const ScannedFile& file);
    /// For a file that lies on the phone already: where it is if that is where it would be put, else a place where
    /// nothing is.
    [[nodiscard]] std::string allocateMoved(const std::string& folder, const ScannedFile& file,
                                            const std::string& phonePath);

private:
    [[nodiscard]] std::vector<std::string> partsOf(const std::string& folder, const ScannedFile& file) const;

    Category category_;
    std::map<std::string, std::string> roots_;  // chosen folder to name on the phone
};

}  // namespace kesta
