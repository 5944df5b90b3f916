#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <memory>

#include "base/stop_run.h"
#include "base/text.h"
#include "commands/command.h"
#include "commands/json.h"
#include "commands/pc_path.h"
#include "commands/phone_settings.h"
#include "commands/phones.h"
#include "commands/remembered.h"
#include "commands/source_options.h"
#include "database/database.h"
#include "database/failures.h"
#include "database/main_folders.h"
#include "report/output.h"

namespace kesta {
namespace {

/// A folder or playlist that is to be selected, or no longer.
struct Selection {
    std::string what;
    bool selected = true;
};

struct SettingsOptions {
    std::string imei;
    std::vector<std::string> changes;  // name=value
    std::vector<Selection> folders;    // of media
    std::vector<Selection> playlists;
    SyncSources sources;               // to be remembered
    std::vector<std::string> dropped;  // no longer to be
    bool json = false;
};

constexpr std::string_view kSelectPrefix = "select.";

struct FolderChange {
    Category category = Category::kMusic;
    std::string path;
    bool selected = true;
};

// Everything that the command line asks for, checked against the database.
struct Changes {
    PhoneSettings settings;          // as they are to be
    std::vector<std::string> names;  // of the settings given
    std::map<MainFolder, bool> mainFolders;
    std::vector<FolderChange> folders;
    std::vector<Selection> playlists;
};

std::string SelectNameOf(MainFolder folder)
{
    return fmt::format("{}{}", kSelectPrefix, KeyOf(folder));
}

[[noreturn]] void RefuseName(const std::string& name)
{
    std::vector<std::string> names;
    for (const Setting& setting : kSettings) {
        if (setting.isWritable) {
            names.emplace_back(setting.name);
        }
    }
    for (const MainFolder folder : kMainFolders) {
        names.push_back(SelectNameOf(folder));
    }
    const std::vector<std::string> near = NearNames(name, names);
    const std::string hint = near.empty() ? "" : fmt::format(" Did you mean {}?", fmt::join(near, " or "));
    throw StopRun(ExitCode::kUsage, fmt::format("there is no setting {}.{}\nThe settings are {}.", Printable(name),
                                                hint, fmt::join(names, ", ")));
}

void ReadChange(const std::string& change, Changes& changes)
{
    const auto equals = change.find('=');
    const std::string name = change.substr(0, equals);
    if (equals == std::string::npos) {
        throw StopRun(ExitCode::kUsage, fmt::format("{} is no change: write NAME=VALUE", Printable(change)));
    }
    const std::string value = change.substr(equals + 1);
    const auto refuseValue = [&](const std::string& problem) {
        throw StopRun(ExitCode::kUsage, fmt::format("{} cannot be '{}': {}", name, Printable(value), problem));
    };
    for (const MainFolder folder : kMainFolders) {
        if (name != SelectNameOf(folder)) {
            continue;
        }
        const auto selected = ParseTruth(value);
        if (!selected) {
            refuseValue("it is yes or no");
        }
        if (!changes.mainFolders.emplace(folder, *selected).second) {
            throw StopRun(ExitCode::kUsage, fmt::format("{} is given twice", name));
        }
        return;
    }
    const Setting* setting = FindSetting(name);
    if (setting == nullptr) {
        RefuseName(name);
    }
    if (const std::string problem = TakeSetting(changes.settings, *setting, value); !problem.empty()) {
        refuseValue(problem);
    }
    if (std::find(changes.names.begin(), changes.names.end(), name) != changes.names.end()) {
        throw StopRun(ExitCode::kUsage, fmt::format("{} is given twice", name));
    }
    changes.names.push_back(name);
}

void ReadFolder(const Database& database, const std::string& imei, const Selection& selection, Changes& changes)
{
    bool isKnown = false;
    for (const Category category : kCategories) {
        for (const RecordedFolder& folder : database.media(imei, category).folders()) {
            if (!IsNamed(folder.path, selection.what)) {
                continue;
            }
            isKnown = true;
            const bool contradicts =
                std::any_of(changes.folders.begin(), changes.folders.end(), [&](const FolderChange& change) {
                    return change.category == category && change.path == folder.path &&
                           change.selected != selection.selected;
                });
            if (contradicts) {
                throw StopRun(ExitCode::kUsage,
                              fmt::format("{} is selected and deselected at once", Printable(folder.path)));
            }
            changes.folders.push_back({category, folder.path, selection.selected});
        }
    }
    if (!isKnown) {
        throw StopRun(ExitCode::kFailure,
                      fmt::format("the database knows no folder {} of this phone: it becomes known by "
                                  "its first sync",
                                  Printable(selection.what)));
    }
}

void ReadPlaylist(const std::vector<RecordedPlaylist>& lists, const Selection& selection, Changes& changes)
{
    if (std::none_of(lists.begin(), lists.end(), [&](const auto& list) { return list.name == selection.what; })) {
        throw StopRun(ExitCode::kFailure,
                      fmt::format("the database knows no playlist {} of this phone", Printable(selection.what)));
    }
    if (std::any_of(changes.playlists.begin(), changes.playlists.end(), [&](const Selection& other) {
            return other.what == selection.what && other.selected != selection.selected;
        })) {
        throw StopRun(ExitCode::kUsage,
                      fmt::format("{} is selected and deselected at once", Printable(selection.what)));
    }
    changes.playlists.push_back(selection);
}

Changes ReadChanges(const Database& database, const SettingsOptions& options, const PhoneSettings& present)
{
    Changes changes;
    changes.settings = present;
    for (const std::string& change : options.changes) {
        ReadChange(change, changes);
    }
    for (const Selection& selection : options.folders) {
        ReadFolder(database, options.imei, selection, changes);
    }
    if (!options.playlists.empty()) {
        const std::vector<RecordedPlaylist> lists = database.playlists(options.imei).all();
        for (const Selection& selection : options.playlists) {
            ReadPlaylist(lists, selection, changes);
        }
    }
    return changes;
}

void Try(const std::string& what, const std::function<void()>& change)
{
    try {
        change();
    } catch (const kesta_db::Error& failure) {
        throw StopRun(ExitCode::kDatabase,
                      fmt::format("{} could not be changed: {}", Printable(what), SentenceOf(failure.code())));
    }
}

void Expect(bool isStored, const std::string& what)
{
    if (!isStored) {
        throw StopRun(ExitCode::kDatabase, fmt::format("{} could not be changed", Printable(what)));
    }
}

// The library says of some of these that they went well when they did not, so the database has to tell.
void Make(const Database& database, const Changes& changes, const std::string& imei)
{
    kesta_db::Phones phones = database.phones();
    if (!changes.names.empty()) {
        Try(changes.names.front(), [&] {
            PhoneSettings settings = KnownPhone(database, imei);  // as they are now: another program may change others
            for (const std::string& name : changes.names) {
                std::visit([&](auto member) { settings.*member = changes.settings.*member; },
                           FindSetting(name)->member);
            }
            phones.update(settings);
        });
        const auto after = phones.find(imei);
        for (const std::string& name : changes.names) {
            const Setting& setting = *FindSetting(name);
            Expect(after && ShowSetting(*after, setting) == ShowSetting(changes.settings, setting), name);
        }
    }
    for (const auto& [folder, selected] : changes.mainFolders) {
        const std::string name = SelectNameOf(folder);
        Try(name, [&, folder = folder, selected = selected] { phones.select(imei, folder, selected); });
        Expect(phones.isSelected(imei, folder) == selected, name);
    }
    for (const FolderChange& change : changes.folders) {
        Try(change.path, [&] { database.media(imei, change.category).selectFolder(change.path, change.selected); });
    }
    for (const Selection& selection : changes.playlists) {
        Try(selection.what, [&] { database.playlists(imei).select(selection.what, selection.selected); });
    }
}

std::string Quoted(const std::string& value)
{
    return value.empty() ? "(empty)" : Printable(value);
}

const char* SelectedText(bool selected)
{
    return selected ? "selected" : "not selected";
}

void ShowAll(const Database& database, const PhoneSettings& phone)
{
    std::string text = fmt::format("{} (IMEI {})\n", Printable(phone.name), Printable(phone.imei));
    for (const Setting& setting : kSettings) {
        text += fmt::format("  {:<27} {}\n", setting.name, Quoted(ShowSetting(phone, setting)));
    }
    for (const MainFolder folder : kMainFolders) {
        text += fmt::format("  {:<27} {}\n", SelectNameOf(folder),
                            database.phones().isSelected(phone.imei, folder) ? "yes" : "no");
    }
    const std::string remembered = DescribeRemembered(RememberedOf(phone.imei));
    text +=
        remembered.empty() ? "Nothing is remembered for kesta sync.\n" : "Remembered for kesta sync:\n" + remembered;
    Print(text);
}

void ShowChanges(const Changes& changes, const PhoneSettings& before)
{
    std::string text = fmt::format("{} (IMEI {})\n", Printable(changes.settings.name), Printable(before.imei));
    for (const std::string& name : changes.names) {
        const Setting& setting = *FindSetting(name);
        text += fmt::format("  {}: {}, before: {}\n", name, Quoted(ShowSetting(changes.settings, setting)),
                            Quoted(ShowSetting(before, setting)));
    }
    for (const auto& [folder, selected] : changes.mainFolders) {
        text += fmt::format("  main folder {}: {}\n", KeyOf(folder), SelectedText(selected));
    }
    for (const FolderChange& change : changes.folders) {
        text += fmt::format("  {} ({}): {}\n", Printable(change.path), KeyOf(change.category),
                            SelectedText(change.selected));
    }
    for (const Selection& selection : changes.playlists) {
        text += fmt::format("  playlist {}: {}\n", Printable(selection.what), SelectedText(selection.selected));
    }
    Print(text);
}

ExitCode Run(const SettingsOptions& options)
{
    Database database;
    PhoneSettings phone = KnownPhone(database, options.imei);
    const bool isToRemember = options.sources.hasAny() || !options.sources.rules.empty() || !options.dropped.empty();
    const bool isToChange =
        !options.changes.empty() || !options.folders.empty() || !options.playlists.empty() || isToRemember;
    if (isToChange) {
        const Changes changes = ReadChanges(database, options, phone);
        if (isToRemember) {
            ChangeRemembered(options.imei, options.sources, options.dropped);
        }
        Make(database, changes, phone.imei);
        if (!options.json) {
            ShowChanges(changes, phone);
            if (isToRemember) {
                Print("Remembered for kesta sync:\n" + DescribeRemembered(RememberedOf(options.imei)));
            }
        }
        phone = KnownPhone(database, options.imei);
    }
    if (options.json) {
        PrintJson({{"imei", phone.imei},
                   {"settings", SettingsJson(phone)},
                   {"main_folders", MainFoldersJson(database, phone.imei)},
                   {"remembered", RememberedJson(RememberedOf(phone.imei))}});
    } else if (!isToChange) {
        ShowAll(database, phone);
    }
    return ExitCode::kSuccess;
}

constexpr const char* kSettingsExamples =
    "Examples:\n"
    "  kesta settings --imei 004999010640000\n"
    "  kesta settings --imei 004999010640000 auto_sync=yes calendar_start=2026-01-01 wifi_mac=\n"
    "  kesta settings --imei 004999010640000 select.gallery=no\n"
    "  kesta settings --imei 004999010640000 --deselect ~/Music/Audiobooks --deselect-playlist Party\n"
    "  kesta settings --imei 004999010640000 --music ~/Audiobooks --exclude \"*.wav\" --drop ~/Music\n"
    "\n"
    "Without changes the settings are shown. Values are text, yes or no, whole numbers, and dates such as 2026-01-31 "
    "or\n"
    "\"2026-01-31 18:30:00\"; a text or date without a value is emptied. Either all changes are made, or none.\n"
    "select.NAME chooses the main folders: music (playlists too), gallery (images and videos), documents, contacts,\n"
    "calendar, bookmarks, map. What is not selected is skipped by kesta sync and stays on the phone as it is.\n"
    "Sources, globs and the backup folder given here are remembered as if kesta sync had been given them; --drop takes one\n"
    "out. What is on the phone already stays.\n"
    "Numbers mean what the program says that sets them.\n"
    "\n";

// "  wifi_mac                    text: the phone's Wi-Fi address"
std::string SettingsHelp()
{
    constexpr std::array kKinds{"text", "yes or no", "number", "date"};  // as the variant has them
    std::string text = "Settings:\n";
    for (const Setting& setting : kSettings) {
        text += fmt::format("  {:<27} {}: {}\n", setting.name,
                            setting.isWritable ? kKinds[setting.member.index()] : "shown only", setting.meaning);
    }
    return text + "\n";
}

void AddSelections(CLI::App& app, const std::string& suffix, std::vector<Selection>& selections, const char* what,
                   const char* type)
{
    for (const bool selected : {true, false}) {
        app.add_option_function<std::vector<std::string>>(
               fmt::format("--{}{}", selected ? "select" : "deselect", suffix),
               [&selections, selected](const std::vector<std::string>& values) {
                   for (const std::string& value : values) {
                       selections.push_back({value, selected});
                   }
               },
               fmt::format("{} {}; may be given again", selected ? "sync" : "do not sync", what))
            ->type_name(type)
            ->allow_extra_args(false);
    }
}

std::function<ExitCode()> Prepare(CLI::App& app)
{
    const auto options = std::make_shared<SettingsOptions>();
    app.add_option("--imei", options->imei, "the phone")->required()->type_name("IMEI");
    app.add_option("changes", options->changes, "what to change")->type_name("NAME=VALUE");
    AddSelections(app, "", options->folders, "this folder of media, in all its categories", "DIR");
    AddSelections(app, "-playlist", options->playlists, "the playlist of this name", "NAME");
    const auto sources = std::make_shared<SourceOptions>();
    sources->addTo(app);
    app.add_option("--drop", options->dropped, "a source, a glob or the backup folder: no longer remembered")
        ->type_name("PATH|GLOB")
        ->allow_extra_args(false);
    app.add_flag("--json", options->json, "as JSON");
    app.footer(kSettingsExamples + SettingsHelp() + kExitCodeHelp);
    return [options, sources] {
        options->sources = sources->given();
        return Run(*options);
    };
}

}  // namespace

Command SettingsCommand()
{
    return {"settings", "show and change how a phone is synced", Prepare};
}

}  // namespace kesta
