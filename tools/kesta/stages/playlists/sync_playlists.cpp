#include "stages/playlists/sync_playlists.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_map>

#include "base/names.h"
#include "base/text.h"
#include "os/system.h"
#include "phone/phone_failure.h"
#include "phone/phone_layout.h"
#include "stages/media/carry_out.h"
#include "stages/playlists/list_carrier.h"
#include "sync/journal.h"

namespace kesta {
namespace {

// The music that goes along with playlists.
class MemberRecords : public FileRecords {
public:
    explicit MemberRecords(PlaylistRecords& database) : database_(database) {}
    [[nodiscard]] std::int32_t add(const Action& action) override { return database_.addFile(action.file); }
    [[nodiscard]] std::int32_t update(const Action& action) override { return database_.updateFile(action.file); }
    [[nodiscard]] std::int32_t remove(const Action& action) override { return database_.removeFile(action.file.path); }
    [[nodiscard]] bool holds(const Action& action) override
    {
        const std::vector<RecordedFile> all = database_.files();
        return std::any_of(all.begin(), all.end(), [&](const RecordedFile& row) {
            return row.path == action.file.path && row.phonePath == action.file.phonePath &&
                   row.modified == action.file.modified;
        });
    }

private:
    PlaylistRecords& database_;
};

RecordedPlaylist* FindList(std::vector<RecordedPlaylist>& lists, const std::string& name)
{
    const auto found =
        std::find_if(lists.begin(), lists.end(), [&](const RecordedPlaylist& list) { return list.name == name; });
    return found == lists.end() ? nullptr : &*found;
}

void Measure(const PcPlaylist& list, RecordedPlaylist& record)
{
    record.count = static_cast<std::int32_t>(list.members.size());
    record.size = 0;
    record.sized = true;
    for (const ListMember& member : list.members) {
        record.size += static_cast<std::int64_t>(member.size);
        record.sized = record.sized && (member.found || member.isUrl());
    }
    record.totalSize = record.size;
}

class PlaylistSync {
public:
    PlaylistSync(Database& database, const std::string& imei, PhoneFolder& phone, const SyncOptions& options,
                 const MediaPhonePaths& media, DeletionGuard& guard, Progress& progress, Summary& summary)
        : database_(database, imei),
          isKnown_(database.phone(imei).has_value()),
          phone_(phone),
          options_(options),
          media_(media),
          guard_(guard),
          progress_(progress),
          summary_(summary),
          counts_(summary.beginFamily("Playlists", "playlist"))
    {
    }

    void run()
    {
        if (!readLists()) return;
        confirm();
        for (const RecordedPlaylist& list : recorded_)
            if (isKnown_) members_[list.name] = database_.members(list.name);
        if (isKnown_) files_ = database_.files();
        takeInFilesOfThePhone();
        const PlaylistPlan plan = PlanPlaylists({pc_.lists, recorded_, members_, files_, media_, guard_}, phone_);
        tell(plan);
        if (options_.dryRun)
            preview(plan);
        else
            execute(plan);
    }

private:
    bool readLists()
    {
        std::string folder;
        if (os::Status status = os::CanonicalPath(*options_.playlists, folder); !status.ok()) {
            summary_.fail(*options_.playlists, "the folder cannot be read: " + status.text());
            return false;
        }
        pc_ = ReadPlaylists(folder, [] { return !os::Interrupted(); });
        if (os::Interrupted()) {
            summary_.stopWith(ExitCode::kInterrupted, "interrupted");
            return false;
        }
        for (const ListProblem& problem : pc_.problems) summary_.fail(problem.path, problem.reason);
        if (!pc_.found) return false;
        progress_.say(
            fmt::format("{:<9} {}: {}", "Playlists", Printable(folder), Counted(pc_.lists.size(), "playlist")));
        return true;
    }

