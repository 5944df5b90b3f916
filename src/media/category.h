// The media categories: four families of the same fourteen exports, told apart by what stands here.
#pragma once

#include <cstdint>

#include "core/format.h"
#include "media/media_tables.h"

namespace kesta {

struct Category {
    MediaTables tables;
    Format<Name, Plain, Plain, int32_t> enterSetFolderDeleted;  // Deliberate: music names its argument differently
};

inline constexpr Category kMusic = {{{"tMFolder"}, {"vMFolder"}, {"tMFile"}, {"vMFile"}},
                                    "Enter %s(IMEI: %s, Path: %s, bDeleted: %d).\n"};
inline constexpr Category kImage = {{{"tIFolder"}, {"vIFolder"}, {"tIFile"}, {"vIFile"}},
                                    "Enter %s(IMEI: %s, Path: %s, Deleted: %d).\n"};
inline constexpr Category kVideo = {{{"tVFolder"}, {"vVFolder"}, {"tVFile"}, {"vVFile"}},
                                    "Enter %s(IMEI: %s, Path: %s, Deleted: %d).\n"};
inline constexpr Category kDocument = {{{"tDFolder"}, {"vDFolder"}, {"tDFile"}, {"vDFile"}},
                                       "Enter %s(IMEI: %s, Path: %s, Deleted: %d).\n"};

}  // namespace kesta
