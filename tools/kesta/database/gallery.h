// Pictures and videos as one, in the library's own merged list.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "database/database.h"

namespace kesta {

class GalleryBooks {
public:
    explicit GalleryBooks(Books& /*opened*/) {}

    /// Picture and video folders in the library's order. Video folders behind the last picture folder are not in it;
    /// Books::folders has them all.
    [[nodiscard]] std::vector<RecordedFolder> folders(const std::string& imei);
};

}  // namespace kesta
