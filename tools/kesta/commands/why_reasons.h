// What the database of one phone says of a file or folder of the PC, and why it is or is not on the phone.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "database/database.h"
#include "os/files.h"

namespace kesta {

/// What is at the path now.
struct PcEntry {
    enum class Kind { kMissing, kFile, kFolder, kOther, kUnreadable };
    Kind kind = Kind::kMissing;
    std::string path;  // as the database would know it
    uint64_t size = 0;
    std::optional<LocalTime> modified;
    int32_t modifiedNanoseconds = 0;
};

[[nodiscard]] PcEntry ReadPcEntry(const std::string& given);

struct Reason {
    std::string key;   // for programs: "folder_not_selected"
    std::string text;  // for people
};

/// A playlist that names the file.
struct NamingPlaylist {
    std::string name, state;
};

struct Explanation {
    std::vector<std::string> phonePaths;  // where the database says that it lies
    size_t filesOnPhone = 0;              // of a folder: of it and of those below it
    std::vector<Reason> reasons;
    std::vector<NamingPlaylist> playlists;
};

[[nodiscard]] Explanation Explain(const Database& database, const std::string& imei, const PcEntry& entry);

}  // namespace kesta
