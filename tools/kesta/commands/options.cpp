#include "commands/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <iostream>

#include "marker.h"
#include "text.h"

namespace kesta {
namespace {

constexpr const char* kExitCodes =
    "Exit codes:\n"
    "  0    everything is in order\n"
    "  1    the command could not do its work\n"
    "  2    the command line is wrong\n"
    "  3    finished, but some files or folders could not be synced\n"
    "  4    finished, but removals are held back until --force is given\n"
    "  5    stopped: the phone is full\n"
    "  6    the phone cannot be written\n"
    "  7    another sync of this phone is running\n"
    "  8    the books cannot be read or written\n"
    "  9    stopped: the phone went away\n"
    "  130  interrupted\n";

constexpr const char* kSyncExamples =
    "Examples:\n"
    "  kesta sync --phone /media/me/phone --music ~/Music\n"
    "  kesta sync --phone /media/me/phone --name \"Anna's phone\" --music ~/Music --images ~/Pictures/2025 \\\n"
    "             --images ~/Pictures/2026 --documents ~/Documents\n"
    "  kesta sync --phone E:\\ --music C:\\Users\\me\\Music --dry-run\n"
    "\n"
    "The first run marks the folder as that phone; later runs recognise it. Files that are new or changed on the PC "
    "are\n"
    "copied, files gone from a folder that is given are removed from the phone, everything else stays as it is.\n"
    "\n";

constexpr const char* kStatusExamples =
    "Examples:\n"
    "  kesta status\n"
    "  kesta status --imei 004999010640000 --json\n"
    "\n";

constexpr const char* kFilesExamples =
    "Examples:\n"
    "  kesta files --imei 004999010640000 --category music\n"
    "  kesta files --imei 004999010640000 --category images --folder ~/Pictures/2026 --json\n"
    "\n"
    "Categories: music, images, videos, documents\n"
    "\n";

constexpr const char* kTraceExamples =
    "Examples:\n"
    "  kesta trace\n"
    "  kesta trace | grep -v Memory\n"
    "\n"
    "Shows the library's trace lines of all of the user's programs as they come, each with the time and the process\n"
    "that wrote it, until Ctrl-C. One viewer can run at a time. On Windows use a debug output viewer instead.\n"
    "\n";

void AddSync(CLI::App& app, SyncOptions& options)
{
    app.add_option("--phone", options.phone, "the mounted folder of the phone")->required()->type_name("DIR");
    app.add_option("--imei", options.imei, "the phone's IMEI; made up when it is not given for a new phone")
        ->type_name("IMEI")
        ->check([](const std::string& imei) { return ImeiProblem(imei); });
    app.add_option("--name", options.name, "the phone's display name")
        ->type_name("NAME")
        ->check([](const std::string& name) { return IsValidUtf8(name) ? "" : "the name is not valid text"; });
    for (const Category category : kCategories) {
        const std::string key(KeyOf(category));
        app.add_option("--" + key, options.folders[static_cast<std::size_t>(category)],
                       "a folder of " + key + "; may be given again")
            ->type_name("DIR")
            ->allow_extra_args(false);
    }
    app.add_flag("--dry-run", options.dryRun, "only say what would be done; change nothing");
    app.add_flag("--force", options.force, "remove files even if they are more than half of a category");
    app.add_flag("--quiet,-q", options.quiet, "no line for each file");
    app.footer(std::string(kSyncExamples) + kExitCodes);
}

void AddStatus(CLI::App& app, StatusOptions& options)
{
    app.add_option("--imei", options.imei, "only this phone")->type_name("IMEI");
    app.add_flag("--json", options.json, "as JSON");
    app.footer(std::string(kStatusExamples) + kExitCodes);
}

void AddFiles(CLI::App& app, FilesOptions& options, std::string& category)
{
    app.add_option("--imei", options.imei, "the phone")->required()->type_name("IMEI");
    app.add_option("--category", category, "music, images, videos or documents")
        ->required()
        ->type_name("NAME")
        ->check([](const std::string& key) {
            return CategoryOfKey(key) ? std::string() : "the categories are music, images, videos and documents";
        });
    app.add_option("--folder", options.folder, "only the files of this folder")->type_name("DIR");
    app.add_flag("--json", options.json, "as JSON");
    app.footer(std::string(kFilesExamples) + kExitCodes);
}

}  // namespace

std::optional<Options> ParseOptions(std::vector<std::string> arguments, ExitCode& exitCode)
{
    CLI::App app("Copies media folders to a phone and keeps the books of what is on it.", "kesta");
    app.require_subcommand(1);
    app.footer(std::string("kesta COMMAND --help shows a command's options and examples.\n\n") + kExitCodes);

    SyncOptions sync;
    StatusOptions status;
    FilesOptions files;
    std::string category;
    CLI::App* syncCommand = app.add_subcommand("sync", "bring a phone up to date with folders of the PC");
    CLI::App* statusCommand = app.add_subcommand("status", "show the phones, their settings and their folders");
    CLI::App* filesCommand = app.add_subcommand("files", "show the files recorded as copied to a phone");
    CLI::App* traceCommand = app.add_subcommand("trace", "show the library's trace lines as they come");
    AddSync(*syncCommand, sync);
    AddStatus(*statusCommand, status);
    AddFiles(*filesCommand, files, category);
    traceCommand->footer(std::string(kTraceExamples) + kExitCodes);

    try {
        std::reverse(arguments.begin(), arguments.end());  // The parser takes them from the back.
        app.parse(std::move(arguments));
    } catch (const CLI::Success& help) {
        exitCode = ExitCode::kSuccess;
        (void)app.exit(help, std::cout, std::cerr);
        return std::nullopt;
    } catch (const CLI::ParseError& mistake) {
        exitCode = ExitCode::kUsage;
        std::cerr << "kesta: " << Printable(mistake.what()) << "\nTry kesta --help, or kesta COMMAND --help.\n";
        return std::nullopt;
    }
    exitCode = ExitCode::kSuccess;
    if (syncCommand->parsed()) return sync;
    if (statusCommand->parsed()) return status;
    if (traceCommand->parsed()) return TraceOptions{};
    files.category = *CategoryOfKey(category);
    return files;
}

}  // namespace kesta
