#include "stages/media/media_stage.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

#include "base/text.h"
#include "database/failures.h"
#include "os/system.h"
#include "phone/names.h"

namespace kesta {
namespace {

std::string TryCanonical(const std::string& path)
{
    std::string canonical;
    // A folder that is missing gets its turn, and its message, when it is read.
    return os::CanonicalPath(path, canonical).ok() ? canonical : os::AbsolutePath(path);
}

RecordedFolder ToRecord(const FolderScan& scan)
{
    RecordedFolder folder;
    folder.path = scan.path;
    folder.count = static_cast<int32_t>(std::min<size_t>(scan.files.size(), std::numeric_limits<int32_t>::max()));
    folder.size = folder.totalSize = static_cast<int64_t>(scan.totalSize);
    folder.sized = scan.complete;
    return folder;
}

// Reads the category's chosen folders, but for those that are not selected. What cannot be read goes to the report.
void ScanChosen(Category category, const std::vector<std::string>& folders, MediaState::OfCategory& state,
                Session& session)
{
    Report& report = session.report;
    ScanOptions options;
    options.phone = session.folder.id();
    options.keepGoing = [&](size_t files) {
        report.progress.remark(fmt::format("reading folders: {}", Counted(files, "file")));
        return !os::Interrupted();
    };
    for (const std::string& folder : folders) {
        const auto known = std::find_if(state.known.begin(), state.known.end(),
                                        [&](const RecordedFolder& row) { return row.path == folder; });
        if (known != state.known.end() && !known->selected) {
            report.note(fmt::format("{} is not selected for this phone in the database: skipped.", Printable(folder)));
            continue;
        }
        if (!IsValidUtf8(folder)) {
            report.fail(folder, "its path is not valid text");
            continue;
        }
        options.filter = std::make_shared<FileFilter>(category, session.options.rules);
        FolderScan scan = ScanFolder(folder, options);
        Session::checkInterrupt();
        for (const ScanProblem& problem : scan.problems) {
            report.fail(problem.path, problem.reason);
        }
        if (!scan.complete) {
            report.note(fmt::format("{} could not be read completely: nothing of it is removed.", Printable(folder)));
        }
        if (!scan.found) {
            continue;
        }
        report.leaveOut(TitleOf(category), "of other kinds", scan.otherKinds);
        report.leaveOut(TitleOf(category), "by rules", scan.byRules);
        report.leaveOut(TitleOf(category), "as junk", scan.junk);
        const std::string others = scan.otherKinds > 0
                                       ? fmt::format(", {} of other kinds left out", Counted(scan.otherKinds, "file"))
                                       : std::string();
        report.progress.say(fmt::format("{:<9} {}: {}, {}{}", TitleOf(category), Printable(scan.path),
                                        Counted(scan.files.size(), "file"), FormatSize(scan.totalSize), others),
                            {"folder",
                             {{"category", std::string(KeyOf(category))},
                              {"path", scan.path},
                              {"files", uint64_t{scan.files.size()}},
                              {"bytes", scan.totalSize}}});
        if (scan.repeatedLinks > 0) {
            report.note(fmt::format("{}: {} to folders that are read already not followed again.", Printable(scan.path),
                                    Counted(scan.repeatedLinks, "link")));
        }
        state.scans.push_back(std::move(scan));
    }
}

// A folder whose row was not stored is left out of this run.
void RecordFolders(Category category, MediaState::OfCategory& state, Session& session)
{
    kesta_db::Media media = session.database.media(session.imei, category);
    for (const FolderScan& scan : state.scans) {
        try {
            media.addFolder(ToRecord(scan));
        } catch (const kesta_db::Error& failure) {
            if (failure.code() != kesta_db::Code::kNotStored) {
                throw StopRun(ExitCode::kDatabase, fmt::format("the folder {} cannot be recorded: {}", scan.path,
                                                               SentenceOf(failure.code())));
            }
        }
    }
    state.known = media.folders();
    std::erase_if(state.scans, [&](const FolderScan& scan) {
        const RecordedFolder wanted = ToRecord(scan);
        const bool isThere = std::any_of(state.known.begin(), state.known.end(), [&](const RecordedFolder& row) {
            return row.path == wanted.path && row.count == wanted.count && row.size == wanted.size && !row.deleted;
        });
        if (!isThere) {
            session.report.fail(scan.path, "the folder could not be recorded in the database");
        }
        return !isThere;
    });
}

void ForgetMovedFolders(const std::vector<FilePlan>& ofCategories, Session& session, Plan& plan)
{
    for (const FilePlan& files : ofCategories) {
        for (const std::string& folder : files.foldersMoved) {
            Change change;
            change.subject = folder;
            change.needsAllBefore = true;  // With the folder the library forgets its files.
            change.record = [folder, category = files.category, &session](const Written&) {
                session.database.media(session.imei, category).removeFolder(folder);
                session.movedSources.push_back(folder);
            };
            plan.add(std::move(change));
        }
    }
}

}  // namespace

ChosenFolders ChooseFolders(const SyncOptions& options, const PhoneFolder& phone)
{
    ChosenFolders chosen;
    for (size_t category = 0; category < chosen.size(); ++category) {
        for (const std::string& given : options.folders[category]) {
            const std::string path = TryCanonical(given);
            if (os::LiesIn(path, phone.root())) {
                throw StopRun(ExitCode::kFailure, fmt::format("the folder {} lies on the phone itself", path));
            }
            if (std::find(chosen[category].begin(), chosen[category].end(), path) == chosen[category].end()) {
                chosen[category].push_back(path);
            }
        }
    }
    return chosen;
}

Plan MediaFolderStage::plan(Session& session)
{
    Plan plan(session.report.summary.files);
    for (const Category category : kCategories) {
        const auto index = static_cast<size_t>(category);
        MediaState::OfCategory& state = state_.categories[index];
        ScanChosen(category, state_.chosen[index], state, session);
        if (state.scans.empty()) {
            continue;
        }
        Change change;
        change.record = [category, &state, &session](const Written&) { RecordFolders(category, state, session); };
        plan.add(std::move(change));
    }
    return plan;
}

Plan MediaStage::plan(Session& session)
{
    Plan plan(session.report.summary.files);
    PhoneChanges changes = ChangesOf(session);
    std::vector<FilePlan> ofCategories;
    for (const Category category : kCategories) {
        MediaState::OfCategory& state = state_.categories[static_cast<size_t>(category)];
        for (const RecordedFile& file : state.recorded) {
            if (IsPhonePath(file.phonePath, category)) {
                state_.phonePaths[file.path] = file.phonePath;
            }
        }
        PlanInput input{category, {}, std::move(state.known), std::move(state.recorded), session.guard, changes};
        for (const FolderScan& scan : state.scans) {
            input.folders.push_back(&scan);
        }
        if (!input.folders.empty()) {
            ofCategories.push_back(PlanCategory(input, session.phone));
        }
    }
    // All removals come first: they make room for what is copied.
    for (const FilePlan& files : ofCategories) {
        plan.found.unchanged += files.unchanged;
        plan.found.deferred += files.deferred;
        for (const DeferredFolder& folder : files.deferredFolders) {
            session.report.note(fmt::format("{}: {} of {} recorded files are gone from it; they stay on the phone.",
                                            Printable(folder.path), folder.gone, folder.recorded));
        }
        for (const FileChange& removal : files.removals) {
            state_.phonePaths.erase(removal.file.path);
            plan.add(ToChange(removal, records_));
        }
    }
    for (const FilePlan& files : ofCategories) {
        for (const FileChange& move : files.moves) {
            state_.phonePaths.erase(move.oldPath);
            state_.phonePaths[move.file.path] = move.file.phonePath;
            plan.add(ToChange(move, records_));
        }
    }
    ForgetMovedFolders(ofCategories, session, plan);
    for (const FilePlan& files : ofCategories) {
        for (const FileChange& copy : files.copies) {
            state_.phonePaths[copy.file.path] = copy.file.phonePath;
            plan.add(ToChange(copy, records_));
        }
    }
    return plan;
}

}  // namespace kesta
