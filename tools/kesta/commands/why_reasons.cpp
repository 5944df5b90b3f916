#include "commands/why_reasons.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/text.h"
#include "commands/pc_path.h"
#include "commands/pim_tree.h"
#include "commands/states.h"
#include "database/backups.h"
#include "database/main_folders.h"
#include "os/local_time.h"
#include "report/summary.h"
#include "stages/media/file_filter.h"
#include "stages/pim/pim_entry.h"
#include "stages/pim/pim_log_rows.h"
#include "state/left_files.h"
#include "state/sync_sources.h"
#include "sync/phone_changes.h"

namespace kesta {
namespace {

std::string TimeText(const std::optional<LocalTime>& time)
{
    return time ? FormatLocalTime(*time) : std::string("an unknown time");
}

class Explainer {
public:
    Explainer(const Database& database, const std::string& imei, const PcEntry& entry)
        : database_(database), imei_(imei), entry_(entry), playlists_(database.playlists(imei)), left_(imei)
    {
    }

    Explanation run()
    {
        for (const Category category : kCategories) {
            explain(category);
        }
        explainPlaylists();
        explainPim();
        explainBackups();
        explainKept();
        if (result_.reasons.empty()) {
            explainNothing();
        }
        return std::move(result_);
    }

private:
    void say(std::string key, std::string text) { result_.reasons.push_back({std::move(key), std::move(text)}); }

    void explain(Category category)
    {
        const std::vector<RecordedFolder> folders = database_.media(imei_, category).folders();
        const std::vector<RecordedFile> files = database_.media(imei_, category).files();
        if (const auto file = find(files)) {
            return explainRecorded(category, *file, folders);
        }
        const RecordedFolder* innermost = innermostAround(folders);
        if (innermost != nullptr && innermost->path == entry_.path) {
            return explainChosen(category, *innermost, files);
        }
        const size_t below = countBelow(files);
        if (below > 0 || entry_.kind == PcEntry::Kind::kFolder) {
            return explainPart(category, innermost, folders, below);
        }
        if (innermost != nullptr) {
            explainNotCopied(category, *innermost);
        }
    }

    [[nodiscard]] std::optional<RecordedFile> find(const std::vector<RecordedFile>& files) const
    {
        const auto found = std::find_if(files.begin(), files.end(),
                                        [&](const RecordedFile& file) { return file.path == entry_.path; });
        return found == files.end() ? std::nullopt : std::optional(*found);
    }

    // Of folders inside one another the innermost is in charge.
    [[nodiscard]] const RecordedFolder* innermostAround(const std::vector<RecordedFolder>& folders) const
    {
        const RecordedFolder* innermost = nullptr;
        for (const RecordedFolder& folder : folders) {
            if (os::LiesIn(entry_.path, folder.path) &&
                (innermost == nullptr || folder.path.size() > innermost->path.size())) {
                innermost = &folder;
            }
        }
        return innermost;
    }

    [[nodiscard]] size_t countBelow(const std::vector<RecordedFile>& files) const
    {
        return static_cast<size_t>(std::count_if(
            files.begin(), files.end(), [&](const RecordedFile& file) { return os::LiesIn(file.path, entry_.path); }));
    }

    // Why a sync skips the folder; true if it does.
    bool explainSkipped(Category category, const RecordedFolder& folder)
    {
        const MainFolder mainFolder = MainFolderOf(category);
        if (!database_.phones().isSelected(imei_, mainFolder)) {
            say("main_folder_not_selected",
                fmt::format("The main folder {} is not selected for this phone, so a sync skips all {}. "
                            "kesta settings --imei {} select.{}=yes selects it.",
                            KeyOf(mainFolder), KeyOf(category), imei_, KeyOf(mainFolder)));
            return true;
        }
        if (folder.selected) {
            return false;
        }
        say("folder_not_selected",
            fmt::format("The folder {} is not selected for this phone in {}, so a sync skips it. "
                        "kesta settings --imei {} --select {} selects it.",
                        folder.path, KeyOf(category), imei_, folder.path));
        return true;
    }

    void explainDeleted(Category category, const RecordedFolder& folder)
    {
        if (!folder.deleted) {
            return;
        }
        say("folder_marked_deleted",
            fmt::format("The folder {} is recorded in {} as gone from the PC. A sync that is given it again takes that "
                        "back.",
                        folder.path, KeyOf(category)));
    }

    void explainRecorded(Category category, const RecordedFile& file, const std::vector<RecordedFolder>& folders)
    {
        result_.phonePaths.push_back(file.phonePath);
        say("recorded", fmt::format("It is on the phone as {}, recorded in {} with the time {}, as a file of {}.",
                                    file.phonePath, KeyOf(category), TimeText(file.modified), file.basePath));
        if (const auto leftOut = leftOutBy(category, file.basePath)) {
            say("left_out_later",
                fmt::format("A rule leaves it out by now ({}). What is on the phone stays there, as it is, "
                            "until kesta forget.",
                            leftOut->rule));
        } else {
            compare(file, fmt::format("a sync of {}", file.basePath));
        }
        const auto folder = std::find_if(folders.begin(), folders.end(),
                                         [&](const RecordedFolder& row) { return row.path == file.basePath; });
        if (folder == folders.end()) {
            say("folder_unknown", fmt::format("The folder {} itself is not in the database any more.", file.basePath));
            return;
        }
        explainDeleted(category, *folder);
        (void)explainSkipped(category, *folder);
    }

