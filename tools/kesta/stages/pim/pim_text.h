// The files that hold contacts and calendars on the phone.
#pragma once

#include <string>
#include <vector>

#include "stages/pim/pim_entry.h"

namespace kesta {

/// Contacts one after the other; calendar entries as one calendar with that name, since most programs read no more than
/// a file's first. Entries whose calendars or time zones contradict each other get calendars of their own.
[[nodiscard]] std::string PhoneFileText(PimKind kind, const std::string& name, const std::vector<PimEntry>& entries);

}  // namespace kesta
