#include "commands/sync_folders.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

#include "base/text.h"
#include "commands/pc_path.h"
#include "os/system.h"

namespace kesta {
namespace {

std::string TryCanonical(const std::string& path)
{
    std::string canonical;
    // A folder that is missing gets its turn, and its message, when it is read.
    return os::CanonicalPath(path, canonical).ok() ? canonical : os::AbsolutePath(path);
}

RecordedFolder Entry(const FolderScan& scan)
{
    RecordedFolder folder;
    folder.path = scan.path;
    folder.count =
        static_cast<std::int32_t>(std::min<std::size_t>(scan.files.size(), std::numeric_limits<std::int32_t>::max()));
    folder.size = folder.totalSize = static_cast<std::int64_t>(scan.totalSize);
    folder.sized = scan.complete;
    return folder;
}

}  // namespace

ChosenFolders ChooseFolders(const SyncOptions& options, const PhoneFolder& phone)
{
    ChosenFolders chosen;
    for (std::size_t category = 0; category < chosen.size(); ++category) {
        for (const std::string& given : options.folders[category]) {
            const std::string path = TryCanonical(given);
            if (os::LiesIn(path, phone.root()))
                throw std::runtime_error(fmt::format("the folder {} lies on the phone itself", path));
            const bool isNew = std::none_of(chosen[category].begin(), chosen[category].end(),
                                            [&](const ChosenFolder& folder) { return folder.path == path; });
            if (isNew) chosen[category].push_back({path});
        }
    }
    return chosen;
}

void ScanChosen(Category category, const std::vector<ChosenFolder>& folders, const PhoneFolder& phone,
                CategoryState& state, Progress& progress, Summary& summary)
{
    ScanOptions options;
    options.phone = phone.id();
    options.keepGoing = [&](std::size_t files) {
        progress.remark(fmt::format("reading folders: {}", Counted(files, "file")));
        return !os::Interrupted();
    };
    for (const ChosenFolder& folder : folders) {
        const auto known = std::find_if(state.known.begin(), state.known.end(),
                                        [&](const RecordedFolder& row) { return row.path == folder.path; });
        if (known != state.known.end() && !known->selected) {
            summary.notes.push_back(
                fmt::format("{} is not selected for this phone in the database: skipped.", Printable(folder.path)));
            continue;
        }
        if (!IsValidUtf8(folder.path)) {
            summary.fail(folder.path, "its path is not valid text");
            continue;
        }
        FolderScan scan = ScanFolder(folder.path, options);
        if (os::Interrupted()) return summary.stopWith(ExitCode::kInterrupted, "interrupted");
        for (const ScanProblem& problem : scan.problems) summary.fail(problem.path, problem.reason);
        if (!scan.complete)
            summary.notes.push_back(
                fmt::format("{} could not be read completely: nothing of it is removed.", Printable(folder.path)));
        if (!scan.found) continue;
        progress.say(fmt::format("{:<9} {}: {}, {}", TitleOf(category), Printable(scan.path),
                                 Counted(scan.files.size(), "file"), FormatSize(scan.totalSize)));
        if (scan.repeatedLinks > 0)
            summary.notes.push_back(fmt::format("{}: {} to folders that are read already not followed again.",
                                                Printable(scan.path), Counted(scan.repeatedLinks, "link")));
        state.scans.push_back(std::move(scan));
    }
}

void EnterFolders(Database& database, const std::string& imei, Category category, CategoryState& state,
                  Summary& summary)
{
    if (state.scans.empty()) return;
    for (const FolderScan& scan : state.scans) {
        if (const std::int32_t code = database.addFolder(imei, category, Entry(scan)); code != 0)
            throw DatabaseError(fmt::format("the folder {} cannot be entered: {}", scan.path, ResultText(code)));
    }
    // The library does not say whether the folder's row was written, so the rows have to tell.
    state.known = database.folders(imei, category);
    std::erase_if(state.scans, [&](const FolderScan& scan) {
        const RecordedFolder wanted = Entry(scan);
        const bool isThere = std::any_of(state.known.begin(), state.known.end(), [&](const RecordedFolder& row) {
            return row.path == wanted.path && row.count == wanted.count && row.size == wanted.size && !row.deleted;
        });
        if (!isThere) summary.fail(scan.path, "the folder could not be entered in the database");
        return !isThere;
    });
}

}  // namespace kesta
