// Reads an archive back, to see that it holds what was put in.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "stages/backup/zip_writer.h"

namespace kesta {

/// Unpacks every entry, compares it with its CRC, and the names, sizes and CRCs with those expected. keepGoing is told
/// of the bytes read; when it answers false the check ends without a failure.
os::Status CheckZip(const std::string& path, const std::vector<ZipEntry>& expected,
                    const std::function<bool(size_t bytes)>& keepGoing);

}  // namespace kesta
