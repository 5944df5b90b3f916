// The files that hold contacts and calendars on the phone.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "database/pim_kind.h"

namespace kesta {

/// From the entries as they were read. Contacts one after the other; calendar entries as one calendar with that name,
/// since most programs read no more than a file's first. Entries whose calendars or time zones contradict each other
/// get calendars of their own.
[[nodiscard]] std::string PhoneFileText(PimKind kind, const std::string& name,
                                        std::span<const std::string_view> entries);

}  // namespace kesta
