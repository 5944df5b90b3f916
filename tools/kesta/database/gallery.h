// Pictures and videos as one, in the library's own merged list.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "database/database.h"

namespace kesta {

class GalleryRecords {
public:
    explicit GalleryRecords(Database& /*opened*/) {}

    /// Picture and video folders in the library's order. Video folders behind the last picture folder are not in it;
    /// Database::folders has them all.
    [[nodiscard]] std::vector<RecordedFolder> folders(const std::string& imei);
};

}  // namespace kesta
