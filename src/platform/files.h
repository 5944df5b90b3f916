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

enum class Presence {
    kAbsent,
    kPresent,
    kOutOfReach,  // in a folder that this user may not look into
    kUnknown,     // the system failed to look
};

/// Whether there is something under this name, links followed.
Presence Find(const Path& file) noexcept;

inline bool Exists(const Path& file) noexcept
{
    return Find(file) == Presence::kPresent;
}

/// Whether the current user may write to the file, which exists.
bool IsWritable(const Path& file) noexcept;

/// Writes the path in UTF-8 with its terminator into `out` of `room` + 1 bytes; false when it is longer.
bool PathToUtf8(const Path& path, char* out, size_t room) noexcept;

bool RemoveFile(const Path& file) noexcept;

/// Whether it is a file that can be read from its first to its last byte.
bool CanReadAll(const Path& file) noexcept;

/// Creates an empty file that is private to the user. False when there is one already, or when files take their rights
/// from their folder; a failure shows when the file is used.
bool CreatePrivateFile(const Path& file) noexcept;

/// What lies under a new name already is never replaced.
enum class Naming { kDone, kNameTaken, kFailed };

/// Gives the file a second name: a link where the file system has them, else a copy.
Naming GiveSecondName(const Path& file, const Path& second) noexcept;

/// Renames a file within its folder.
Naming MoveIntoPlace(const Path& file, const Path& target) noexcept;

/// Has the folder's names survive a loss of power from here on, where the system leaves that to its programs.
void FlushFolder(const Path& folder) noexcept;

}  // namespace kesta::platform
