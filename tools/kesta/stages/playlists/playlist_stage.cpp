#include "stages/playlists/playlist_stage.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/text.h"
#include "database/failures.h"
#include "os/system.h"
#include "stages/playlists/list_changes.h"

namespace kesta {
namespace {

RecordedPlaylist* FindList(std::vector<RecordedPlaylist>& lists, const std::string& name)
{
    const auto found =
        std::find_if(lists.begin(), lists.end(), [&](const RecordedPlaylist& list) { return list.name == name; });
    return found == lists.end() ? nullptr : &*found;
}

// The library takes it into its statements as it is. What another program has stored may hold anything.
bool IsStorableDigest(const std::string& digest)
{
    return std::all_of(digest.begin(), digest.end(), [](char c) { return c >= ' ' && c <= '~' && c != '\''; });
}

void Measure(const PcPlaylist& list, RecordedPlaylist& record)
{
    record.count = static_cast<int32_t>(list.members.size());
    record.size = 0;
    record.sized = true;
    for (const ListMember& member : list.members) {
        record.size += static_cast<int64_t>(member.size);
        record.sized = record.sized && (member.found || member.isUrl());
    }
    record.totalSize = record.size;
}

}  // namespace

Plan PlaylistFileStage::plan(Session& session)
{
    Plan plan(session.report.summary.files);
    if (!readLists(session)) {
        return plan;
    }
    if (session.isKnown) {
        state_.recorded = state_.records.all();
    }
    std::vector<RecordedPlaylist> lists = listsToConfirm();
    predictConfirmed(lists);
    if (session.isKnown) {
        for (const RecordedPlaylist& list : state_.recorded) {
            state_.members[list.name] = state_.records.members(list.name);
        }
        state_.files = state_.records.files();
    }
    state_.media = media_;
    takeInFilesOfThePhone(session.folder);
    PhoneChanges changes = ChangesOf(session);
    state_.plan = PlanPlaylists(
        {state_.pc.lists, state_.recorded, state_.members, state_.files, state_.media, session.guard, changes},
        session.phone);
    for (const RecordedPlaylist* list : state_.plan.notSelected) {
        session.report.note(fmt::format("the playlist {} is not selected for this phone in the database: skipped.",
                                        Printable(list->name)));
    }
    for (const RecordedPlaylist* list : state_.plan.deletedOnPhone) {
        session.report.note(fmt::format("the playlist {} was deleted on the phone: skipped.", Printable(list->name)));
    }

    addChanges(std::move(lists), plan);
    return plan;
}

void PlaylistFileStage::addChanges(std::vector<RecordedPlaylist> lists, Plan& plan)
{
    Change confirmation;
    confirmation.record = [this, lists = std::move(lists)](const Written&) { confirm(lists); };
    plan.add(std::move(confirmation));
    for (const RecordedFile& file : state_.plan.reassigned) {
        Change change;
        change.phonePath = file.phonePath;  // to be found by the journal if the run ends between the two steps
        change.record = [this, file](const Written&) { reassign(file); };
        plan.add(std::move(change));
    }
    plan.found.unchanged = state_.plan.files.unchanged;
    for (const FileChange& removal : state_.plan.files.removals) {
        plan.add(ToChange(removal, state_.fileRecords));
    }
    for (const FileChange& copy : state_.plan.files.copies) {
        plan.add(ToChange(copy, state_.fileRecords));
    }
}

bool PlaylistFileStage::readLists(Session& session)
{
    const std::string& given = *session.options.playlists;
    std::string folder;
    if (os::Status status = os::CanonicalPath(given, folder); !status.ok()) {
        session.report.fail(given, "the folder cannot be read: " + status.text());
        return false;
    }
    state_.pc = ReadPlaylists(folder, [] { return !os::Interrupted(); });
    Session::checkInterrupt();
    for (const ListProblem& problem : state_.pc.problems) {
        session.report.fail(problem.path, problem.reason);
    }
    if (!state_.pc.found) {
        return false;
    }
    session.report.leaveOut("Playlists", "in other formats", state_.pc.otherFormats);
    session.report.progress.say(
        fmt::format("{:<9} {}: {}", "Playlists", Printable(folder), Counted(state_.pc.lists.size(), "playlist")),
        {"folder", {{"category", "playlists"}, {"path", folder}, {"files", uint64_t{state_.pc.lists.size()}}}});
    return true;
}

// A list keeps the digest of what the phone has until it has something else: a digest of the PC's list would hide from
// the next run that this one was cut short.
std::vector<RecordedPlaylist> PlaylistFileStage::listsToConfirm()
{
    std::vector<RecordedPlaylist> lists;
    for (const PcPlaylist& list : state_.pc.lists) {
        const RecordedPlaylist* known = FindList(state_.recorded, list.name);
        if (known == nullptr && !list.readable) {
            continue;
        }
        RecordedPlaylist record = known != nullptr ? *known : RecordedPlaylist();
        record.name = list.name;
        if (list.readable) {
            Measure(list, record);
        }
        lists.push_back(std::move(record));
    }
    // What the user does not want synced stays as it is, whether or not the PC still has it.
    for (const RecordedPlaylist& record : state_.recorded) {
        const bool isOnPc = std::any_of(state_.pc.lists.begin(), state_.pc.lists.end(),
                                        [&](const PcPlaylist& list) { return list.name == record.name; });
        if (!isOnPc && !record.selected) {
            lists.push_back(record);
        }
    }
    for (RecordedPlaylist& list : lists) {
        if (!IsStorableDigest(list.digest)) {
            list.digest.clear();
        }
    }
    return lists;
}

void PlaylistFileStage::confirm(const std::vector<RecordedPlaylist>& lists)
{
    try {
        state_.records.beginConfirming();
        for (const RecordedPlaylist& list : lists) {
            state_.records.confirm(list);
        }
    } catch (const kesta_db::Error& failure) {
        throw StopRun(ExitCode::kDatabase,
                      "the playlists cannot be recorded in the database: " + SentenceOf(failure.code()));
    }
    std::vector<RecordedPlaylist> recorded = state_.records.all();
    for (const RecordedPlaylist& list : lists) {
        const RecordedPlaylist* row = FindList(recorded, list.name);
        if (row == nullptr || row->state == PlaylistState::kUnconfirmed || row->count != list.count) {
            throw StopRun(ExitCode::kDatabase,
                          fmt::format("the playlist {} could not be recorded in the database", list.name));
        }
    }
}

// What the database holds after confirm().
void PlaylistFileStage::predictConfirmed(const std::vector<RecordedPlaylist>& lists)
{
    for (RecordedPlaylist& row : state_.recorded) {
        if (row.state != PlaylistState::kDeleted) {
            row.state = PlaylistState::kUnconfirmed;
        }
    }
    for (const RecordedPlaylist& list : lists) {
        RecordedPlaylist* row = FindList(state_.recorded, list.name);
        if (row == nullptr) {
            state_.recorded.push_back(list);
        } else if (row->state == PlaylistState::kUnconfirmed) {
            *row = list;
            row->state = list.idInPhone ? PlaylistState::kCurrent : PlaylistState::kNew;
        }
    }
}

// A list may name files that lie on the phone itself.
void PlaylistFileStage::takeInFilesOfThePhone(const PhoneFolder& phone)
{
    const std::string root = os::Join(phone.root(), "");
    for (const PcPlaylist& list : state_.pc.lists) {
        for (const ListMember& member : list.members) {
            if (!member.found || !member.path.starts_with(root)) {
                continue;
            }
            std::string path = member.path.substr(root.size());
            std::replace(path.begin(), path.end(), os::kSeparator, '/');
            state_.media[member.path] = path;
        }
    }
}

// The library cannot give a record to another list: it is taken out and entered anew.
void PlaylistFileStage::reassign(const RecordedFile& file)
{
    try {
        state_.records.removeFile(file.path);
        if (state_.records.addFile(file)) {
            return;
        }
        throw kesta_db::Error("DB_PLAYERMUSIC_SetAddedFile", kesta_db::Code::kExists);
    } catch (const kesta_db::Error& failure) {
        throw StopRun(ExitCode::kDatabase, "the database cannot be written: " + SentenceOf(failure.code()));
    }
}

Plan PlaylistStage::plan(Session& session)
{
    Plan plan(session.report.summary.beginFamily("Playlists", "playlist"));
    if (!state_.pc.found) {
        return plan;
    }
    plan.found.deferred = state_.plan.deferred;
    ListChanges(state_, session, plan).add();
    // Music that media sync carries by now goes when no list on the phone names it any more.
    for (const FileChange& removal : state_.plan.superseded.removals) {
        Change change = ToChange(removal, state_.fileRecords);
        change.tally = &session.report.summary.files;
        change.needsAllBefore = true;
        plan.add(std::move(change));
    }
    return plan;
}

std::vector<std::string> PhonePathsOfPlaylists(const Database& database, const std::string& imei)
{
    kesta_db::Playlists playlists = database.playlists(imei);
    std::vector<std::string> paths;
    for (const RecordedPlaylist& list : playlists.all()) {
        if (list.idInPhone) {
            paths.push_back(*list.idInPhone);
        }
    }
    for (const RecordedFile& file : playlists.files()) {
        paths.push_back(file.phonePath);
    }
    return paths;
}

}  // namespace kesta