    // The lists as they are to be confirmed. A list keeps the digest of what the phone has until it has something else:
    // a digest of the PC's list would hide from the next run that this one was cut short.
    std::vector<RecordedPlaylist> listsToConfirm(std::vector<RecordedPlaylist> before) const
    {
        std::vector<RecordedPlaylist> lists;
        for (const PcPlaylist& list : pc_.lists) {
            const RecordedPlaylist* known = FindList(before, list.name);
            if (known == nullptr && !list.readable) continue;
            RecordedPlaylist record = known != nullptr ? *known : RecordedPlaylist();
            record.name = list.name;
            if (list.readable) Measure(list, record);
            lists.push_back(std::move(record));
        }
        // What the user does not want synced stays as it is, whether or not the PC still has it.
        for (const RecordedPlaylist& record : before) {
            const bool isOnPc = std::any_of(pc_.lists.begin(), pc_.lists.end(),
                                            [&](const PcPlaylist& list) { return list.name == record.name; });
            if (!isOnPc && !record.selected) lists.push_back(record);
        }
        return lists;
    }

    void confirm()
    {
        if (isKnown_) recorded_ = database_.lists();
        const std::vector<RecordedPlaylist> lists = listsToConfirm(recorded_);
        if (options_.dryRun) return predictConfirmed(lists);
        const auto require = [](std::int32_t code) {
            if (code != 0) throw DatabaseError("the playlists cannot be entered in the database: " + ResultText(code));
        };
        require(database_.beginConfirming());
        for (const RecordedPlaylist& list : lists) require(database_.confirm(list));
        recorded_ = database_.lists();
        for (const RecordedPlaylist& list : lists) {
            const RecordedPlaylist* row = FindList(recorded_, list.name);
            if (row == nullptr || row->state == PlaylistState::kUnconfirmed || row->count != list.count)
                throw DatabaseError(fmt::format("the playlist {} could not be entered in the database", list.name));
        }
    }

    // What the database would hold after that.
    void predictConfirmed(const std::vector<RecordedPlaylist>& lists)
    {
        for (RecordedPlaylist& row : recorded_)
            if (row.state != PlaylistState::kDeletedOnPhone) row.state = PlaylistState::kUnconfirmed;
        for (const RecordedPlaylist& list : lists) {
            RecordedPlaylist* row = FindList(recorded_, list.name);
            if (row == nullptr) {
                recorded_.push_back(list);
            } else if (row->state == PlaylistState::kUnconfirmed) {
                *row = list;
                row->state = list.idInPhone ? PlaylistState::kCurrent : PlaylistState::kNew;
            }
        }
    }

    // A list may name files that lie on the phone itself.
    void takeInFilesOfThePhone()
    {
        const std::string root = os::Join(phone_.root(), "");
        for (const PcPlaylist& list : pc_.lists) {
            for (const ListMember& member : list.members) {
                if (!member.found || !member.path.starts_with(root)) continue;
                std::string place = member.path.substr(root.size());
                std::replace(place.begin(), place.end(), os::kSeparator, '/');
                media_[member.path] = {place, false};
            }
        }
    }

    void tell(const PlaylistPlan& plan)
    {
        for (const RecordedPlaylist* list : plan.notSelected)
            summary_.notes.push_back(fmt::format(
                "the playlist {} is not selected for this phone in the database: skipped.", Printable(list->name)));
        for (const RecordedPlaylist* list : plan.deletedOnPhone)
            summary_.notes.push_back(
                fmt::format("the playlist {} was deleted on the phone: skipped.", Printable(list->name)));
        counts_.deferred = plan.deferred;
        summary_.unchanged += plan.files.unchanged;
    }

    void preview(const PlaylistPlan& plan)
    {
        Preview({plan.files, plan.superseded}, options_.quiet, progress_, summary_);
        const auto say = [&](const char* verb, const std::string& place) {
            if (!options_.quiet) progress_.say(fmt::format("{:<9} {}", verb, Printable(place)));
        };
        for (const RecordedPlaylist* list : plan.leaving) {
            if (!list->idInPhone) continue;
            ++counts_.removed;
            say("remove", *list->idInPhone);
        }
        ListCarrier carrier(database_, phone_, progress_, summary_, counts_);
        const auto placeOf = [&](const ListMember& member) {
            const std::string place = PathInMedia(member, media_, phone_);
            const auto own = plan.places.find(member.path);
            return place.empty() && own != plan.places.end() ? own->second : place;
        };
        for (const ListWork& work : carrier.findWork(plan, recorded_, placeOf)) {
            const bool isOnPhone = work.bring.record->idInPhone.has_value();
            ++(isOnPhone ? counts_.updated : counts_.added);
            say(isOnPhone ? "update" : "add", work.place);
        }
    }

