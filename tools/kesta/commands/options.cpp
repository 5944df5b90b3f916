#include "commands/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <iostream>

#include "base/text.h"
#include "commands/option_groups.h"

namespace kesta {
namespace {

constexpr const char* kTraceExamples =
    "Examples:\n"
    "  kesta trace\n"
    "  kesta trace | grep -v Memory\n"
    "\n"
    "Shows the library's trace lines of all of the user's programs as they come, each with the time and the process\n"
    "that wrote it, until Ctrl-C. One viewer can run at a time. On Windows use a debug output viewer instead.\n"
    "\n";

}  // namespace

std::optional<Options> ParseOptions(std::vector<std::string> arguments, ExitCode& exitCode)
{
    CLI::App app("Brings a phone up to date with the PC and records what is on it.", "kesta");
    app.require_subcommand(1);
    app.footer(std::string("kesta COMMAND --help shows a command's options and examples.\n\n") + kExitCodeHelp);

    SyncOptions sync;
    StatusOptions status;
    FilesOptions files;
    WhyOptions why;
    SettingsOptions settings;
    CLI::App* syncCommand = app.add_subcommand("sync", "bring a phone up to date with folders of the PC");
    CLI::App* statusCommand = app.add_subcommand("status", "show the phones and what the database holds for each");
    CLI::App* filesCommand = app.add_subcommand("files", "list the files or entries recorded for a phone");
    CLI::App* whyCommand = app.add_subcommand("why", "say why a file or folder is on a phone, or why it is not");
    CLI::App* settingsCommand = app.add_subcommand("settings", "show and change how a phone is synced");
    CLI::App* traceCommand = app.add_subcommand("trace", "show the library's trace lines as they come");
    AddSync(*syncCommand, sync);
    AddStatus(*statusCommand, status);
    AddFiles(*filesCommand, files);
    AddWhy(*whyCommand, why);
    AddSettings(*settingsCommand, settings);
    traceCommand->footer(std::string(kTraceExamples) + kExitCodeHelp);

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
    if (whyCommand->parsed()) return why;
    if (settingsCommand->parsed()) return settings;
    if (traceCommand->parsed()) return TraceOptions{};
    return files;
}

}  // namespace kesta
