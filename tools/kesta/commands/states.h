// The states of folders and playlists in words, the same in every command.
#pragma once

#include <cstddef>
#include <string>

#include "database/database.h"

namespace kesta {

/// A media folder's state, from its record and the number of its files that are recorded as copied.
[[nodiscard]] std::string StateOf(const RecordedFolder& folder, size_t filesOnPhone);
/// A gallery folder's, of which no files are counted.
[[nodiscard]] std::string StateOf(const RecordedFolder& folder);
[[nodiscard]] std::string StateOf(const RecordedPlaylist& list);
/// For tables: sizes below zero, which another program may have stored, are shown as 0 B.
[[nodiscard]] std::string SizeText(int64_t bytes);

}  // namespace kesta
