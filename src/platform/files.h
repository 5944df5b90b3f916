// The files and folders of the database.
#pragma once

#include <cstddef>
#include <filesystem>

namespace kesta::platform {

using Path = std::filesystem::path;

/// The current user's application-data folder, created if missing. False when there is none.
bool ApplicationDataFolder(Path& folder);

/// Creates one folder, private to the user where the system knows that; a failure shows when the folder is used.
void CreateFolder(const Path& folder) noexcept;

bool Exists(const Path& file) noexcept;

/// Whether the current user may write to the file, which exists.
bool IsWritable(const Path& file) noexcept;

/// Writes the path in UTF-8 with its terminator into `out` of `room` + 1 bytes; false when it is longer.
bool PathToUtf8(const Path& path, char* out, size_t room) noexcept;

bool RemoveFile(const Path& file) noexcept;

}  // namespace kesta::platform
