// kesta: brings a phone up to date with the PC and shows what is recorded about it.

#include <kesta_db/kesta_db.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "base/stop_run.h"
#include "base/text.h"
#include "commands/application.h"
#include "database/failures.h"
#include "os/startup_watch.h"
#include "os/system.h"
#include "os/watch.h"
#include "report/output.h"
#include "state/database_notice.h"

namespace {

int Report(kesta::ExitCode code, const std::exception& failure)
{
    std::string text;
    std::istringstream lines(failure.what());
    for (std::string line; std::getline(lines, line);) {
        text += kesta::Printable(line) + '\n';
    }
    (void)std::fprintf(stderr, "kesta: %s", text.c_str());
    return static_cast<int>(code);
}

// Nobody is told by the library that what was recorded is gone.
void CheckDatabase(kesta::OnDatabaseLoss onLoss)
{
    if (onLoss == kesta::OnDatabaseLoss::kIgnore) {
        return;
    }
    const auto notice = kesta::FindDatabaseNotice();
    if (!notice) {
        return;
    }
    const kesta::StopRun loss(kesta::ExitCode::kDatabase, notice->text + '\n' + notice->advice);
    if (onLoss == kesta::OnDatabaseLoss::kStop && notice->isToStop) {
        throw loss;
    }
    (void)Report(loss.code(), loss);
}

// The command that the arguments name, with its options; none if help or a mistake has been printed.
std::function<kesta::ExitCode()> Parse(CLI::App& app, std::vector<std::string> arguments, kesta::ExitCode& exitCode)
{
    app.require_subcommand(1);
    app.set_version_flag("--version", "kesta " KESTA_DB_VERSION ", SQLite " KESTA_SQLITE_VERSION);
    app.footer(std::string("kesta COMMAND --help shows a command's options and examples.\n\n") + kesta::kExitCodeHelp);
    kesta::CommandRuns commands;
    kesta::AddCommands(app, commands);
    if (const std::string problem = kesta::UnknownWord(app, arguments); !problem.empty()) {
        exitCode = kesta::ExitCode::kUsage;
        std::cerr << "kesta: " << problem << "\nTry kesta --help, or kesta COMMAND --help.\n";
        return {};
    }
    try {
        std::reverse(arguments.begin(), arguments.end());  // The parser takes them from the back.
        app.parse(std::move(arguments));
    } catch (const CLI::Success& help) {
        (void)app.exit(help, std::cout, std::cerr);
        return {};
    } catch (const CLI::ParseError& mistake) {
        exitCode = kesta::ExitCode::kUsage;
        std::cerr << "kesta: " << kesta::Printable(mistake.what()) << "\nTry kesta --help, or kesta COMMAND --help.\n";
        return {};
    }
    for (const kesta::CommandRun& command : commands) {
        if (command.app->parsed()) {
            return [command] {
                CheckDatabase(command.onDatabaseLoss);
                // Under the eyes of the watch: who has to wait for the database hears of it. Whether it opened the
                // command's own calls tell.
                if (command.onDatabaseLoss != kesta::OnDatabaseLoss::kIgnore) {
                    (void)kesta::os::Call(DB_Open)();
                }
                return command.run();
            };
        }
    }
    return {};
}

}  // namespace

int main(int argc, char** argv)
{
    kesta::os::EndStartupWatch();
    try {
        kesta::os::StartWatch();
        kesta::os::PrepareOutput();
        kesta::ExitCode exitCode = kesta::ExitCode::kSuccess;
        // Outlives the command, which asks it in which order its options came.
        CLI::App app("Brings a phone up to date with the PC and records what is on it.", "kesta");
        if (const auto run = Parse(app, kesta::os::Arguments(argc, argv), exitCode)) {
            exitCode = run();
        }
        if (kesta::outputHasFailed && exitCode == kesta::ExitCode::kSuccess) {
            (void)std::fputs("kesta: the output could not be written\n", stderr);
            exitCode = kesta::ExitCode::kFailure;
        }
        return static_cast<int>(exitCode);
    } catch (const kesta::StopRun& stop) {
        return Report(stop.code(), stop);
    } catch (const kesta_db::Error& failure) {
        return Report(kesta::ExitCode::kDatabase, kesta::StopRun(kesta::ExitCode::kDatabase, kesta::TextOf(failure)));
    } catch (const std::exception& failure) {
        return Report(kesta::ExitCode::kFailure, failure);
    }
}