    // The rule that keeps the path below a chosen folder on the PC.
    [[nodiscard]] std::optional<LeftOut> leftOutBy(Category category, const std::string& folder)
    {
        if (entry_.path == folder || !os::LiesIn(entry_.path, folder)) {
            return std::nullopt;
        }
        SyncSources remembered;
        (void)ReadSyncSources(imei_, remembered);  // kesta settings tells when it is damaged.
        const std::string relative = RelativeTo(folder, entry_.path);
        const FileFilter filter = FilterFor(category, remembered.rules, relative, [&](const auto& name, auto& text) {
            return os::ReadText(os::Join(folder, name), text).ok();
        });
        return entry_.kind == PcEntry::Kind::kFolder ? filter.prunes(relative) : filter.leftOut(relative);
    }

    // The file now against its record. who: names the sync that does something about a difference.
    void compare(const RecordedFile& file, const std::string& who)
    {
        switch (entry_.kind) {
            case PcEntry::Kind::kMissing:
                return say("missing_on_pc", fmt::format("It is gone from the PC; {} removes it from the phone.", who));
            case PcEntry::Kind::kUnreadable:
                return say("unreadable_on_pc",
                           fmt::format("It cannot be looked at on the PC; {} leaves it alone.", who));
            case PcEntry::Kind::kFile:
                break;
            default:
                return say("no_file_on_pc", "There is no file at this path any more, but something else.");
        }
        if (entry_.modified == file.modified) {
            return isAsLeft(file) ? say("unchanged", "It has not changed since.")
                                  : say("changed", fmt::format("It has changed since, within the second of its time; "
                                                               "{} copies it again.",
                                                               who));
        }
        say("changed", fmt::format("It has changed since, its time is {} now; {} copies it again.",
                                   TimeText(entry_.modified), who));
    }

    // What changes within a second keeps its time, but not its size or the fraction of the second.
    [[nodiscard]] bool isAsLeft(const RecordedFile& file) const
    {
        const LeftFile* left = left_.find(file.phonePath);
        return left == nullptr ||
               (left->size == entry_.size &&
                (!left->pcNanoseconds || IsSameFraction(*left->pcNanoseconds, entry_.modifiedNanoseconds)));
    }

    void explainNotCopied(Category category, const RecordedFolder& folder)
    {
        explainDeleted(category, folder);
        if (explainSkipped(category, folder)) {
            return;
        }
        switch (entry_.kind) {
            case PcEntry::Kind::kMissing:
                return say("missing_on_pc",
                           fmt::format("It is not on the PC, and nothing is recorded for it in {}.", KeyOf(category)));
            case PcEntry::Kind::kUnreadable:
                return say("unreadable_on_pc", "It cannot be looked at on the PC, so it cannot be copied.");
            case PcEntry::Kind::kOther:
                return say("no_file_on_pc", "It is neither a file nor a folder; such things are not copied.");
            default:
                if (const auto leftOut = leftOutBy(category, folder.path)) {
                    return say("left_out",
                               fmt::format("It lies in {}, a folder of {} of this phone, but a rule leaves it out: {}.",
                                           folder.path, KeyOf(category), leftOut->rule));
                }
                say("not_copied_yet",
                    fmt::format(
                        "It lies in {}, a folder of {} of this phone, but is not recorded as copied: it has come "
                        "since the last sync of that folder, or could not be copied then. The next one tries.",
                        folder.path, KeyOf(category)));
        }
    }

    void explainChosen(Category category, const RecordedFolder& folder, const std::vector<RecordedFile>& files)
    {
        const auto own = static_cast<size_t>(std::count_if(
            files.begin(), files.end(), [&](const RecordedFile& file) { return file.basePath == folder.path; }));
        result_.filesOnPhone += countBelow(files);
        say("folder_recorded",
            fmt::format("It is a folder of {} of this phone since {}: {}. {} counted in it, {} on the phone.",
                        KeyOf(category), TimeText(folder.added), StateOf(folder, own),
                        Counted(static_cast<size_t>(std::max(folder.count, 0)), "file"), own));
        sayMissing();
        explainDeleted(category, folder);
        (void)explainSkipped(category, folder);
    }

    // A folder around which, or below which, there are folders of the category.
    void explainPart(Category category, const RecordedFolder* around, const std::vector<RecordedFolder>& folders,
                     size_t below)
    {
        result_.filesOnPhone += below;
        if (around != nullptr) {
            say("part_of_folder", fmt::format("It is part of {}, a folder of {} of this phone; {} of it on the phone.",
                                              around->path, KeyOf(category), Counted(below, "file")));
            if (const auto leftOut = leftOutBy(category, around->path)) {
                say("left_out", fmt::format("A rule leaves it out: {}.", leftOut->rule));
            }
            sayMissing();
            explainDeleted(category, *around);
            (void)explainSkipped(category, *around);
            return;
        }
        for (const RecordedFolder& folder : folders) {
            if (os::LiesIn(folder.path, entry_.path)) {
                say("holds_folder", fmt::format("It is not chosen itself, but holds {}, a folder of {} of this phone.",
                                                folder.path, KeyOf(category)));
            }
        }
    }

