// Address books and calendars as they would be read from the PC.
#pragma once

#include <algorithm>
#include <string>

#include "os/files.h"
#include "stages/pim/pim_source.h"

namespace kesta::test {

/// With the separators of this system.
[[nodiscard]] inline std::string PcPath(std::string path)
{
    std::replace(path.begin(), path.end(), '/', os::kSeparator);
    return path;
}

[[nodiscard]] inline PimSource Contacts(const std::string& contents, const std::string& path = "/pc/friends.vcf")
{
    return MakePimSource(PimKind::kContacts, PcPath(path), contents, FromNumber(3'900'000'000));
}

[[nodiscard]] inline PimSource Calendars(const std::string& contents, const std::string& path = "/pc/cal.ics")
{
    return MakePimSource(PimKind::kCalendar, PcPath(path), contents, FromNumber(3'900'000'000));
}

}  // namespace kesta::test
