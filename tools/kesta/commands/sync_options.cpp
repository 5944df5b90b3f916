#include <CLI/CLI.hpp>

#include "base/text.h"
#include "commands/option_groups.h"
#include "phone/marker.h"

namespace kesta {
namespace {

constexpr const char* kSyncExamples =
    "Examples:\n"
    "  kesta sync --phone /media/me/phone --music ~/Music\n"
    "  kesta sync --phone /media/me/phone --name \"Anna's phone\" --music ~/Music --images ~/Pictures/2025 \\\n"
    "             --images ~/Pictures/2026 --documents ~/Documents\n"
    "  kesta sync --phone E:\\ --music C:\\Users\\me\\Music --dry-run\n"
    "  kesta sync --phone /media/me/phone --playlists ~/Music/Playlists --bookmarks ~/bookmarks.html\n"
    "  kesta sync --phone /media/me/phone --contacts ~/friends.vcf ~/work.vcf --calendar ~/home.ics\n"
    "  kesta sync --phone /media/me/phone --backup ~/Backups\n"
    "\n"
    "The first run marks the folder as that phone; later runs recognise it. Files that are new or changed on the PC "
    "are\n"
    "copied, files gone from a folder that is given are removed from the phone, everything else stays as it is.\n"
    "Playlists take their music along. A backup is one archive of all that is on the phone after the other steps.\n"
    "\n";

std::string NameProblem(const std::string& name)
{
    constexpr std::size_t kLongest = 1000;
    if (name.size() > kLongest) return "the name is too long";
    return IsValidUtf8(name) ? "" : "the name is not valid text";
}

}  // namespace

void AddSync(CLI::App& app, SyncOptions& options)
{
    app.add_option("--phone", options.phone, "the mounted folder of the phone")
        ->required()
        ->type_name("DIR")
        ->check([](const std::string& path) { return EmptyPathProblem(path); });
    app.add_option("--imei", options.imei, "the phone's IMEI; made up when it is not given for a new phone")
        ->type_name("IMEI")
        ->check([](const std::string& imei) { return ImeiProblem(imei); });
    app.add_option("--name", options.name, "the phone's display name")
        ->type_name("NAME")
        ->check([](const std::string& name) { return NameProblem(name); });
    std::vector<CLI::Option*> paths;
    for (const Category category : kCategories) {
        const std::string key(KeyOf(category));
        paths.push_back(app.add_option("--" + key, options.folders[static_cast<std::size_t>(category)],
                                       "a folder of " + key + "; may be given again")
                            ->type_name("DIR")
                            ->allow_extra_args(false));
    }
    paths.push_back(
        app.add_option("--playlists", options.playlists, "a folder of playlists (.m3u, .m3u8)")->type_name("DIR"));
    paths.push_back(
        app.add_option("--bookmarks", options.bookmarks, "a bookmark file of a browser (HTML, or Chromium's JSON)")
            ->type_name("FILE"));
    // Several behind one option, too: that is what a shell makes of *.vcf.
    paths.push_back(app.add_option("--contacts", options.contacts, "files of contacts (.vcf)")->type_name("FILE..."));
    paths.push_back(
        app.add_option("--calendar", options.calendars, "files of calendar entries (.ics)")->type_name("FILE..."));
    paths.push_back(
        app.add_option("--backup", options.backup, "a folder of the PC for an archive of the phone's contents")
            ->type_name("DIR"));
    for (CLI::Option* path : paths) path->check([](const std::string& text) { return EmptyPathProblem(text); });
    app.add_flag("--dry-run", options.dryRun, "only say what would be done; change nothing");
    app.add_flag("--force", options.force,
                 "remove even if it is more than half of a category, or of the lists, bookmarks or entries");
    app.add_flag("--quiet,-q", options.quiet, "no line for each file");
    app.footer(std::string(kSyncExamples) + kExitCodeHelp);
}

}  // namespace kesta
