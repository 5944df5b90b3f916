// The playlists in a folder of the PC, and the files that their entries name.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/dates.h"
#include "formats/playlist.h"
#include "os/files.h"

namespace kesta {

struct ListMember {
    formats::PlaylistEntry entry;  // as the list has it
    std::string path;              // canonical where there is a file; empty for a URL
    std::string namedPath;         // as the list names it, without links resolved
    bool found = false;            // it is a file that is there
    /// What else the list may mean by it, while there is no such file.
    std::vector<std::string> otherPaths;
    uint64_t size = 0;
    os::FileTime modified;
    std::optional<LocalTime> localTime;

    [[nodiscard]] bool isUrl() const { return entry.location.kind == formats::LocationKind::kUrl; }
};

struct PcPlaylist {
    std::string name;  // the key in the database: the file's name without its ending, where that is unique
    std::string path;
    std::string title;  // as players show it; never empty
    std::vector<ListMember> members;
    bool readable = true;
    bool complete = true;  // every line was understood, so that what is not listed is not wanted
};

struct ListProblem {
    std::string path;
    std::string reason;
};

struct PcPlaylists {
    bool found = false;  // the folder could be read
    std::vector<PcPlaylist> lists;
    std::vector<ListProblem> problems;
    size_t otherFormats = 0;  // lists that cannot be read
};

/// Takes the canonical path of a folder; folders below it are not looked at.
[[nodiscard]] PcPlaylists ReadPlaylists(const std::string& folder, const std::function<bool()>& keepGoing);

}  // namespace kesta
