// The address books and calendars of the PC as they are given to a sync: files, or folders with a file for each card.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "stages/pim/pim_entry.h"

namespace kesta {

struct PimSourceFolder {
    std::string id;
    std::string name;  // of the calendar; the file's own without its extension where there is none
    std::vector<PimEntry> entries;
};

struct PimSource {
    std::string path;
    std::string id;
    bool readable = false;
    bool complete = false;  // read to its end and understood, so that what was not seen is gone
    std::string problem;    // what is wrong when it is not complete
    std::vector<PimSourceFolder> folders;
    bool isMoved = false;  // gone, and another source holds all of it: it goes whatever the guard says
    size_t leftOut = 0;    // parts that are no entries, and files of a folder that are no address books
};

/// Reads the file, or for contacts all .vcf files of the folder as one address book. One that changes meanwhile is read
/// again, and then counts as not complete.
[[nodiscard]] PimSource ReadPimSource(PimKind kind, const std::string& canonicalPath);
/// From the file's contents. Entries that do not say when they were changed get the file's time.
[[nodiscard]] PimSource MakePimSource(PimKind kind, const std::string& canonicalPath, std::string_view contents,
                                      std::optional<LocalTime> modified);

}  // namespace kesta
