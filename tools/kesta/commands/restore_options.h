// What kesta restore is asked for, and where things go: the same for the trash and for archives.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "phone/phone_folder.h"

namespace kesta {

struct RestoreOptions {
    std::string phone;  // empty: where it was last seen
    std::optional<std::string> imei;
    std::vector<std::string> paths;  // on the phone
    std::optional<std::string> day;
    std::optional<std::string> backup;  // an archive, or a folder of them
    bool all = false;
    bool dryRun = false;
};

/// Whether the user names the file, or a folder that it lies in.
[[nodiscard]] bool IsNamed(const RestoreOptions& options, const std::string& phonePath);
/// The file's own place, or one beside it where something else lies by now. Of several the seed tells them apart.
[[nodiscard]] std::string PlaceFor(const std::string& phonePath, const std::string& seed, const PhoneFolder& phone);

}  // namespace kesta
