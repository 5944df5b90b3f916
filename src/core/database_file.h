// Where the database lies, and what the file there holds.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "platform/files.h"

namespace kesta {

/// The database's full path, in the system's form and in the only one that SQLite sees.
class DatabasePath {
public:
    /// The folders are created if missing. Without an application-data folder the path is empty.
    DatabasePath();

    [[nodiscard]] const platform::Path& file() const { return file_; }
    /// Null when the path is longer than SQLite could be given.
    [[nodiscard]] const char* utf8() const { return fits_ ? utf8_.data() : nullptr; }

private:
    static constexpr size_t kUtf8Bytes = 1040;

    platform::Path file_;
    std::array<char, kUtf8Bytes + 1> utf8_ = {};
    bool fits_ = false;
};

/// The version of the file; -1 when it holds none or is no sound database. Nothing when it cannot be told for now,
/// because the file is locked or cannot be read: it may well be sound.
std::optional<int32_t> ReadDatabaseVersion(const char* utf8Path);

}  // namespace kesta
