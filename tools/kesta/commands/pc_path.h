// Folders and files that the user names, as the database knows them.
#pragma once

#include <string>

namespace kesta {

/// The database knows folders and files by their canonical path. Of a path at whose end there is nothing any more the
/// part that is still there counts.
[[nodiscard]] std::string RecordedPath(const std::string& given);
/// Whether a recorded path is what the user names: canonically, or letter by letter as it stands in the database.
[[nodiscard]] bool IsNamed(const std::string& recorded, const std::string& given);

}  // namespace kesta
