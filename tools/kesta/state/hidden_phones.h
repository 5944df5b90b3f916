// Phones that the user has forgotten. The library keeps a phone's row for ever, so the client does not show it.
#pragma once

#include <string>

#include "os/status.h"

namespace kesta {

[[nodiscard]] bool IsHidden(const std::string& imei);
/// Forgets with it what the client keeps of the phone on the PC.
os::Status HidePhone(const std::string& imei);
/// For a phone that is synced again.
os::Status ShowPhone(const std::string& imei);

}  // namespace kesta
