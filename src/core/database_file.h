// The database's file: where it lies, what it holds, how it is made and how one of another version is put aside.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "core/results.h"
#include "platform/files.h"

namespace kesta {

/// A file's full path, in the system's form and in the only one that SQLite sees.
class DatabasePath {
public:
    /// The database's. Its folders are created if missing; without an application-data folder the path is empty.
    DatabasePath();
    explicit DatabasePath(platform::Path file);

    [[nodiscard]] const platform::Path& file() const { return file_; }
    /// Null when the path is longer than SQLite could be given.
    [[nodiscard]] const char* utf8() const { return fits_ ? utf8_.data() : nullptr; }

private:
    static constexpr size_t kUtf8Bytes = 1040;

    platform::Path file_;
    std::array<char, kUtf8Bytes + 1> utf8_ = {};
    bool fits_ = false;
};

/// The version of the file; -1 when it holds none or is no valid database, which is said only after every byte of it
/// could be read. None if it cannot be told for now, because the file is locked or the system failed to read it.
std::optional<int32_t> ReadDatabaseVersion(const DatabasePath& path);

/// Lets go of what an earlier creation has left half made, before the file is used: whoever records something in it
/// makes it his own.
void ForgetUnfinished(const DatabasePath& path);

/// Removes the file after giving it a second name beside it, "....replaced-YYYYMMDD-HHMMSS", where that can be done;
/// the three newest of these stay. False when it cannot be removed.
bool ReplaceFile(const DatabasePath& path);

/// Builds a fresh database at the path, where no file is. It is built under another name and renamed when it is
/// complete, so that whoever ends halfway leaves no incomplete one. The result is that of DB_INTERNAL_Create;
/// kFileInTheWay when a file has appeared meanwhile.
ResultCode CreateDatabase(const DatabasePath& path);

}  // namespace kesta
