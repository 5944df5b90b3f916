// Where the files of a category lie on the phone.
#pragma once

#include <map>
#include <string>

#include "phone/phone_paths.h"
#include "stages/media/plan.h"

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
    void chooseRoots(const PlanInput& input);

    [[nodiscard]] Allocated allocate(const std::string& folder, const ScannedFile& file);

private:
    Category category_;
    std::map<std::string, std::string> roots_;  // chosen folder to name on the phone
};

}  // namespace kesta
