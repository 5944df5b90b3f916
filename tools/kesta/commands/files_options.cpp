#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "commands/option_groups.h"

namespace kesta {
namespace {

constexpr const char* kFilesExamples =
    "Examples:\n"
    "  kesta files --imei 004999010640000 --category music\n"
    "  kesta files --imei 004999010640000 --category images --folder ~/Pictures/2026 --json\n"
    "  kesta files --imei 004999010640000 --category playlists\n"
    "\n"
    "Categories:\n"
    "  music, images, videos, documents  the files copied from folders of that category\n"
    "  gallery                           the folders of pictures and videos as one list\n"
    "  playlists                         the playlists, their members and the music copied for them\n"
    "  bookmarks                         the web bookmarks of the phone's present bookmark type\n"
    "  backups                           the archives made of the phone\n"
    "  contacts, calendar                the entries of the store, folder by folder\n"
    "  log                               which contacts and calendar entries the phone has\n"
    "\n";

std::string CategoryProblem(const std::string& key)
{
    if (std::find(kFilesCategories.begin(), kFilesCategories.end(), key) != kFilesCategories.end()) return {};
    return fmt::format("the categories are {}", fmt::join(kFilesCategories, ", "));
}

}  // namespace

void AddFiles(CLI::App& app, FilesOptions& options)
{
    app.add_option("--imei", options.imei, "the phone")->required()->type_name("IMEI");
    app.add_option("--category", options.category, "what to list: see below")
        ->required()
        ->type_name("NAME")
        ->check(CategoryProblem);
    app.add_option("--folder", options.folder, "only what belongs to this folder, or to the playlist of this name")
        ->type_name("DIR");
    app.add_flag("--json", options.json, "as JSON");
    app.footer(std::string(kFilesExamples) + kExitCodeHelp);
}

}  // namespace kesta