    void sayMissing()
    {
        if (entry_.kind == PcEntry::Kind::kMissing) {
            say("missing_on_pc",
                "It is missing on the PC. A sync takes a missing folder for unreachable, not for empty: "
                "what is on the phone stays.");
        }
        if (entry_.kind == PcEntry::Kind::kUnreadable) {
            say("unreadable_on_pc", "It cannot be looked at on the PC. What is on the phone stays.");
        }
    }

    void explainPlaylists()
    {
        for (const RecordedPlaylist& list : playlists_.all()) {
            const std::vector<std::string> members = playlists_.members(list.name);
            if (std::find(members.begin(), members.end(), entry_.path) == members.end()) {
                continue;
            }
            result_.playlists.push_back({list.name, StateOf(list)});
            say("in_playlist", fmt::format("The playlist {} names it ({}).", list.name, StateOf(list)));
        }
        const std::vector<RecordedFile> files = playlists_.files();
        const auto file = find(files);
        if (file) {
            result_.phonePaths.push_back(file->phonePath);
            say("copied_for_playlist",
                fmt::format("It is on the phone as {}, copied for the playlist {} with the time {}.", file->phonePath,
                            file->basePath, TimeText(file->modified)));
            compare(*file, "a sync of the playlists");
        }
        if ((file || !result_.playlists.empty()) && !database_.phones().isSelected(imei_, MainFolder::kMusic)) {
            say("main_folder_not_selected",
                "The main folder music is not selected for this phone, so a sync skips "
                "the playlists.");
        }
    }

    void explainPim()
    {
        for (const PimKind kind : kPimKinds) {
            const std::string source = PimSourceId(kind, entry_.path);
            std::vector<PimLogRow> log;
            bool isLogRead = false;
            for (const PimNode& node : ReadPimTree(database_, kind)) {
                if (!IsOfPimSource(node.folder.id, source)) {
                    continue;
                }
                if (!isLogRead) {
                    log = ReadPimPhoneLog(database_, imei_, kind).rows;
                }
                isLogRead = true;
                const auto onPhone = static_cast<size_t>(std::count_if(log.begin(), log.end(), [&](const auto& row) {
                    return FolderOfPimEntry(kind, row.guid) == node.folder.id;
                }));
                say("entries_in_store", fmt::format("The database holds {} of it in {}, under {}; {} on the phone.",
                                                    CountedEntries(node.items.size()), KeyOf(kind), node.folder.path,
                                                    CountedEntries(onPhone)));
            }
        }
    }

    void explainBackups()
    {
        const auto backups = BackupsOf(database_, imei_);
        if (!backups) {
            return;
        }
        for (const RecordedBackup& backup : *backups) {
            if (backup.path == entry_.path) {
                say("backup", fmt::format("It is a backup of this phone, made {}.", TimeText(backup.modified)));
            }
        }
    }

    void explainKept()
    {
        for (const KeptFile& file : left_.kept()) {
            if (file.path == entry_.path) {
                say("changed_on_phone",
                    fmt::format("{} was changed on the phone: that is kept there as {} since {}, and no longer synced.",
                                file.phonePath, file.keptAs, TimeText(file.time)));
            }
        }
    }

    void explainNothing()
    {
        if (entry_.kind == PcEntry::Kind::kMissing) {
            say("missing_on_pc", "There is nothing at this path on the PC.");
        }
        say("in_no_folder", "It lies in no folder that is synced to this phone, and nothing of it is recorded.");
    }

    const Database& database_;
    const std::string& imei_;
    const PcEntry& entry_;
    kesta_db::Playlists playlists_;
    const LeftFiles left_;
    Explanation result_;
};

}  // namespace

PcEntry ReadPcEntry(const std::string& given)
{
    PcEntry entry;
    entry.path = RecordedPath(given);
    os::FileInfo info;
    const os::Status status = os::ReadInfo(entry.path, info);
    if (!status.ok()) {
        entry.kind = status.failure() == os::Failure::kMissing ? PcEntry::Kind::kMissing : PcEntry::Kind::kUnreadable;
        return entry;
    }
    entry.kind = info.kind == os::FileKind::kFile        ? PcEntry::Kind::kFile
                 : info.kind == os::FileKind::kDirectory ? PcEntry::Kind::kFolder
                                                         : PcEntry::Kind::kOther;
    entry.size = info.size;
    entry.modified = os::ToLocalTime(info.modified.seconds);
    entry.modifiedNanoseconds = info.modified.nanoseconds;
    return entry;
}

Explanation Explain(const Database& database, const std::string& imei, const PcEntry& entry)
{
    return Explainer(database, imei, entry).run();
}

}  // namespace kesta
