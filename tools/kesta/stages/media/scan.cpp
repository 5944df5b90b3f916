#include "stages/media/scan.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <set>

#include "os/local_time.h"

namespace kesta {
namespace {

struct PendingFolder {
    std::string path;
    std::string relative;  // empty for the chosen folder itself
    os::FileId id;
};

class Scanner {
public:
    Scanner(FolderScan& scan, const ScanOptions& options) : scan_(scan), options_(options) {}

    void run()
    {
        os::FileInfo root;
        if (os::Status status = os::ReadInfo(scan_.path, root); !status.ok()) {
            return refuse(status.text());
        }
        if (root.kind != os::FileKind::kDirectory) {
            return refuse("it is not a folder");
        }
        scan_.complete = true;
        folders_.push_back({scan_.path, {}, root.id});
        // Links come after all real folders, so that a link to a sibling does not take the sibling's place.
        while (!folders_.empty() || !links_.empty()) {
            std::deque<PendingFolder>& next = folders_.empty() ? links_ : folders_;
            const PendingFolder folder = std::move(next.front());
            next.pop_front();
            if (!options_.keepGoing(scan_.files.size())) {
                scan_.complete = false;
                return;
            }
            readFolder(folder);
        }
        std::sort(scan_.files.begin(), scan_.files.end(),
                  [](const ScannedFile& a, const ScannedFile& b) { return a.path < b.path; });
        findEmptyFolders();
    }

private:
    void refuse(const std::string& reason) { scan_.problems.push_back({scan_.path, reason}); }

    void readFolder(const PendingFolder& folder)
    {
        if (folder.id == options_.phone) {
            return;
        }
        if (!seen_.insert(folder.id).second) {
            ++scan_.repeatedLinks;
            return;
        }
        std::vector<os::DirectoryEntry> entries;
        if (os::Status status = os::ListDirectory(folder.path, entries); !status.ok()) {
            scan_.complete = false;
            scan_.problems.push_back({folder.path, "the folder cannot be read: " + status.text()});
            return;
        }
        if (folder.relative.empty()) {
            scan_.found = true;
        }
        if (!readIgnoreFile(folder, entries)) {
            return;
        }
        read_.push_back(folder.path);
        std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
        for (const os::DirectoryEntry& entry : entries) {
            readEntry(folder, entry);
        }
    }

    // False if the user's rules for the folder cannot be known: it could hold what is to stay on the PC.
    bool readIgnoreFile(const PendingFolder& folder, const std::vector<os::DirectoryEntry>& entries)
    {
        const auto isThere = [](const os::DirectoryEntry& entry) { return entry.name == kIgnoreFileName; };
        if (!options_.filter || std::none_of(entries.begin(), entries.end(), isThere)) {
            return true;
        }
        std::string text;
        const std::string path = os::Join(folder.path, kIgnoreFileName);
        if (os::Status status = os::ReadText(path, text); !status.ok()) {
            scan_.complete = false;
            scan_.problems.push_back(
                {folder.path, fmt::format("{} cannot be read, so nothing of the folder is synced: {}", kIgnoreFileName,
                                          status.text())});
            return false;
        }
        options_.filter->addIgnoreFile(folder.relative, text);
        return true;
    }

    // Whether a rule keeps it on the PC.
    bool staysOnPc(const std::string& relative, bool isFolder)
    {
        if (!options_.filter) {
            return false;
        }
        const auto leftOut = isFolder ? options_.filter->prunes(relative) : options_.filter->leftOut(relative);
        if (leftOut) {
            ++(leftOut->reason == LeftOut::Reason::kJunk   ? scan_.junk
               : leftOut->reason == LeftOut::Reason::kKind ? scan_.otherKinds
                                                           : scan_.byRules);
        }
        return leftOut.has_value();
    }

    void readEntry(const PendingFolder& folder, const os::DirectoryEntry& entry)
    {
        const std::string path = os::Join(folder.path, entry.name);
        if (!entry.valid) {
            scan_.problems.push_back({path, "the name is not valid text"});
            return;
        }
        os::FileInfo info;
        if (os::Status status = os::ReadInfo(path, info); !status.ok()) {
            if (entry.isLink) {
                // Where it leads may come back with the drive it lies on. Only what is recorded behind it is in doubt.
                const bool isMissing = status.failure() == os::Failure::kMissing;
                scan_.problems.push_back({path, isMissing ? "the link leads nowhere" : status.text()});
            } else if (status.failure() != os::Failure::kMissing) {
                scan_.complete = false;
                scan_.problems.push_back({path, status.text()});
            }
            return;  // Otherwise it went between the two looks, and is gone.
        }
        const std::string relative = folder.relative.empty() ? entry.name : folder.relative + '/' + entry.name;
        if (info.kind != os::FileKind::kOther && staysOnPc(relative, info.kind == os::FileKind::kDirectory)) {
            return;
        }
        if (info.kind == os::FileKind::kFile) {
            scan_.files.push_back({path, relative, info.size, info.modified, os::ToLocalTime(info.modified.seconds)});
            scan_.totalSize += info.size;
        } else if (info.kind == os::FileKind::kDirectory && !entry.isLink) {
            folders_.push_back({path, relative, info.id});
        } else if (info.kind == os::FileKind::kDirectory) {
            if (holdsChosenFolder(path)) {
                ++scan_.repeatedLinks;
            } else {
                links_.push_back({path, relative, info.id});
            }
        }
    }

    // Such a folder may be where a disk belongs that is not mounted.
    void findEmptyFolders()
    {
        std::set<std::string> used{scan_.path};
        const auto use = [&](const std::string& path) {
            for (std::string folder = os::ParentOf(path); used.insert(folder).second; folder = os::ParentOf(folder)) {
            }
        };
        for (const ScannedFile& file : scan_.files) {
            use(file.path);
        }
        for (const ScanProblem& problem : scan_.problems) {
            use(problem.path);
        }
        for (const std::string& folder : read_) {
            if (!used.contains(folder) && used.contains(os::ParentOf(folder))) {
                scan_.emptyFolders.push_back(folder);
            }
        }
    }

    // A link upwards would pull in everything around the chosen folder.
    [[nodiscard]] bool holdsChosenFolder(const std::string& link) const
    {
        std::string target;
        if (!os::CanonicalPath(link, target).ok()) {
            return false;  // Reading the folder will tell why.
        }
        return os::LiesIn(scan_.path, target);
    }

    FolderScan& scan_;
    const ScanOptions& options_;
    std::deque<PendingFolder> folders_;
    std::deque<PendingFolder> links_;
    std::set<os::FileId> seen_;
    std::vector<std::string> read_;
};

}  // namespace

FolderScan ScanFolder(const std::string& path, const ScanOptions& options)
{
    FolderScan scan;
    scan.path = path;
    scan.filter = options.filter;
    Scanner(scan, options).run();
    return scan;
}

}  // namespace kesta
