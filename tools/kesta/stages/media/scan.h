// Reading a chosen folder of the PC: which files are in it, and what could not be read.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/dates.h"
#include "os/files.h"
#include "stages/media/file_filter.h"

namespace kesta {

struct ScannedFile {
    std::string path;      // on the PC
    std::string relative;  // below the chosen folder, with '/' between the components
    uint64_t size = 0;
    os::FileTime modified;
    std::optional<LocalTime> localTime;  // the same to the second, as the database keeps it
};

/// Something in the folder that is there but cannot be synced. Nothing at or below its path counts as gone.
struct ScanProblem {
    std::string path;
    std::string reason;
};

struct FolderScan {
    std::string path;
    bool found = false;     // the folder itself could be read
    bool complete = false;  // every folder below it could be read, so that what was not seen is gone
    std::vector<ScannedFile> files;
    std::vector<ScanProblem> problems;
    std::vector<std::string> emptyFolders;  // below the chosen one, without a file at any depth; the outermost of them
    uint64_t totalSize = 0;
    std::shared_ptr<const FileFilter> filter;  // with all .kestaignore files that were met; none: everything goes along
    size_t otherKinds = 0, byRules = 0, junk = 0;  // files and folders that stay on the PC
    size_t repeatedLinks = 0;  // links to folders that were read already, or that hold the chosen folder itself
};

struct ScanOptions {
    os::FileId phone;                    // the phone's own folder is skipped when it lies in a chosen one
    std::shared_ptr<FileFilter> filter;  // fills up with what .kestaignore files say
    std::function<bool(size_t filesSoFar)> keepGoing = [](size_t) { return true; };
};

/// Takes the canonical path of a folder. Links to files and folders are followed, each real folder is read once.
[[nodiscard]] FolderScan ScanFolder(const std::string& path, const ScanOptions& options);

}  // namespace kesta
