#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "commands/option_groups.h"

namespace kesta {
namespace {

constexpr const char* kSettingsExamples =
    "Examples:\n"
    "  kesta settings --imei 004999010640000\n"
    "  kesta settings --imei 004999010640000 auto_sync=yes calendar_start=2026-01-01 wifi_mac=\n"
    "  kesta settings --imei 004999010640000 select.gallery=no\n"
    "  kesta settings --imei 004999010640000 --deselect ~/Music/Audiobooks --deselect-playlist Party\n"
    "\n"
    "Without changes the settings are shown. Values are text, yes or no, whole numbers, and dates such as 2026-01-31 "
    "or\n"
    "\"2026-01-31 18:30:00\"; a text or date without a value is emptied. Either all changes are made, or none.\n"
    "select.NAME chooses the main folders: music (playlists too), gallery (images and videos), documents, contacts,\n"
    "calendar, bookmarks, map. What is not selected is skipped by kesta sync and stays on the phone as it is.\n"
    "\n";

void AddSelections(CLI::App& app, const std::string& suffix, std::vector<Selection>& selections, const char* what,
                   const char* type)
{
    for (const bool selected : {true, false}) {
        app.add_option_function<std::vector<std::string>>(
               fmt::format("--{}{}", selected ? "select" : "deselect", suffix),
               [&selections, selected](const std::vector<std::string>& values) {
                   for (const std::string& value : values) selections.push_back({value, selected});
               },
               fmt::format("{} {}; may be given again", selected ? "sync" : "do not sync", what))
            ->type_name(type)
            ->allow_extra_args(false);
    }
}

}  // namespace

void AddSettings(CLI::App& app, SettingsOptions& options)
{
    app.add_option("--imei", options.imei, "the phone")->required()->type_name("IMEI");
    app.add_option("changes", options.changes, "what to change")->type_name("NAME=VALUE");
    AddSelections(app, "", options.folders, "this folder of media, in all its categories", "DIR");
    AddSelections(app, "-playlist", options.playlists, "the playlist of this name", "NAME");
    app.add_flag("--json", options.json, "as JSON");
    app.footer(std::string(kSettingsExamples) + kExitCodeHelp);
}

}  // namespace kesta