    // Members come before the lists that name them. What only goes because media sync has it now goes last.
    void execute(const PlaylistPlan& plan)
    {
        guard_.save(summary_);
        MemberRecords records(database_);
        if (!reassign(plan.reassigned)) return;
        Execute(records, phone_, progress_, summary_).run({plan.files});
        if (summary_.stopped()) return;
        files_ = database_.files();
        for (const RecordedFile& file : files_) placeOfFile_.emplace(file.path, file.phonePath);
        ListCarrier carrier(database_, phone_, progress_, summary_, counts_);
        const std::vector<ListWork> work =
            carrier.findWork(plan, recorded_, [&](const ListMember& member) { return placeNow(member); });
        progress_.start(plan.leaving.size() + work.size(), 0);
        carrier.remove(plan.leaving, files_);
        carrier.forget(plan.forgotten, files_);
        const bool allWritten = !summary_.stopped() && carrier.write(work, members_);
        progress_.finish();
        if (allWritten) Execute(records, phone_, progress_, summary_).run({plan.superseded});
    }

    // Where the member lies on the phone now, whatever was planned.
    [[nodiscard]] std::string placeNow(const ListMember& member) const
    {
        if (std::string place = PathInMedia(member, media_, phone_); !place.empty()) return place;
        const auto own = placeOfFile_.find(member.path);
        const bool isThere = own != placeOfFile_.end() && IsPhonePath(own->second, kPlaylistMediaFolder) &&
                             phone_.find(own->second).entry == PhoneEntry::kFile;
        return isThere ? own->second : std::string();
    }

    // The library cannot give a record to another list: it is taken out and entered anew, and noted in between.
    bool reassign(const std::vector<RecordedFile>& files)
    {
        if (files.empty()) return true;
        std::vector<std::string> places;
        places.reserve(files.size());
        for (const RecordedFile& file : files) places.push_back(file.phonePath);
        os::Status status = WriteJournal(phone_, places);
        if (!status.ok()) {
            summary_.fail(std::string(kJournalName), "it cannot be written to the phone: " + status.text());
            StopOnPhoneFailure(phone_, status, summary_);
            return false;
        }
        for (const RecordedFile& file : files) {
            std::int32_t code = database_.removeFile(file.path);
            if (code == 0) code = database_.addFile(file);
            if (code != 0) throw DatabaseError("the database cannot be written: " + ResultText(code));
        }
        status = RemoveJournal(phone_);
        if (!status.ok())
            summary_.fail(std::string(kJournalName), "it cannot be removed from the phone: " + status.text());
        return true;
    }

    PlaylistRecords database_;
    bool isKnown_;
    PhoneFolder& phone_;
    const SyncOptions& options_;
    MediaPhonePaths media_;
    DeletionGuard& guard_;
    Progress& progress_;
    Summary& summary_;
    FamilyCounts& counts_;
    PcPlaylists pc_;
    std::vector<RecordedPlaylist> recorded_;
    std::map<std::string, std::vector<std::string>> members_;  // of the recorded lists
    std::vector<RecordedFile> files_;
    std::unordered_map<std::string, std::string> placeOfFile_;  // once the members are on the phone
};

}  // namespace

void SyncPlaylists(Database& database, const std::string& imei, PhoneFolder& phone, const SyncOptions& options,
                   const MediaPhonePaths& media, DeletionGuard& guard, Progress& progress, Summary& summary)
{
    PlaylistSync(database, imei, phone, options, media, guard, progress, summary).run();
}

std::vector<std::string> PhonePathsOfPlaylists(Database& database, const std::string& imei)
{
    PlaylistRecords playlists(database, imei);
    std::vector<std::string> places;
    for (const RecordedPlaylist& list : playlists.lists())
        if (list.idInPhone) places.push_back(*list.idInPhone);
    for (const RecordedFile& file : playlists.files()) places.push_back(file.phonePath);
    return places;
}

}  // namespace kesta
