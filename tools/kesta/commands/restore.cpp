#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <memory>

#include "base/text.h"
#include "commands/command.h"
#include "commands/phone_access.h"
#include "commands/restore_archive.h"
#include "commands/seen_phones.h"
#include "phone/marker.h"
#include "phone/trash.h"
#include "phone/unique_name.h"
#include "report/output.h"
#include "report/summary.h"
#include "report/table.h"
#include "state/sync_sources.h"

namespace kesta {

bool IsNamed(const RestoreOptions& options, const std::string& phonePath)
{
    return std::any_of(options.paths.begin(), options.paths.end(), [&](std::string path) {
        std::replace(path.begin(), path.end(), os::kSeparator, '/');
        while (path.ends_with('/')) {
            path.pop_back();
        }
        return phonePath == path || phonePath.starts_with(path + '/');
    });
}

std::string PlaceFor(const std::string& phonePath, const std::string& seed, const PhoneFolder& phone)
{
    const auto slash = phonePath.rfind('/') + 1;  // 0 without one
    const std::string folder = phonePath.substr(0, slash);
    return folder + UniqueName(phonePath.substr(slash), seed, [&](const std::string& name) {
               return phone.find(folder + name).entry == PhoneEntry::kNothing;
           });
}

namespace {

bool IsWanted(const TrashedFile& file, const RestoreOptions& options)
{
    return (!options.day || file.day == *options.day) && (options.all || IsNamed(options, file.phonePath));
}

void List(const std::vector<TrashedFile>& files)
{
    if (files.empty()) {
        Print("The trash of this phone is empty.\n");
        return;
    }
    Table table({"Day", ">Size", "Path"});
    uint64_t bytes = 0;
    for (const TrashedFile& file : files) {
        table.add({file.day, FormatSize(file.size), file.phonePath});
        bytes += file.size;
    }
    Print(table.text(""));
    Print(fmt::format("{}, {}. They stay for {} days, or until the room is needed.\n", Counted(files.size(), "file"),
                      FormatSize(bytes), kTrashDays));
}

// Of the folder into which the phone's syncs back up.
void ListRememberedArchives(const PhoneFolder& phone)
{
    std::optional<Marker> marker;
    SyncSources remembered;
    if (!ReadMarker(phone, marker).ok() || !marker || !ReadSyncSources(marker->imei, remembered).ok() ||
        !remembered.backup) {
        return;
    }
    Print(fmt::format("\nArchives of backups in {}:\n", Printable(*remembered.backup)));
    try {
        ListArchivesIn(*remembered.backup, phone);
    } catch (const StopRun& stop) {
        Print(fmt::format("{}\n", Printable(stop.what())));  // The trash has been listed all the same.
    }
}

ExitCode Run(const RestoreOptions& options)
{
    if (options.backup) {
        return RestoreFromArchives(options);
    }
    PhoneFolder phone = OpenPhone(FolderOfPhone(options.phone, options.imei));
    const Trash trash(phone);
    const std::vector<TrashedFile> files = trash.files();
    if (options.paths.empty() && !options.all && !options.day) {
        List(files);
        ListRememberedArchives(phone);
        return ExitCode::kSuccess;
    }
    os::DirectoryLock lock;
    if (!options.dryRun) {
        LockPhone(lock, phone);
    }
    // The latest of each: they come oldest first.
    std::map<std::string, TrashedFile> latest;
    for (const TrashedFile& file : files) {
        const bool isWholeDay = options.day && options.paths.empty();
        if (isWholeDay ? file.day == *options.day : IsWanted(file, options)) {
            latest[file.phonePath] = file;
        }
    }
    if (latest.empty()) {
        throw StopRun(ExitCode::kFailure,
                      "nothing of that is in the phone's trash; --backup PATH looks into the archives of backups");
    }
    size_t failed = 0;
    for (const auto& [path, file] : latest) {
        const std::string place = PlaceFor(file.phonePath, file.trashPath, phone);
        if (options.dryRun) {
            Print(fmt::format("{:<9} {}\n", "restore", Printable(place)));
            continue;
        }
        os::Status status = phone.move(file.trashPath, place);
        if (status.ok()) {
            status = phone.tidyAbove(file.trashPath);
        }
        Print(status.ok() ? fmt::format("{:<9} {}\n", "restored", Printable(place))
                          : fmt::format("{:<9} {}: {}\n", "failed", Printable(path), Printable(status.text())));
        failed += status.ok() ? 0u : 1u;
    }
    return failed > 0 ? ExitCode::kIncomplete : ExitCode::kSuccess;
}

constexpr const char* kRestoreExamples =
    "Examples:\n"
    "  kesta restore                                                  what is in the trash and in archives\n"
    "  kesta restore --phone /media/me/phone Music/Rock/song.mp3\n"
    "  kesta restore --phone /media/me/phone Music/Rock --dry-run\n"
    "  kesta restore --phone /media/me/phone --day 2026-01-31\n"
    "  kesta restore --phone /media/me/phone --backup ~/Backups       which archives there are\n"
    "  kesta restore --phone /media/me/phone --backup ~/Backups Pictures\n"
    "\n"
    "What a sync removes or replaces on the phone goes to the phone's trash and stays there for 30 days, or until the\n"
    "room is needed. What comes back is yours: a sync neither overwrites nor removes it. From the archives of backups\n"
    "the latest of each file comes back, and with --all the whole latest archive; nothing is overwritten.\n"
    "\n";

std::function<ExitCode()> Prepare(CLI::App& app)
{
    const auto options = std::make_shared<RestoreOptions>();
    app.add_option("--phone", options->phone, "the mounted folder of the phone; else where it was last seen")
        ->type_name("DIR")
        ->check([](const std::string& path) { return EmptyPathProblem(path); });
    app.add_option("--imei", options->imei, "the phone")->type_name("IMEI");
    app.add_option("path", options->paths, "files and folders of the phone to bring back; the latest of each")
        ->type_name("PATH...")
        ->check([](const std::string& path) { return EmptyPathProblem(path); });
    app.add_option("--backup", options->backup,
                   "from an archive that sync --backup has made, or from a folder of them, instead of the trash")
        ->type_name("PATH")
        ->check([](const std::string& path) { return EmptyPathProblem(path); });
    app.add_option("--day", options->day, "only what went there, or was archived, on that day")->type_name("DAY");
    app.add_flag("--all", options->all, "bring back all there is");
    app.add_flag("--dry-run", options->dryRun, "only say what would be brought back");
    app.footer(std::string(kRestoreExamples) + kExitCodeHelp);
    return [options] { return Run(*options); };
}

}  // namespace

Command RestoreCommand()
{
    return {"restore", "list and bring back what syncs have removed or replaced on a phone", Prepare,
            OnDatabaseLoss::kTell};
}

}  // namespace kesta
