// A phone as commands get at it: what goes wrong ends them.
#pragma once

#include <string>

#include "phone/phone_folder.h"

namespace kesta {

/// Throws when the folder is not there.
[[nodiscard]] PhoneFolder OpenPhone(const std::string& path);
/// For commands that change the phone: one at a time. Throws also when it cannot be written.
void LockPhone(os::DirectoryLock& lock, const PhoneFolder& phone);

}  // namespace kesta
