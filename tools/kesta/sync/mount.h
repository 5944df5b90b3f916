// Finds out what the mount of a phone lets be done: once, and again when it turns out otherwise.
#pragma once

#include <string>

#include "phone/phone_folder.h"
#include "report/report.h"

namespace kesta {

/// From an earlier run on the same mount, or by trying.
void LearnMount(PhoneFolder& phone, const std::string& imei, Report& report);
/// For the runs to come, when this one has found out more.
void RememberMount(const PhoneFolder& phone, const std::string& imei);

}  // namespace kesta
